#include "files/LongPathFile.h"

#include <functional>
#include <gtest/gtest.h>

#include "files/FileFindEx.h"
#include "files/NotedCall.h"
#include "files/PathHelper.h"
#include "support/FileBytes.h"
#include "support/ScopedPreinstallation.h"
#include "support/ScopedTestDir.h"

namespace {

// Stands in for every call that the wrappers forward to.
struct SeenCalls {
    NotedCall attributes{&::GetFileAttributesW, "GetFileAttributesW", 1};
    NotedCall attributesEx{&::GetFileAttributesExW, "GetFileAttributesExW", TRUE};
    NotedCall setAttributes{&::SetFileAttributesW, "SetFileAttributesW", TRUE};
    NotedCall create{&::CreateFileW, "CreateFileW", INVALID_HANDLE_VALUE};
    NotedCall copy{&::CopyFileW, "CopyFileW", TRUE};
    NotedCall move{&::MoveFileExW, "MoveFileExW", TRUE};
    NotedCall remove{&::DeleteFileW, "DeleteFileW", TRUE};
    NotedCall link{&::CreateHardLinkW, "CreateHardLinkW", TRUE};
    NotedCall shell{&::SHGetFileInfoW, "SHGetFileInfoW", 1};
    NotedCall directory{&::CreateDirectoryW, "CreateDirectoryW", TRUE};
    NotedCall removeDirectory{&::RemoveDirectoryW, "RemoveDirectoryW", TRUE};
};

const Numbers kAsked{GENERIC_READ, FILE_SHARE_WRITE, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS};
const Numbers kMade{GENERIC_READ, FILE_SHARE_READ, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL};
FILETIME s_time;
LARGE_INTEGER s_size;
SHFILEINFOW s_shellInfo;
BY_HANDLE_FILE_INFORMATION s_info;

// Another path of the same length.
CString Second(const CString& path) {
    return path.IsEmpty() ? path : path.Left(path.GetLength() - 1) + L"2";
}

const struct {
    std::function<void(const CString&)> call;
    bool offlineRule;
    size_t paths;
    Numbers numbers;
} kWrappers[] = {
    {[](auto& p) { LongPath::GetFileAttributes(p); }, true, 1, {}},
    {[](auto& p) { LongPath::GetFileAttributesEx(p, GetFileExInfoStandard, nullptr); }, true, 1, {0}},
    {[](auto& p) { LongPath::SetFileAttributes(p, 7); }, true, 1, {7}},
    {[](auto& p) { LongPath::CreateFile(p, 1, 2, nullptr, 3, 4); }, true, 1, {1, 2, 3, 4}},
    {[](auto& p) { LongPath::CopyFile(p, Second(p), true); }, true, 2, {TRUE}},
    {[](auto& p) { LongPath::MoveFile(p, Second(p)); }, true, 2, {3}},
    {[](auto& p) { LongPath::DeleteFile(p); }, false, 1, {}},
    {[](auto& p) { LongPath::CreateHardLink(p, Second(p), nullptr); }, false, 2, {}},
    {[](auto& p) { LongPath::GetFileTime(p, &s_time, &s_time, &s_time); }, true, 1, kAsked},
    {[](auto& p) { LongPath::SetFileTime(p, &s_time, &s_time, &s_time); }, true, 1, kAsked},
    {[](auto& p) { LongPath::GetFileSize(p, s_size); }, true, 1, kAsked},
    {[](auto& p) { LongPath::GetFileInformation(p, s_info); }, true, 1, kMade},
    {[](auto& p) { CPathHelper::DeleteDirectory(p, false); }, false, 1, {}},
};

std::wstring LongName(const std::wstring& start, size_t length = 248) {
    return start + std::wstring(length - start.size(), L'x');
}

void ExpectSystemPaths(const std::wstring& given, const std::wstring& rewritten, const std::wstring& kept) {
    TakeNumbers();
    for (const auto& wrapper : kWrappers) {
        SCOPED_TRACE(&wrapper - kWrappers);
        wrapper.call(given.c_str());
        const std::wstring& expected = wrapper.offlineRule ? rewritten : kept;
        Paths paths{expected};
        if (wrapper.paths == 2) paths.emplace_back(Second(expected.c_str()).GetString());
        EXPECT_EQ(TakePaths(), paths);
        EXPECT_EQ(TakeNumbers(), wrapper.numbers);
    }
}

}  // namespace

