#include "files/VlpFile.h"

#include <atlbase.h>
#include <gtest/gtest.h>

#include "files/NotedCall.h"
#include "files/WriteRate.h"
#include "support/FileBytes.h"
#include "support/LogCapture.h"
#include "support/ScopedTestDir.h"

namespace {

HANDLE s_transaction = nullptr;

HANDLE WINAPI CreateTransacted(LPCWSTR path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                               DWORD disposition, DWORD attributes, HANDLE, HANDLE transaction, PUSHORT, PVOID) {
    s_transaction = transaction;
    return CreateFileW(path, access, share, security, disposition, attributes, nullptr);
}

struct TransactedFile : CAtlTransactionManager, CVlpFile {
    TransactedFile(HANDLE transaction, BOOL fallback) : CAtlTransactionManager(fallback, FALSE) {
        m_hTransaction = transaction;
        m_pTM = this;
    }
};

}  // namespace

TEST(VlpFile, EveryFlagReachesTheSystem) {
    const NotedCall patch(&CreateFileW, "CreateFileW", INVALID_HANDLE_VALUE, ERROR_SHARING_VIOLATION);
    constexpr DWORD kRead = GENERIC_READ, kWrite = GENERIC_WRITE, kNormal = FILE_ATTRIBUTE_NORMAL;
    constexpr DWORD kShareBoth = FILE_SHARE_READ | FILE_SHARE_WRITE;
    // Access, share, whether the handle is inherited, disposition, attributes.
    const std::pair<UINT, Numbers> rows[] = {
        {0x0, {kRead, 0, TRUE, OPEN_EXISTING, kNormal}},
        {0x3, {kRead, 0, TRUE, OPEN_EXISTING, kNormal}},
        {0x8010, {kRead, 0, TRUE, OPEN_EXISTING, kNormal}},
        {0x11021, {kWrite, FILE_SHARE_READ, TRUE, CREATE_ALWAYS, kNormal | FILE_FLAG_NO_BUFFERING}},
        {0x23031, {kWrite, FILE_SHARE_WRITE, TRUE, OPEN_ALWAYS, kNormal | FILE_FLAG_WRITE_THROUGH}},
        {0x42042, {kRead | kWrite, kShareBoth, TRUE, OPEN_EXISTING, kNormal | FILE_FLAG_RANDOM_ACCESS}},
        {0x800D0, {kRead, 0, FALSE, OPEN_EXISTING, kNormal | FILE_FLAG_SEQUENTIAL_SCAN}}};
    const std::wstring path = L"C:\\" + std::wstring(245, L'x');
    for (const auto& [flags, opening] : rows) {
        CFileException problem;
        EXPECT_FALSE(CVlpFile().Open(path.c_str(), flags, &problem));
        EXPECT_EQ(TakePaths(), Paths{L"\\\\?\\" + path});
        EXPECT_EQ(TakeNumbers(), opening) << std::hex << flags;
        EXPECT_EQ(std::tuple(problem.m_cause, problem.m_lOsError, problem.m_strFileName),
                  std::tuple(CFileException::sharingViolation, LONG{ERROR_SHARING_VIOLATION}, path.c_str()));
    }
    // The transaction is a stand-in, because Wine has none: its CreateTransaction answers a handle that stands for
    // nothing, and kernel32 lacks CreateFileTransactedW. So how the file is opened is seen, not that it is rolled back.
    const ImportPatch<decltype(&GetProcAddress)> transacted(
        LoadedModule(L"RegistryRulesFramework.dll"), "GetProcAddress", [](HMODULE, LPCSTR name) -> FARPROC {
            if (std::string_view(name) != "CreateFileTransactedW") return nullptr;
            return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&CreateTransacted));
        });
    const HANDLE transaction = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    EXPECT_FALSE(TransactedFile(transaction, TRUE).Open(path.c_str(), CFile::modeWrite));
    EXPECT_EQ(s_transaction, transaction);
    EXPECT_EQ(TakeNumbers(), (Numbers{kWrite, 0, TRUE, OPEN_EXISTING, kNormal}));
}

