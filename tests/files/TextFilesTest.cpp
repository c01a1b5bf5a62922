#include "files/TextFiles.h"

#include <gtest/gtest.h>
#include <regex>
#include <vector>

#include "files/Utf8TextFile.h"
#include "support/FileBytes.h"
#include "support/ImportPatch.h"
#include "support/Narrow.h"
#include "support/ScopedTestDir.h"

namespace {

constexpr UINT kNew = CFile::modeCreate | CFile::modeWrite;
constexpr UINT kKept = kNew | CFile::modeNoTruncate;

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

std::string WithMark(std::string_view text) {
    return std::string(kMark) + std::string(text);
}

int s_sleeps = 0;
CFile* s_locker = nullptr;  // closed at the third sleep

void WINAPI CountSleep(DWORD ms) {
    s_sleeps += ms == 1000 ? 1 : 100;
    if (s_sleeps == 3 && s_locker != nullptr) s_locker->Close();
}

}  // namespace

TEST(Utf8TextFile, TheMarkStandsInNewAndEmptyFilesOnly) {
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"a.txt");
    const struct {
        UINT flags;
        std::string before;
        std::string after;
    } rows[] = {
        {kNew, "old", WithMark("")}, {kKept, "", WithMark("")}, {kKept, "old", "old"}, {CFile::modeWrite, "", ""}};
    for (const auto& row : rows) {
        PutBytes(path, row.before);
        CUtf8TextFile().Open(path.c_str(), row.flags);
        EXPECT_EQ(BytesOf(path), row.after);
        PutBytes(path, row.before);
        CUtf8TextFile(path.c_str(), row.flags).WriteUtf8(nullptr);
        EXPECT_EQ(BytesOf(path), row.after);
    }
    PutBytes(path, "12345");
    CUtf8TextFile file(path.c_str(), CFile::modeWrite);
    file.WriteByteOrderMark();
    file.WriteString(L"\x20AC");
    file.WriteUtf8(L"\x00E4\r\n");
    file.WriteString(CString(L'\x20AC', 1000));
    file.Close();
    std::string expected = WithMark("\xE2\x82\xAC\xC3\xA4\r\n");
    for (int i = 0; i < 1000; ++i) expected += "\xE2\x82\xAC";
    EXPECT_EQ(BytesOf(path), expected);
}

TEST(Utf8TextFile, AMarkThatCannotBeWrittenFailsTheOpeningAndClosesTheFile) {
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"a.txt");
    {
        const ImportPatch<decltype(&WriteFile)> full(LoadedModule(L"framework.dll"), "WriteFile",
                                                     [](HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED) -> BOOL {
                                                         SetLastError(ERROR_DISK_FULL);
                                                         return FALSE;
                                                     });
        CUtf8TextFile file;
        CFileException problem;
        EXPECT_FALSE(file.Open(path.c_str(), kNew, &problem));
        EXPECT_EQ(problem.m_cause, CFileException::diskFull);
        EXPECT_EQ(problem.m_lOsError, LONG{ERROR_DISK_FULL});
        EXPECT_EQ(problem.m_strFileName, path.c_str());
        EXPECT_FALSE(file.Open(path.c_str(), kNew));
        EXPECT_EQ(file.m_hFile, CFile::hFileNull);
        EXPECT_TRUE(DeleteFileW(path.c_str())) << "nobody has it open";
        EXPECT_EQ(CauseOf([&] { CUtf8TextFile(path.c_str(), kNew); }), CFileException::diskFull);
    }
    CFileException problem;
    EXPECT_FALSE(CUtf8TextFile().Open(CString(L"C:\\a\0b", 6), kNew, &problem));
    EXPECT_EQ(problem.m_lOsError, LONG{ERROR_INVALID_NAME});
}

TEST(Utf8TextFile, TheMarkOfAMemoryBufferCoversNothing) {
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"a.txt");
    const struct {
        UINT flags;
        std::string given, before, after;
    } rows[] = {{kNew, "text", "old file", WithMark("text!")}, {kNew, WithMark("text"), "", WithMark("text!")},
                {kNew, "", "old file", WithMark("!")},         {kKept, "", "", WithMark("!")},
                {kKept, "", "old file", "!ld file"},           {kKept, "text", "old file", "text!ile"}};
    for (const auto& row : rows) {
        PutBytes(path, row.before);
        CUtf8TextFile file;
        file.SetUseMemoryBuffer(true);
        file.Write(row.given.data(), static_cast<UINT>(row.given.size()));
        ASSERT_TRUE(file.Open(path.c_str(), row.flags));
        file.WriteString(L"!");
        file.Close();
        EXPECT_EQ(BytesOf(path), row.after) << row.given;
    }
}