TEST(LongPathFile, ThePrefixComesFromTwoHundredAndFortyEightCharactersOn) {
    const SeenCalls calls;
    for (const std::wstring start : {L"X:\\", L"\\\\server\\share\\"}) {
        const std::wstring fits = LongName(start, 247), longer = LongName(start);
        const std::wstring prefixed = start[0] == L'X' ? L"\\\\?\\" + longer : L"\\\\?\\UNC" + longer.substr(1);
        ExpectSystemPaths(fits, fits, fits);
        ExpectSystemPaths(longer, prefixed, prefixed);
        ExpectSystemPaths(prefixed, prefixed, prefixed);
    }
    ExpectSystemPaths(L"", L"", L"");
    LongPath::ReplaceFile(L"X:\\new", L"X:\\read-only");
    EXPECT_EQ(TakePaths(), (Paths{L"X:\\read-only", L"X:\\read-only", L"X:\\new", L"X:\\read-only"}));
    EXPECT_EQ(TakeNumbers(), (Numbers{0, 3})) << "no attribute is left, and then it moves";
}

TEST(LongPathFile, APathWithAZeroInsideReachesNoCall) {
    const SeenCalls calls;
    const CString cut(L"C:\\a\0b", 6), whole = L"C:\\a";
    std::vector<std::function<bool()>> refused{
        [&] { return LongPath::GetFileAttributes(cut) != INVALID_FILE_ATTRIBUTES; },
        [&] { return LongPath::FileAccess(cut) == 0; },
        [&] { return LongPath::CreateFile(cut, 0, 0, nullptr, 0, 0) != INVALID_HANDLE_VALUE; },
        [&] { return LongPath::GetShellFileInfo(cut, 0, s_shellInfo, sizeof(s_shellInfo), 0) != 0; },
        [&] { return LongPath::ReplaceFile(whole, cut) || LongPath::ReplaceFile(cut, whole); },
        [&] { return LongPath::CopyFile(whole, cut, true) || LongPath::MoveFile(whole, cut); },
        [&] { return LongPath::CreateHardLink(whole, cut, nullptr); },
        [&] { return CPathHelper::FileExists(cut) || CPathHelper::DirectoryExists(cut); },
        [&] { return CPathHelper::IsSameRoot(cut, cut) || CPathHelper::IsSameRoot(whole, cut); },
        [&] { return CPathHelper::CreateDirectoryTree(cut) || CPathHelper::DeleteDirectory(cut, true); },
        [&] { return CFileFindEx().FindFile(cut) != FALSE; }};
    for (const auto& wrapper : kWrappers) refused.emplace_back([&] { return wrapper.call(cut), false; });
    for (const auto call : {CPathHelper::GetShortPath, CPathHelper::GetLongPath})
        refused.emplace_back([=] { return CauseOf([&] { call(cut); }) != CFileException::genericException; });
    for (const auto& call : refused) {
        SCOPED_TRACE(&call - refused.data());
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(call());
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_NAME});
        EXPECT_EQ(TakePaths(), Paths());
    }
}

