#include "files/WriteRate.h"

#include <gtest/gtest.h>
#include <vector>

#include "files/VlpFile.h"
#include "support/ImportPatch.h"
#include "support/ScopedTestDir.h"

namespace {

constexpr LONGLONG kTicksPerSecond = 10'000'000;

LONGLONG s_clock = 0;
std::vector<DWORD> s_sleeps;
std::vector<DWORD> s_writes;

// A clock that only sleeping and the test move on. It starts where the one before ended, as the window does.
class WriteRate : public testing::Test {
protected:
    WriteRate() {
        PassMs(5000);
        s_sleeps.clear();
        s_writes.clear();
    }
    ~WriteRate() override { SetWriteRate(0); }

    static void PassMs(LONGLONG ms) { s_clock += ms * kTicksPerSecond / 1000; }

private:
    const HMODULE m_program = GetModuleHandleW(nullptr);
    ImportPatch<decltype(&QueryPerformanceFrequency)> m_frequency{m_program, "QueryPerformanceFrequency",
                                                                  [](LARGE_INTEGER* frequency) {
                                                                      frequency->QuadPart = kTicksPerSecond;
                                                                      return TRUE;
                                                                  }};
    ImportPatch<decltype(&QueryPerformanceCounter)> m_counter{m_program, "QueryPerformanceCounter",
                                                              [](LARGE_INTEGER* counter) {
                                                                  counter->QuadPart = s_clock;
                                                                  return TRUE;
                                                              }};
    ImportPatch<decltype(&Sleep)> m_sleep{m_program, "Sleep", [](DWORD ms) {
                                              s_sleeps.push_back(ms);
                                              PassMs(ms);
                                          }};
    ImportPatch<decltype(&WriteFile)> m_write{
        LoadedModule(L"framework.dll"), "WriteFile",
        [](HANDLE file, LPCVOID data, DWORD bytes, LPDWORD done, LPOVERLAPPED overlapped) {
            s_writes.push_back(bytes);
            return WriteFile(file, data, bytes, done, overlapped);
        }};
};

using Numbers = std::vector<DWORD>;

}  // namespace

TEST_F(WriteRate, ALongWriteTakesOneWindowAfterTheOther) {
    const ScopedTestDir dir;
    CVlpFile file;
    ASSERT_TRUE(file.Open(dir.Path(L"a").c_str(), CFile::modeCreate | CFile::modeWrite));
    SetWriteRate(1);
    const std::vector<BYTE> data(3000, 'x');
    file.Write(data.data(), 3000);
    EXPECT_EQ(s_writes, (Numbers{1024, 1024, 952}));
    EXPECT_EQ(s_sleeps, (Numbers{1000, 1000}));
    EXPECT_EQ(file.GetLength(), 3000U);

    // Another file finds the same window, nearly used up.
    s_writes.clear();
    s_sleeps.clear();
    CVlpFile other;
    ASSERT_TRUE(other.Open(dir.Path(L"b").c_str(), CFile::modeCreate | CFile::modeWrite));
    PassMs(300);
    other.Write(data.data(), 100);
    EXPECT_EQ(s_writes, (Numbers{72, 28}));
    EXPECT_EQ(s_sleeps, Numbers{700});

    SetWriteRate(0);
    s_writes.clear();
    other.Write(data.data(), 3000);
    EXPECT_EQ(s_writes, Numbers{3000});
}

TEST_F(WriteRate, GrantsAreWhatTheWindowHasLeft) {
    DWORD remaining = 0;
    DWORD grant = 7;
    EXPECT_FALSE(AcquireWriteQuota(remaining, grant));
    EXPECT_EQ(grant, 0U);
    remaining = 10;
    EXPECT_TRUE(AcquireWriteQuota(remaining, grant)) << "no limit";
    EXPECT_EQ(grant, 10U);
    EXPECT_EQ(remaining, 0U);

    SetWriteRate(2);
    const struct {
        LONGLONG pass;  // ms before
        DWORD remaining;
        DWORD grant;
        Numbers sleeps;
    } rows[] = {
        {0, 1500, 1500, {}},    {999, 1500, 548, {}}, {0, 1500, 1500, {1}},
        {1000, 2048, 2048, {}}, {400, 1, 1, {600}},   {1000, 5000, 2048, {}},
    };
    for (const auto& row : rows) {
        PassMs(row.pass);
        s_sleeps.clear();
        remaining = row.remaining;
        EXPECT_TRUE(AcquireWriteQuota(remaining, grant));
        EXPECT_EQ(grant, row.grant);
        EXPECT_EQ(remaining, row.remaining - row.grant);
        EXPECT_EQ(s_sleeps, row.sleeps);
    }
    // A rate lowered within a window that has used more.
    SetWriteRate(1);
    s_sleeps.clear();
    remaining = 5000;
    EXPECT_TRUE(AcquireWriteQuota(remaining, grant));
    EXPECT_EQ(grant, 1024U);
    EXPECT_EQ(s_sleeps, Numbers{1000});
}
