#include "files/LongPathFile.h"

#include <winternl.h>

#include <functional>
#include <gtest/gtest.h>
#include <io.h>
#include <string>
#include <vector>

#include "files/DeepFolder.h"
#include "files/NotedCall.h"
#include "support/ImportPatch.h"
#include "support/ScopedPreinstallation.h"
#include "support/ScopedTestDir.h"

namespace {

struct Opening {
    DWORD access, share, disposition, flags;
    bool operator==(const Opening&) const = default;
};
Opening s_opening;

// Stands in for every call that the wrappers forward to.
struct SeenCalls {
    NotedCall attributes{&::GetFileAttributesW, "GetFileAttributesW", 1};
    NotedCall attributesEx{&::GetFileAttributesExW, "GetFileAttributesExW", TRUE};
    NotedCall setAttributes{&::SetFileAttributesW, "SetFileAttributesW", TRUE};
    NotedCall copy{&::CopyFileW, "CopyFileW", TRUE};
    NotedCall remove{&::DeleteFileW, "DeleteFileW", TRUE};
    NotedCall link{&::CreateHardLinkW, "CreateHardLinkW", TRUE};
    NotedCall shell{&::SHGetFileInfoW, "SHGetFileInfoW", 1};
    ImportPatch<decltype(&::CreateFileW)> create{
        GetModuleHandleW(nullptr), "CreateFileW",
        [](LPCWSTR path, DWORD access, DWORD share, SECURITY_ATTRIBUTES*, DWORD disposition, DWORD flags, HANDLE) {
            s_notedPaths.emplace_back(path);
            s_opening = {access, share, disposition, flags};
            return INVALID_HANDLE_VALUE;
        }};
    ImportPatch<decltype(&::MoveFileExW)> move{GetModuleHandleW(nullptr), "MoveFileExW",
                                               [](LPCWSTR from, LPCWSTR to, DWORD flags) {
                                                   EXPECT_EQ(flags, 3u);
                                                   s_notedPaths.insert(s_notedPaths.end(), {from, to});
                                                   return TRUE;
                                               }};
    // The search for the installed system's drive asks by the same call.
    ImportPatch<decltype(&::_waccess)> existence{
        GetModuleHandleW(nullptr), "_waccess", [](const wchar_t* path, int mode) {
            if (std::wstring_view(path).ends_with(L"\\config\\SOFTWARE"))
                return SystemFunction(&_waccess, L"msvcrt.dll", "_waccess")(path, mode);
            s_notedPaths.emplace_back(path);
            return 0;
        }};
};

struct Wrapper {
    const char* name;
    std::function<void(const CString&)> call;
    bool offlineRule;
    size_t paths;
};

const std::vector<Wrapper>& Wrappers() {
    static FILETIME s_time;
    static LARGE_INTEGER s_size;
    static BY_HANDLE_FILE_INFORMATION s_info;
    static const std::vector<Wrapper> s_wrappers = {
        {"GetFileAttributes", [](const CString& p) { LongPath::GetFileAttributes(p); }, true, 1},
        {"GetFileAttributesEx",
         [](const CString& p) { LongPath::GetFileAttributesEx(p, GetFileExInfoStandard, nullptr); }, true, 1},
        {"SetFileAttributes", [](const CString& p) { LongPath::SetFileAttributes(p, 0); }, true, 1},
        {"CreateFile", [](const CString& p) { LongPath::CreateFile(p, 0, 0, nullptr, 0, 0); }, true, 1},
        {"CopyFile", [](const CString& p) { LongPath::CopyFile(p, p, true); }, true, 2},
        {"MoveFile", [](const CString& p) { LongPath::MoveFile(p, p); }, true, 2},
        {"FileAccess", [](const CString& p) { LongPath::FileAccess(p); }, true, 1},
        {"DeleteFile", [](const CString& p) { LongPath::DeleteFile(p); }, false, 1},
        {"CreateHardLink", [](const CString& p) { LongPath::CreateHardLink(p, p, nullptr); }, false, 2},
        {"GetFileTime", [](const CString& p) { LongPath::GetFileTime(p, &s_time, &s_time, &s_time); }, true, 1},
        {"SetFileTime", [](const CString& p) { LongPath::SetFileTime(p, &s_time, &s_time, &s_time); }, true, 1},
        {"GetFileSize", [](const CString& p) { LongPath::GetFileSize(p, s_size); }, true, 1},
        {"GetFileInformation", [](const CString& p) { LongPath::GetFileInformation(p, s_info); }, true, 1},
    };
    return s_wrappers;
}

std::wstring LongName(std::wstring path, size_t length) {
    return path + std::wstring(length - path.size(), L'x');
}

void ExpectSystemPaths(const std::wstring& given, const std::wstring& rewritten, const std::wstring& kept) {
    for (const Wrapper& wrapper : Wrappers()) {
        SCOPED_TRACE(wrapper.name);
        s_notedPaths.clear();
        wrapper.call(given.c_str());
        EXPECT_EQ(TakePaths(), Paths(wrapper.paths, wrapper.offlineRule ? rewritten : kept));
    }
}

void WriteFileOf(const std::wstring& path, DWORD bytes) {
    const HANDLE file = LongPath::CreateFile(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0);
    ASSERT_NE(file, INVALID_HANDLE_VALUE) << GetLastError();
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(file, std::string(bytes, 'b').data(), bytes, &written, nullptr));
    CloseHandle(file);
}

}  // namespace