TEST(VlpFile, LocalFilesAndMemoryBuffers) {
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"a.txt"), none = dir.Path(L"none");
    PutBytes(path, "0123456789");
    EXPECT_TRUE(TransactedFile(nullptr, TRUE).Open(path.c_str(), CFile::modeRead));
    EXPECT_FALSE(TransactedFile(nullptr, FALSE).Open(path.c_str(), CFile::modeRead));
    EXPECT_EQ(CVlpFile(path.c_str()).GetLength(), 10U);
    EXPECT_EQ(CFile(path.c_str(), CFile::modeRead | CFile::shareExclusive).GetLength(), 10U) << "nobody has it open";
    char bytes[16] = {};
    CVlpFile file;
    file.SetUseMemoryBuffer(true);
    ASSERT_TRUE(file.Open(path.c_str(), CFile::modeReadWrite | CFile::shareDenyNone));
    EXPECT_EQ(file.GetLength(), 0U) << "of the buffer";
    file.Write("abcdef", 6);
    EXPECT_EQ(file.Seek(1, CFile::begin), 1U);
    file.Write("X", 1);
    EXPECT_EQ(file.Read(bytes, sizeof(bytes)), 4U);
    EXPECT_EQ(file.GetPosition(), 6U);
    EXPECT_EQ(bytes + BytesOf(path), "cdef0123456789");
    file.Close();
    EXPECT_EQ(BytesOf(path), "aXcdef6789");
    EXPECT_EQ(CauseOf([&] { file.Close(); }), CFileException::invalidFile);
    file.SetUseMemoryBuffer(false);
    ASSERT_TRUE(file.Open(path.c_str(), CFile::modeReadWrite));
    EXPECT_EQ(file.Seek(-2, CFile::end), 8U);
    EXPECT_EQ(file.Read(bytes, sizeof(bytes)), 2U);
    EXPECT_EQ(file.GetPosition(), 10U);

    const LogCapture log;
    EXPECT_EQ(CauseOf([&] { CVlpFile missing(none.c_str()); }), CFileException::fileNotFound);
    EXPECT_TRUE(log.Contains(LogLevel::Warning, L"File open failure - File:'" + none + L"'(2:2)"));
    EXPECT_TRUE(Throws<CInvalidArgException>([] { CVlpFile().SetFilePath(nullptr); }));
}

namespace {

constexpr LONGLONG kTicksPerMs = 10'000;
LONGLONG s_clock = 0;  // moved on by sleeping and by the test alone
Numbers s_sleeps, s_writes;

}  // namespace

TEST(WriteRate, WritersShareWindowsOfOneSecond) {
    const HMODULE program = GetModuleHandleW(nullptr);
    const ImportPatch<decltype(&QueryPerformanceFrequency)> frequency(
        program, "QueryPerformanceFrequency",
        [](LARGE_INTEGER* ticks) -> BOOL { return ticks->QuadPart = kTicksPerMs * 1000, TRUE; });
    const ImportPatch<decltype(&QueryPerformanceCounter)> counter(
        program, "QueryPerformanceCounter",
        [](LARGE_INTEGER* ticks) -> BOOL { return ticks->QuadPart = s_clock, TRUE; });
    const ImportPatch<decltype(&Sleep)> sleep(program, "Sleep", [](DWORD ms) {
        s_sleeps.push_back(ms);
        s_clock += ms * kTicksPerMs;
    });
    const ImportPatch<decltype(&WriteFile)> write(
        LoadedModule(L"RegistryRulesFramework.dll"), "WriteFile",
        [](HANDLE file, LPCVOID data, DWORD bytes, LPDWORD done, LPOVERLAPPED overlapped) {
            s_writes.push_back(bytes);
            return WriteFile(file, data, bytes, done, overlapped);
        });
    const ScopedTestDir dir;
    CVlpFile files[2];
    for (const size_t i : {0U, 1U})
        files[i].Open(dir.Path(std::to_wstring(i)).c_str(), CFile::modeCreate | CFile::modeWrite);
    std::string data, expected[2];
    for (int i = 0; i < 5000; ++i) data += static_cast<char>('a' + i % 23);
    const struct {
        DWORD rate;
        LONGLONG pass;  // ms before
        UINT bytes;
        Numbers writes, sleeps;
    } rows[] = {
        {1, 0, 3000, {1024, 1024, 952}, {1000, 1000}},
        {1, 300, 100, {72, 28}, {700}},  // finds the same window, nearly used up
        {0, 0, 3000, {3000}, {}},
        {2, 5000, 1500, {1500}, {}},
        {2, 999, 1500, {548, 952}, {1}},
        {2, 0, 0, {}, {}},
        {2, 1000, 2048, {2048}, {}},
        {2, 400, 1, {1}, {600}},
        {2, 1000, 3500, {2048, 1452}, {1000}},
        {1, 0, 1030, {1024, 6}, {1000, 1000}},  // lowered within a window that has used more
    };
    for (size_t turn = 0; const auto& row : rows) {
        SetWriteRate(row.rate);
        s_clock += row.pass * kTicksPerMs;
        s_sleeps.clear();
        s_writes.clear();
        files[turn].Write(data.data(), row.bytes);
        expected[turn].append(data, 0, row.bytes);
        EXPECT_EQ(s_writes, row.writes);
        EXPECT_EQ(s_sleeps, row.sleeps);
        turn = 1 - turn;
    }
    SetWriteRate(0);
    DWORD remaining = 10, grant = 7;
    EXPECT_TRUE(AcquireWriteQuota(remaining, grant) && grant == 10 && remaining == 0) << "the limit has just gone";
    for (const size_t i : {0U, 1U}) EXPECT_EQ((files[i].Close(), BytesOf(dir.Path(std::to_wstring(i)))), expected[i]);
}