TEST(Utf8TextFile, TheMarkIsThreeBytes) {
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"a.txt");
    const std::pair<std::string, bool> rows[] = {{"", false},          {"\xEF", false},         {"\xEF\xBB", false},
                                                 {WithMark(""), true}, {"\xEF\xBB\xBE", false}, {WithMark("x"), true}};
    for (const auto& [bytes, hasMark] : rows) {
        PutBytes(path, bytes);
        EXPECT_EQ(CUtf8TextFile::HasByteOrderMark(path.c_str()), hasMark) << bytes;
    }
    EXPECT_FALSE(CUtf8TextFile::HasByteOrderMark(dir.Path().c_str()));
    EXPECT_FALSE(CUtf8TextFile::HasByteOrderMark(dir.Path(L"none").c_str()));
}

TEST(Utf8TextFile, AppendsOnlyFilesWithAMark) {
    const ScopedTestDir dir;
    const std::wstring source = dir.Path(L"source.txt");
    const std::wstring target = dir.Path(L"target.txt");
    const std::string text(10000, 'x');
    CUtf8TextFile file(target.c_str(), kNew);
    file.WriteString(L"first ");
    file.Seek(1, CFile::begin);
    PutBytes(source, "no mark");
    file.AppendFile(source.c_str());
    file.AppendFile(dir.Path(L"none").c_str());
    PutBytes(source, WithMark(text));
    file.AppendFile(source.c_str());
    CUtf8TextFile().AppendFile(source.c_str());
    file.Close();
    EXPECT_EQ(BytesOf(target), WithMark("first " + text));
}

TEST(CoreSocketFile, ClosesItselfOnceAndKnowsItsOwner) {
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"a.log");
    CSocketFileOwner owner{L"host", {}};
    {
        CCoreSocketFile file(path.c_str(), kNew, &owner);
        file.SetUseMemoryBuffer(true);
        file.Write("kept", 4);
        file.RegisterWithOwner(L"one");
        file.RegisterWithOwner(L"ONE");
        file.RegisterWithOwner(L"one");
        EXPECT_EQ(file.GetOwnerName(), L"host");
    }
    EXPECT_EQ(owner.strings.GetCount(), 2);
    EXPECT_EQ(BytesOf(path), "kept");
    CCoreSocketFile file(path.c_str(), CFile::modeRead);
    file.RegisterWithOwner(L"nobody's");
    EXPECT_EQ(file.GetOwnerName(), L"");
    file.Close();
    file.Close();
    EXPECT_EQ(CauseOf([&] { CCoreSocketFile(dir.Path(L"none").c_str(), CFile::modeRead); }),
              CFileException::fileNotFound);
}

TEST(TextFiles, ReadsShortBrokenAndMarkedFiles) {
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"a.txt");
    const struct {
        std::string bytes;
        Lines lines;
    } rows[] = {
        {"", {}},
        {"x", {"x"}},
        {"\n", {"\n"}},
        {"\r\n", {""}},
        {"\xEF\xBB", {"\xEF\xBF\xBD"}},
        {WithMark(""), {}},
        {WithMark("\xC3\xA4\r\n\xF0\x9F\x98\x80"), {"\xC3\xA4", "\xF0\x9F\x98\x80"}},
        {"a\xFFz\r\nb", {"a\xEF\xBF\xBDz", "b"}},
        {std::string("a\0b\nc", 5), {std::string("a\0b", 3), "c"}},
    };
    for (const auto& row : rows) {
        PutBytes(path, row.bytes);
        EXPECT_EQ(Read(path), row.lines) << row.bytes;
    }
    EXPECT_EQ(Read(dir.Path(L"none")), Lines{});
    EXPECT_EQ(Read(path + std::wstring(L"\0x", 2)), Lines{});
    const CFile writer(path.c_str(), CFile::modeWrite | CFile::shareDenyNone);
    EXPECT_EQ(Read(path), Lines{});
}

TEST(TextFiles, LineEndsAcrossBlocksCountOnce) {
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"a.txt");
    for (const std::string end : {"\r\n", "\n\r", "\n", "\r"}) {
        for (size_t length = 4092; length <= 4098; ++length) {
            const std::string first(length, 'a');
            PutBytes(path, first + end + "b" + end + "c");
            ASSERT_EQ(Read(path), (Lines{first, "b", "c"})) << length << testing::PrintToString(end);
            ASSERT_EQ(Read(path, true), (Lines{first + end, "b" + end, "c"})) << length;
        }
    }
}

