#include "files/PathHelper.h"

#include <shlobj.h>

#include <malloc.h>

#include "files/NotedCall.h"
#include "files/PathCases.h"
#include "support/FileBytes.h"
#include "support/ScopedRegistryKey.h"
#include "support/ScopedTestDir.h"

namespace {

int s_allocations = 0;

// A text is taken apart or put together with one allocation at most.
template <class Call>
PathOperation On(Call call) {
    return [call](const std::wstring& path, const std::wstring& second) {
        const CString first = path.c_str(), other = second.c_str();
        // Texts of the string class are allocated in the library's module.
        const ImportPatch<void* (*)(size_t)> counted(LoadedModule(L"libstdc++-6.dll"), "malloc", [](size_t bytes) {
            ++s_allocations;
            return malloc(bytes);
        });
        s_allocations = 0;
        const auto answer = call(first, other);
        if constexpr (std::is_same_v<decltype(answer), const bool>) {
            return std::wstring(answer ? L"yes" : L"");
        } else {
            EXPECT_LE(s_allocations, 1);
            return std::wstring(answer.GetString());
        }
    };
}

PathOperation On(CString (*call)(const CString&)) {
    return On([call](const CString& path, const CString&) { return call(path); });
}

PathOperation On(bool (*call)(const CString&)) {
    return On([call](const CString& path, const CString&) { return call(path); });
}

}  // namespace

TEST(PathHelper, EveryTextOperationOnEveryKindOfPath) {
    CheckPathCases({
        // clang-format off
        {"GetParentPath", On(CPathHelper::GetParentPath)}, {"GetFileName", On(CPathHelper::GetFileName)},
        {"GetExtension", On(CPathHelper::GetExtension)}, {"GetFileTitle", On(CPathHelper::GetFileTitle)},
        {"AbbreviatePath", On(CPathHelper::AbbreviatePath)}, {"AddLongPathPrefix", On(CPathHelper::AddLongPathPrefix)},
        {"RemoveLongPathPrefix", On(CPathHelper::RemoveLongPathPrefix)},
        {"MakeLongPath", On(CPathHelper::MakeLongPath)}, {"IsRootPath", On(CPathHelper::IsRootPath)},
        {"IsDrivePath", On(CPathHelper::IsDrivePath)}, {"IsUncPath", On(CPathHelper::IsUncPath)},
        {"IsDottedServerPath", On(CPathHelper::IsDottedServerPath)}, {"GetDriveRoot", On(CPathHelper::GetDriveRoot)},
        {"GetUncRelativePart", On(CPathHelper::GetUncRelativePart)}, {"GetUncRoot", On(CPathHelper::GetUncRoot)},
        {"CombinePath", On([](auto& base, auto& path) { return CPathHelper::CombinePath(base, path); })},
        {"ReplaceExtension", On([](auto& path, auto& with) { return CPathHelper::ReplaceExtension(path, with); })},
        {"IsSubPath", On([](auto& path, auto& parent) { return CPathHelper::IsSubPath(parent, path); })},
        {"GetRelativePath", [](auto& path, auto& base) {
            return std::wstring(CPathHelper::GetRelativePath(path.c_str(), base.c_str()).GetString()); }},
        // clang-format on
    });
    // What a null leaves, and case over all of Unicode.
    EXPECT_EQ(CPathHelper::CombinePath(L"C:\\a\\", nullptr), L"C:\\a\\");
    EXPECT_EQ(CPathHelper::ReplaceExtension(L"a.b", nullptr), L"a");
    EXPECT_TRUE(CPathHelper::IsSubPath(L"c:\\\x00e4", L"X:\\C:\\\x00c4\\b"));
    EXPECT_EQ(CPathHelper::GetRelativePath(L"C:\\A\\\x00c4\\c", L"c:\\a\\\x00e4"), L"c");
}

TEST(PathHelper, WhatTheSystemKnowsOfAPath) {
    const ScopedTestDir dir;
    const CString file = dir.Path(L"a rather long name.extension").c_str(), none = file + L"x";
    PutBytes(file.GetString(), "");
    const CString brief = CPathHelper::GetShortPath(file);
    WCHAR system[260] = {};
    GetShortPathNameW(file, system, 260);
    EXPECT_EQ(brief, system);
    EXPECT_LT(CPathHelper::GetFileName(brief).GetLength(), 13);
    for (const auto call : {CPathHelper::GetShortPath, CPathHelper::GetLongPath}) {
        const NotedCall asked(&GetLongPathNameW, "GetLongPathNameW", 0, ERROR_FILE_NOT_FOUND);  // Wine asks nothing
        CString name;
        EXPECT_TRUE(Throws<CFileException>([&] { call(none); },
                                           [&](const CFileException& problem) {
                                               EXPECT_EQ(problem.m_cause, CFileException::genericException);
                                               EXPECT_EQ(problem.m_lOsError, LONG{ERROR_FILE_NOT_FOUND});
                                               name = problem.m_strFileName;
                                           }));
        EXPECT_EQ(name, none);
    }
    // Short names are asked for with the prefix from 248 characters on, long ones always.
    const NotedCall shortNames(&GetShortPathNameW, "GetShortPathNameW", 0);
    const NotedCall longNames(&GetLongPathNameW, "GetLongPathNameW", 0);
    const CString fits = L"Q:\\" + CString(L'x', 244), longer = fits + L"x";
    for (const LPCWSTR path : {fits.GetString(), longer.GetString(), L"q:"}) {
        EXPECT_NE(CauseOf([&] { CPathHelper::GetShortPath(path); }), -1);
        EXPECT_NE(CauseOf([&] { CPathHelper::GetLongPath(path); }), -1);
    }
    const std::wstring prefixed = (L"\\\\?\\" + longer).GetString();
    EXPECT_EQ(TakePaths(),
              (Paths{fits.GetString(), (L"\\\\?\\" + fits).GetString(), prefixed, prefixed, L"q:", L"\\\\?\\q:\\"}));

    SetEnvironmentVariableW(L"PATH_HELPER_TEST", dir.Path().c_str());
    const struct {
        LPCWSTR path;
        bool isFile, isDirectory;
    } rows[] = {{L"%PATH_HELPER_TEST%\\a rather long name.extension", true, false},
                {L"%PATH_HELPER_TEST%", false, true},
                {L"%PATH_HELPER_TEST%\\none", false, false},
                {L"", false, false}};
    for (const auto& row : rows) {
        EXPECT_EQ(CPathHelper::FileExists(row.path), row.isFile);
        EXPECT_EQ(CPathHelper::DirectoryExists(row.path), row.isDirectory);
    }
    const CString deep = (L"C:\\" + std::wstring(40000, L'x')).c_str();
    EXPECT_TRUE(CPathHelper::IsSameRoot(deep, L"c:\\y"));
    EXPECT_FALSE(CPathHelper::IsSameRoot(deep, L"D:\\y") || CPathHelper::IsSameRoot(L"", L"x"));
}