// One machine that asks everything about drive C: wrappers, search, names.
TEST(LongPathFile, DriveCIsTheInstalledSystemsOnAPreinstallationBoot) {
    const ScopedPreinstallation machine;
    {
        const SeenCalls calls;
        ExpectSystemPaths(L"c:\\a", L"c:\\a", L"c:\\a");  // no installed system yet
    }
    CreateDirectoryW((machine.SystemFolder(L'D') + L"\\config").c_str(), nullptr);
    CFileFindEx tooEarly;
    EXPECT_FALSE(tooEarly.FindFile(L"C:\\Windows\\System32\\config"));
    PutBytes(L"D:\\Windows\\System32\\config\\SOFTWARE", "x");
    {
        const SeenCalls calls;
        ExpectSystemPaths(L"C:\\a", L"D:\\a", L"C:\\a");
        ExpectSystemPaths(L"c:\\a", L"D:\\a", L"c:\\a");
        ExpectSystemPaths(L"X:\\a", L"X:\\a", L"X:\\a");
        const std::wstring longer = LongName(L"C:\\");
        ExpectSystemPaths(longer, L"\\\\?\\D" + longer.substr(1), L"\\\\?\\" + longer);
        ExpectSystemPaths(L"\\\\?\\C:\\a", L"\\\\?\\C:\\a", L"\\\\?\\C:\\a");
        LongPath::GetShellFileInfo(L"C:\\a", 0, s_shellInfo, sizeof(s_shellInfo), 0);
        EXPECT_EQ(TakePaths(), Paths{L"C:\\a"}) << "the shell is asked about the path as given";
    }
    CFileFindEx search;
    const CString hive = L"C:\\Windows\\System32\\config\\SOFTWARE";
    for (const CString start : {L"C", L"D", L"d", L"\\\\?\\C", L"c"}) {
        ASSERT_TRUE(search.FindFile(start + L":\\Windows\\System32\\config\\*E"));
        search.FindNextFile();
        EXPECT_EQ(search.GetFilePath(), (start == L"c" ? L"c" : L"C") + hive.Mid(1));
    }
    for (const LPCWSTR pattern : {L"d:\\Windows\\*", L"D:\\Windows\\*"}) {
        EXPECT_TRUE(search.FindFile(pattern));
        EXPECT_EQ(search.GetRoot(), L"C:\\Windows\\");
    }
    EXPECT_TRUE(CPathHelper::FileExists(hive) && LongPath::FileAccess(hive) == 0);
    EXPECT_EQ(CPathHelper::GetLongPath(L"c:\\Windows\\System32"), L"C:\\Windows\\System32");
    EXPECT_EQ(CPathHelper::GetLongPath(L"D:\\Windows\\System32"), L"D:\\Windows\\System32");
    EXPECT_EQ(CPathHelper::GetLongPath(L"c:"), L"C:\\");
    EXPECT_EQ(CPathHelper::GetShortPath(L"c:\\Windows\\System32"), L"C:\\Windows\\System32");
    EXPECT_EQ(CPathHelper::GetShortPath(L"D:\\Windows\\System32"), L"C:\\Windows\\System32");
}

TEST(LongPathFile, TheShellAnswersUpToTwoHundredAndFiftyNineCharacters) {
    const ScopedTestDir dir, temporary;
    SetEnvironmentVariableW(L"TMP", temporary.Path().c_str());
    const std::wstring folder = dir.Path(std::wstring(120, L'd'));
    CreateDirectoryW(folder.c_str(), nullptr);
    for (const size_t length : {259u, 260u}) {
        const CString file = LongName(folder + L"\\", length).c_str();
        PutBytes(file.GetString(), "x");
        SetLastError(ERROR_SUCCESS);
        const auto answer = LongPath::GetShellFileInfo(file, 0, s_shellInfo, sizeof(s_shellInfo), SHGFI_DISPLAYNAME);
        EXPECT_EQ(std::pair(answer != 0, GetLastError() == ERROR_FILE_EXISTS), std::pair(length == 259, length == 260));
        EXPECT_EQ(std::filesystem::is_empty(temporary.Path()), length == 259) << "the name's file stays";
    }
    SetEnvironmentVariableW(L"TMP", nullptr);
}