// A hundred megabytes: the lines have all lengths from 150 to 250 bytes, so their ends fall anywhere in the blocks.
TEST(TextFiles, ReadsAHundredMegabytesLineByLine) {
    constexpr size_t kBytes = 100 << 20;
    const auto lengthOf = [](size_t i) { return 150 + i * 7 % 101; };
    const auto letterOf = [](size_t i) { return static_cast<char>('a' + i % 26); };
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"a.txt");
    size_t count = 0;
    {
        std::ofstream stream(std::filesystem::path(path), std::ios::binary);
        for (size_t bytes = 0; bytes < kBytes; bytes += lengthOf(count++)) {
            std::string line(lengthOf(count), letterOf(count));
            line.replace(0, 2, "\xC3\xA4").replace(line.size() - 2, 2, "\r\n");
            stream.write(line.data(), static_cast<std::streamsize>(line.size()));
        }
    }
    CStringList list(1000);
    ReadTextLines(path.c_str(), list, false);
    ASSERT_EQ(static_cast<size_t>(list.GetCount()), count);
    size_t i = 0;
    for (POSITION place = list.GetHeadPosition(); place != nullptr; ++i) {
        const CString& line = list.GetNext(place);
        const auto letter = static_cast<WCHAR>(letterOf(i));
        ASSERT_EQ(static_cast<size_t>(line.GetLength()), lengthOf(i) - 3) << i;
        ASSERT_TRUE(line[0] == L'\x00E4' && line[1] == letter && line[line.GetLength() - 1] == letter) << i;
    }
    EXPECT_EQ(i, count);
}

TEST(TextFiles, AppendsOneLineWithOneEnd) {
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"a.txt");
    EXPECT_TRUE(AppendTextLine(path.c_str(), L"one", false, true));
    EXPECT_TRUE(AppendTextLine(path.c_str(), L"two\r\n", false, true));
    EXPECT_TRUE(AppendTextLine(path.c_str(), L"", false, false));
    EXPECT_TRUE(AppendTextLine(path.c_str(), L"\n", false, false));
    EXPECT_TRUE(AppendTextLine(path.c_str(), L"last", true, false));
    const std::regex expected(std::string(kMark) +
                              "one\r\ntwo\r\n\r\n\n\r\n"
                              "[01]\\d/[0-3]\\d/\\d\\d [01]\\d:[0-5]\\d:[0-5]\\d [AP]M last\r\n");
    EXPECT_TRUE(std::regex_match(BytesOf(path), expected)) << BytesOf(path);
}

TEST(TextFiles, WritesLinesAnewOrBehindTheOthers) {
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"a.txt");
    PutBytes(path, "a file that was there before");
    CStringList lines;
    lines.AddTail(L"\x00E4");
    lines.AddTail(L"b\r\n");
    EXPECT_TRUE(WriteTextLines(path.c_str(), lines, true));
    EXPECT_EQ(BytesOf(path), WithMark("\xC3\xA4\r\nb\r\n"));
    EXPECT_TRUE(WriteTextLines(path.c_str(), lines, false));
    EXPECT_EQ(BytesOf(path), WithMark("\xC3\xA4\r\nb\r\n\xC3\xA4\r\nb\r\n"));
    EXPECT_TRUE(WriteTextLines(dir.Path(L"new.txt").c_str(), lines, false));
    EXPECT_EQ(BytesOf(dir.Path(L"new.txt")), WithMark("\xC3\xA4\r\nb\r\n"));
}

TEST(TextFiles, ALockedFileIsTriedTenTimes) {
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"a.txt");
    const ImportPatch<decltype(&Sleep)> patch(GetModuleHandleW(nullptr), "Sleep", CountSleep);
    CFile locker(path.c_str(), kNew | CFile::shareExclusive);
    CStringList lines;
    s_sleeps = 0;
    EXPECT_FALSE(AppendTextLine(CString(L"C:\\a\0b", 6), L"line", false, true));
    EXPECT_EQ(s_sleeps, 0) << "a name that nothing can have is no matter of time";
    EXPECT_FALSE(AppendTextLine(path.c_str(), L"line", false, true));
    EXPECT_EQ(s_sleeps, 10);
    s_sleeps = 0;
    EXPECT_FALSE(WriteTextLines(path.c_str(), lines, true));
    EXPECT_EQ(s_sleeps, 10);
    s_sleeps = 0;
    s_locker = &locker;
    EXPECT_TRUE(AppendTextLine(path.c_str(), L"line", false, true));
    s_locker = nullptr;
    EXPECT_EQ(s_sleeps, 3);
    EXPECT_EQ(BytesOf(path), WithMark("line\r\n"));
}