TEST(LongPathFile, ThePrefixComesFromTwoHundredAndFortyEightCharactersOn) {
    const SeenCalls calls;
    for (const std::wstring start : {L"X:\\", L"\\\\server\\share\\"}) {
        const std::wstring fits = LongName(start, 247), longer = LongName(start, 248);
        ExpectSystemPaths(fits, fits, fits);
        const std::wstring prefixed = start[0] == L'X' ? L"\\\\?\\" + longer : L"\\\\?\\UNC" + longer.substr(1);
        ExpectSystemPaths(longer, prefixed, prefixed);
        ExpectSystemPaths(prefixed, prefixed, prefixed);
    }
    ExpectSystemPaths(L"", L"", L"");
}

TEST(LongPathFile, DriveCIsTheInstalledSystemsOnAPreinstallationBoot) {
    const ScopedPreinstallation machine;
    {
        const SeenCalls calls;
        ExpectSystemPaths(L"c:\\a", L"c:\\a", L"c:\\a");  // no installed system yet
    }
    CreateDirectoryW((machine.SystemFolder(L'D') + L"\\config").c_str(), nullptr);
    WriteFileOf(L"D:\\Windows\\System32\\config\\SOFTWARE", 1);
    const SeenCalls calls;
    ExpectSystemPaths(L"C:\\a", L"D:\\a", L"C:\\a");
    ExpectSystemPaths(L"c:\\a", L"D:\\a", L"c:\\a");
    ExpectSystemPaths(L"X:\\a", L"X:\\a", L"X:\\a");
    const std::wstring longer = LongName(L"C:\\", 248);
    ExpectSystemPaths(longer, L"\\\\?\\D" + longer.substr(1), L"\\\\?\\" + longer);
    ExpectSystemPaths(L"\\\\?\\C:\\a", L"\\\\?\\C:\\a", L"\\\\?\\C:\\a");
    SHFILEINFOW info{};
    LongPath::GetShellFileInfo(L"C:\\a", 0, info, sizeof(info), 0);
    EXPECT_EQ(TakePaths(), Paths{L"C:\\a"}) << "the shell is asked about the path as given";
}

TEST(LongPathFile, OpensWhatItAsksAboutForReading) {
    const SeenCalls calls;
    for (const Wrapper& wrapper : Wrappers()) {
        s_opening = {};
        wrapper.call(L"Q:\\a");
        const std::string name = wrapper.name;
        if (name == "GetFileTime" || name == "SetFileTime" || name == "GetFileSize") {
            EXPECT_EQ(s_opening, (Opening{GENERIC_READ, FILE_SHARE_WRITE, OPEN_EXISTING, 0x2000000})) << name;
        } else if (name == "GetFileInformation") {
            EXPECT_EQ(s_opening, (Opening{GENERIC_READ, FILE_SHARE_READ, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL}));
        }
    }
}