TEST(PathHelper, FoldersOfTheSystem) {
    const CString windows = CPathHelper::GetSpecialFolderPath(CSIDL_WINDOWS);
    EXPECT_TRUE(CPathHelper::DirectoryExists(windows));
    EXPECT_EQ(CPathHelper::GetSpecialFolderFile(CSIDL_WINDOWS, L"win.ini"), windows + L"\\win.ini");
    EXPECT_EQ(CPathHelper::GetSpecialFolderFile(0x7fff, L"win.ini"), L"");
    const CString file = CPathHelper::GetTempFile();
    EXPECT_TRUE(CPathHelper::FileExists(file));
    EXPECT_EQ(CPathHelper::GetFileName(file).Left(3).CompareNoCase(L"ZMT"), 0);
    EXPECT_EQ(CPathHelper::GetParentPath(file) + L"\\", CPathHelper::GetTempDirectory());
    DeleteFileW(file);
}

TEST(PathHelper, DrivesOfEveryKindAndTheirNetworkPaths) {
    CStringList drives;
    EXPECT_TRUE(CPathHelper::EnumerateDrives(drives));
    EXPECT_NE(drives.Find(L"C:\\"), nullptr);
    EXPECT_TRUE(CPathHelper::IsValidDrive(L"c:\\anything"));
    for (const LPCWSTR none : {L"", L"Q:\\", L"\\\\s\\t"}) EXPECT_FALSE(CPathHelper::IsValidDrive(none));
    {
        // More text than the first try has room for: drive 0 a hundred times, of types 0 to 6 in turn.
        const ImportPatch<decltype(&::GetLogicalDriveStringsW)> many(
            GetModuleHandleW(nullptr), "GetLogicalDriveStringsW", [](DWORD chars, LPWSTR buffer) -> DWORD {
                constexpr DWORD kLength = 100 * 4;
                if (chars <= kLength) return kLength + 1;
                for (DWORD i = 0; i < 100; ++i) wcscpy(buffer + size_t{4} * i, L"0:\\");
                buffer[kLength] = L'\0';
                return kLength;
            });
        static UINT s_type = 0;
        const ImportPatch<decltype(&::GetDriveTypeW)> types(GetModuleHandleW(nullptr), "GetDriveTypeW",
                                                            [](LPCWSTR) { return s_type++ % 7; });
        drives.RemoveAll();
        EXPECT_TRUE(CPathHelper::EnumerateDrives(drives));
        EXPECT_EQ(drives.GetCount(), 3 * 14) << "fixed, removable and network drives";
    }
    {
        const NotedCall none(&GetLogicalDriveStringsW, "GetLogicalDriveStringsW", 0);
        EXPECT_FALSE(CPathHelper::EnumerateDrives(drives));
        EXPECT_FALSE(CPathHelper::IsValidDrive(L"C:\\"));
    }
    ScopedRegistryKey profile(HKEY_USERS);
    ScopedRegistryKey mine(HKEY_CURRENT_USER, L"Network\\M");
    const CString sid = profile.Path().c_str();
    profile.SetText(L"Network\\M", L"RemotePath", L"\\\\server\\share");
    profile.SetText(L"Network\\N", L"RemotePath", L"\\\\server\\share\\");
    profile.SetText(L"Network\\O", L"RemotePath", L"");
    mine.SetText(L"RemotePath", L"\\\\server\\mine");
    const std::tuple<LPCWSTR, CString, LPCWSTR> rows[] = {{L"m:\\a\\b", sid, L"\\\\server\\share\\a\\b"},
                                                          {L"N:\\a", sid, L"\\\\server\\share\\a"},
                                                          {L"N:", sid, L"\\\\server\\share\\"},
                                                          {L"O:\\a", sid, L""},
                                                          {L"P:\\a", sid, L""},
                                                          {L"\\\\s\\t\\a", sid, L""},
                                                          {L"M:\\a", L"", L"\\\\server\\mine\\a"},
                                                          {L"N:\\a", L"", L""}};
    for (const auto& [path, user, network] : rows) EXPECT_EQ(CPathHelper::MapNetworkPath(path, user), network);
}
