#include "files/TextFiles.h"

#include <gtest/gtest.h>
#include <vector>

#include "files/Utf8TextFile.h"
#include "support/FileBytes.h"
#include "support/ImportPatch.h"
#include "support/Narrow.h"
#include "support/ScopedTestDir.h"

namespace {

using namespace std::string_literals;

constexpr UINT kNew = CFile::modeCreate | CFile::modeWrite;
constexpr UINT kKept = kNew | CFile::modeNoTruncate;
const std::string kM(kMark);

using Lines = std::vector<std::string>;

Lines Read(const std::wstring& path, bool keepLineEnds = false) {
    CStringList list;
    list.AddTail(L"from before");
    ReadTextLines({path.data(), static_cast<int>(path.size())}, list, keepLineEnds);
    Lines lines;
    for (POSITION place = list.GetHeadPosition(); place != nullptr;) {
        const CString& line = list.GetNext(place);
        lines.push_back(Narrow({line.GetString(), static_cast<size_t>(line.GetLength())}));
    }
    return lines;
}

class TextFile : public testing::Test {
protected:
    const ScopedTestDir m_dir;
    const std::wstring m_path = m_dir.Path(L"a.txt"), m_none = m_dir.Path(L"none");
    const CString m_cut{L"C:\\a\0b", 6};
};

int s_sleeps = 0;
CFile* s_locker = nullptr;  // closed at the third sleep

}  // namespace

TEST_F(TextFile, TheMarkStandsInNewAndEmptyFilesAndCoversNothing) {
    const struct {
        UINT flags;
        bool inMemory;
        std::string before, given, after;
    } rows[] = {{kNew, false, "old", "", kM},
                {kKept, false, "", "", kM},
                {kKept, false, "old", "", "old"},
                {CFile::modeWrite, false, "", "", ""},
                {kNew, true, "old file", "text", kM + "text"},
                {kNew, true, "", kM + "text", kM + "text"},
                {kNew, true, "old file", "", kM},
                {kKept, true, "", "", kM},
                {kKept, true, "old file", "", "old file"},
                {kKept, true, "old file", "text", "textfile"}};
    for (const auto& row : rows) {
        PutBytes(m_path, row.before);
        {
            CUtf8TextFile file;
            file.SetUseMemoryBuffer(row.inMemory);
            if (row.inMemory) file.Write(row.given.data(), static_cast<UINT>(row.given.size()));
            EXPECT_TRUE(file.Open(m_path.c_str(), row.flags));
        }
        EXPECT_EQ(BytesOf(m_path), row.after) << row.given;
        if (row.inMemory) continue;
        PutBytes(m_path, row.before);
        CUtf8TextFile(m_path.c_str(), row.flags).WriteUtf8(nullptr);
        EXPECT_EQ(BytesOf(m_path), row.after);
    }
    const std::pair<std::string, bool> marks[] = {
        {"", false}, {"\xEF\xBB", false}, {kM, true}, {"\xEF\xBB\xBE", false}};
    for (const auto& [bytes, hasMark] : marks) {
        PutBytes(m_path, bytes);
        const CFile reader(m_path.c_str(), CFile::modeRead | CFile::shareDenyWrite);
        EXPECT_EQ(CUtf8TextFile::HasByteOrderMark(m_path.c_str()), hasMark) << bytes;
    }
    EXPECT_FALSE(CUtf8TextFile::HasByteOrderMark(m_dir.Path().c_str()) ||
                 CUtf8TextFile::HasByteOrderMark(m_none.c_str()));
}

TEST_F(TextFile, AMarkThatCannotBeWrittenFailsTheOpeningAndClosesTheFile) {
    CUtf8TextFile file;
    CFileException problem;
    EXPECT_FALSE(file.Open(m_cut, kNew, &problem));
    EXPECT_EQ(problem.m_lOsError, LONG{ERROR_INVALID_NAME});
    const ImportPatch<decltype(&WriteFile)> full(
        LoadedModule(L"RegistryRulesFramework.dll"), "WriteFile",
        [](HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED) -> BOOL { return SetLastError(ERROR_DISK_FULL), FALSE; });
    EXPECT_FALSE(file.Open(m_path.c_str(), kNew, &problem) || file.Open(m_path.c_str(), kNew));
    EXPECT_EQ(std::tuple(problem.m_cause, problem.m_lOsError, problem.m_strFileName),
              std::tuple(CFileException::diskFull, LONG{ERROR_DISK_FULL}, m_path.c_str()));
    EXPECT_EQ(file.m_hFile, CFile::hFileNull);
    EXPECT_TRUE(DeleteFileW(m_path.c_str())) << "nobody has it open";
    EXPECT_EQ(CauseOf([&] { CUtf8TextFile(m_path.c_str(), kNew); }), CFileException::diskFull);
}