TEST(LongPathFile, WorksFarBeyondTheClassicLimit) {
    const ScopedTestDir dir;
    const std::wstring folder = MakeDeepFolder(dir.Path());
    const CString file = (folder + L"\\file").c_str(), copy = file + L".copy", link = file + L".link";
    WriteFileOf(file.GetString(), 3);
    EXPECT_EQ(LongPath::GetFileAttributes(folder.c_str()), DWORD{FILE_ATTRIBUTE_DIRECTORY});
    EXPECT_EQ(LongPath::FileAccess(file), 0);
    EXPECT_TRUE(LongPath::CopyFile(file, copy, true));
    EXPECT_FALSE(LongPath::CopyFile(file, copy, true));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_EXISTS});
    EXPECT_TRUE(LongPath::CreateHardLink(link, file, nullptr)) << GetLastError();
    BY_HANDLE_FILE_INFORMATION info{};
    EXPECT_EQ(LongPath::GetFileInformation(file, info).nNumberOfLinks, 2u);
    LARGE_INTEGER size{};
    EXPECT_TRUE(LongPath::GetFileSize(link, size));
    EXPECT_EQ(size.QuadPart, 3);
    FILETIME created{}, accessed{}, written{};
    EXPECT_TRUE(LongPath::GetFileTime(folder.c_str(), &created, &accessed, &written));
    EXPECT_NE(written.dwHighDateTime, 0u);
    EXPECT_TRUE(LongPath::SetFileAttributes(copy, FILE_ATTRIBUTE_READONLY));
    EXPECT_TRUE(LongPath::ReplaceFile(file, copy));
    EXPECT_EQ(LongPath::FileAccess(file), -1);
    EXPECT_TRUE(LongPath::MoveFile(copy, link));
    WIN32_FILE_ATTRIBUTE_DATA data{};
    EXPECT_TRUE(LongPath::GetFileAttributesEx(link, GetFileExInfoStandard, &data));
    EXPECT_EQ(data.nFileSizeLow, 3u);
    EXPECT_TRUE(LongPath::DeleteFile(link));
    EXPECT_FALSE(LongPath::DeleteFile(link));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST(LongPathFile, WhatIsMeantToFailFails) {
    const ScopedTestDir dir;
    const CString file = dir.Path(L"file").c_str(), missing = dir.Path(L"missing").c_str();
    WriteFileOf(file.GetString(), 3);
    // Wine sets times through a handle that may only read; Windows refuses.
    const ImportPatch<decltype(&::SetFileTime)> asOnWindows(
        GetModuleHandleW(nullptr), "SetFileTime",
        [](HANDLE handle, const FILETIME* created, const FILETIME* accessed, const FILETIME* written) -> BOOL {
            PUBLIC_OBJECT_BASIC_INFORMATION info{};
            NtQueryObject(handle, ObjectBasicInformation, &info, sizeof(info), nullptr);
            if ((info.GrantedAccess & FILE_WRITE_ATTRIBUTES) != 0)
                return SystemFunction(&::SetFileTime, L"kernel32.dll", "SetFileTime")(handle, created, accessed,
                                                                                      written);
            SetLastError(ERROR_ACCESS_DENIED);
            return FALSE;
        });
    const FILETIME time{1, 1};
    EXPECT_FALSE(LongPath::SetFileTime(file, &time, &time, &time));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_FALSE(LongPath::ReplaceFile(file, missing));
    EXPECT_EQ(LongPath::FileAccess(file), 0);
    EXPECT_TRUE(LongPath::ReplaceFile(L"A:\\none", L"a:\\NONE"));
    LARGE_INTEGER size{};
    EXPECT_FALSE(LongPath::GetFileSize(missing, size));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});

    BY_HANDLE_FILE_INFORMATION info{};
    EXPECT_EQ(LongPath::GetFileInformation(missing, info).nNumberOfLinks, 1u);
    EXPECT_TRUE(LongPath::GetFileSize(missing, size));
    EXPECT_EQ(size.QuadPart, 0);
    info.nNumberOfLinks = 7;
    EXPECT_EQ(LongPath::GetFileInformation((dir.Path(L"none\\file")).c_str(), info).nNumberOfLinks, 0u);
}

TEST(LongPathFile, TheShellAnswersUpToTwoHundredAndFiftyNineCharacters) {
    const ScopedTestDir dir, temporary;
    WCHAR before[260];
    GetEnvironmentVariableW(L"TMP", before, 260);
    SetEnvironmentVariableW(L"TMP", temporary.Path().c_str());
    std::wstring folder = dir.Path(std::wstring(120, L'd'));
    CreateDirectoryW(folder.c_str(), nullptr);
    for (const size_t length : {259u, 260u}) {
        SCOPED_TRACE(length);
        const std::wstring file = LongName(folder + L"\\", length - 4) + L".txt";
        WriteFileOf(file, 1);
        SHFILEINFOW info{};
        SetLastError(0);
        const bool answered = LongPath::GetShellFileInfo(file.c_str(), 0, info, sizeof(info), SHGFI_DISPLAYNAME) != 0;
        const DWORD error = GetLastError();
        EXPECT_EQ(answered, length == 259);
        if (!answered) {
            EXPECT_EQ(error, DWORD{ERROR_FILE_EXISTS});
        }
        WIN32_FIND_DATAW left{};
        const HANDLE search = FindFirstFileW(temporary.Path(L"TZM*").c_str(), &left);
        EXPECT_EQ(search != INVALID_HANDLE_VALUE, length == 260);
        EXPECT_EQ(left.nFileSizeLow, 0u);
        if (search != INVALID_HANDLE_VALUE) FindClose(search);
    }
    SetEnvironmentVariableW(L"TMP", before);
}