TEST_F(TextFile, WritesUtf8AndAppendsFilesWithAMark) {
    const std::wstring source = m_dir.Path(L"source.txt");
    const std::string text(10000, 'x');
    CSocketFileOwner owner{L"host", {}};
    {
        CUtf8TextFile file(m_path.c_str(), kNew, &owner);
        file.SetUseMemoryBuffer(true);  // written when it closes itself
        file.WriteByteOrderMark();
        file.WriteString(L"\x20AC");
        file.WriteUtf8(L"\x00E4\r\n");
        file.WriteString(CString(L'\x20AC', 3));
        file.Seek(1, CFile::begin);
        PutBytes(source, "no mark");
        file.AppendFile(source.c_str());
        file.AppendFile(m_none.c_str());
        PutBytes(source, kM + text);
        file.AppendFile(source.c_str());
        CUtf8TextFile().AppendFile(source.c_str());
        for (const LPCWSTR name : {L"one", L"ONE", L"one"}) file.RegisterWithOwner(name);
        EXPECT_EQ(file.GetOwnerName(), L"host");
    }
    EXPECT_EQ(owner.strings.GetCount(), 2);
    EXPECT_EQ(BytesOf(m_path), kM + "\xE2\x82\xAC\xC3\xA4\r\n\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC" + text);
    CUtf8TextFile file(m_path.c_str(), CFile::modeWrite);
    file.RegisterWithOwner(L"nobody's");
    EXPECT_EQ(file.GetOwnerName(), L"");
    file.Close();
    file.Close();
    EXPECT_EQ(CauseOf([&] { CCoreSocketFile(m_none.c_str(), CFile::modeRead); }), CFileException::fileNotFound);
}

// How blocks are cut is the fuzzer's; here are the answers.
TEST_F(TextFile, ReadsShortBrokenAndMarkedFilesAndLineEndsAcrossBlocks) {
    const struct {
        std::string bytes;
        Lines lines, withEnds;
    } rows[] = {
        {"", {}, {}},
        {"x", {"x"}, {"x"}},
        {"a\r\nb", {"a", "b"}, {"a\r\n", "b"}},
        {"a\n\rb\rc\nd", {"a", "b", "c", "d"}, {"a\n\r", "b\r", "c\n", "d"}},
        {"\r\n\r\n", {"", ""}, {"\r\n", "\r\n"}},
        {"a\n\nb", {"a", "", "b"}, {"a\n", "\n", "b"}},
        {"a\r\n\nb", {"a", "", "b"}, {"a\r\n", "\n", "b"}},
        {"a\r\r\n\n\r\rb", {"a", "", "", "", "b"}, {"a\r", "\r\n", "\n\r", "\r", "b"}},
        // A single end at the very end was never looked at.
        {"\r", {"\r"}, {"\r"}},
        {"a\n\n", {"a", "\n"}, {"a\n", "\n"}},
        {"\xEF\xBB", {"\xEF\xBF\xBD"}, {"\xEF\xBF\xBD"}},
        {kM, {}, {}},
        {kM + "\xC3\xA4\r\n\xF0\x9F\x98\x80", {"\xC3\xA4", "\xF0\x9F\x98\x80"}, {"\xC3\xA4\r\n", "\xF0\x9F\x98\x80"}},
        {"a\xFFz\r\nb", {"a\xEF\xBF\xBDz", "b"}, {"a\xEF\xBF\xBDz\r\n", "b"}},
        {"a\0b\nc"s, {"a\0b"s, "c"}, {"a\0b\n"s, "c"}}};
    for (const auto& [bytes, lines, withEnds] : rows) {
        PutBytes(m_path, bytes);
        EXPECT_EQ(Read(m_path), lines) << testing::PrintToString(bytes);
        EXPECT_EQ(Read(m_path, true), withEnds) << testing::PrintToString(bytes);
    }
    // The third block ends in the end of a line, before it or behind it.
    for (const std::string end : {"\r\n", "\n\r", "\n", "\r"}) {
        for (size_t length = 3 * 4096 - 2; length <= 3 * 4096 + 1; ++length) {
            const std::string first(length, 'a');
            PutBytes(m_path, std::string(first).append(end).append("b").append(end).append("c"));
            EXPECT_EQ(Read(m_path), (Lines{first, "b", "c"})) << length << testing::PrintToString(end);
            EXPECT_EQ(Read(m_path, true), (Lines{first + end, "b" + end, "c"})) << length;
        }
    }
    EXPECT_EQ(Read(m_none), Lines{});
    EXPECT_EQ(Read(m_path + std::wstring(L"\0x", 2)), Lines{});
    const CFile writer(m_path.c_str(), CFile::modeWrite | CFile::shareDenyNone);
    EXPECT_EQ(Read(m_path), Lines{});
}

TEST_F(TextFile, WritesLinesWithOneEndEach) {
    _putenv("TZ=XXX-5");  // five hours before the time of the world
    _tzset();
    EXPECT_TRUE(AppendTextLine(m_path.c_str(), L"one", false, true));
    EXPECT_TRUE(AppendTextLine(m_path.c_str(), L"two\r\n", false, true));
    EXPECT_TRUE(AppendTextLine(m_path.c_str(), L"", false, false));
    EXPECT_TRUE(AppendTextLine(m_path.c_str(), L"\n", false, false));
    const ImportPatch<decltype(&_time64)> clock(GetModuleHandleW(nullptr), "_time64",
                                                [](__time64_t*) -> __time64_t { return 1790000000; });
    EXPECT_TRUE(AppendTextLine(m_path.c_str(), L"last", true, false));
    EXPECT_EQ(BytesOf(m_path), kM + "one\r\ntwo\r\n\r\n\n\r\n09/21/26 07:13:20 PM last\r\n");
    _putenv("TZ=");
    _tzset();

    CStringList lines;
    lines.AddTail(L"\x00E4");
    lines.AddTail(L"b\r\n");
    const std::string two = "\xC3\xA4\r\nb\r\n", once = kM + two, twice = once + two;
    for (const auto& [path, truncate, after] :
         {std::tuple(m_path, true, once), {m_path, false, twice}, {m_none, false, once}}) {
        EXPECT_TRUE(WriteTextLines(path.c_str(), lines, truncate));
        EXPECT_EQ(BytesOf(path), after);
    }
}

TEST_F(TextFile, AFileThatOthersHaveOpenIsTriedTenTimes) {
    const ImportPatch<decltype(&Sleep)> patch(GetModuleHandleW(nullptr), "Sleep", [](DWORD ms) {
        s_sleeps += ms == 1000 ? 1 : 100;
        if (s_sleeps == 3 && s_locker != nullptr) s_locker->Close();
    });
    const auto sleepsOf = [](bool expected, auto call) {
        s_sleeps = 0;
        EXPECT_EQ(call(), expected);
        return s_sleeps;
    };
    CStringList lines;
    const auto append = [&] { return AppendTextLine(m_path.c_str(), L"line", false, true); };
    const auto write = [&] { return WriteTextLines(m_path.c_str(), lines, true); };
    EXPECT_EQ(sleepsOf(false, [&] { return AppendTextLine(m_cut, L"x", false, true); }), 0) << "no matter of time";
    CFile locker(m_path.c_str(), kNew | CFile::shareDenyNone);
    EXPECT_EQ(sleepsOf(false, append), 10);
    EXPECT_EQ(sleepsOf(false, write), 10);
    s_locker = &locker;
    EXPECT_EQ(sleepsOf(true, append), 3);
    s_locker = nullptr;
    EXPECT_EQ(BytesOf(m_path), kM + "line\r\n");
}
