#include "files/PathHelper.h"

#include <shlobj.h>

#include <gtest/gtest.h>

#include "files/NotedCall.h"
#include "support/FileBytes.h"
#include "support/ScopedRegistryKey.h"
#include "support/ScopedTestDir.h"

// The decisions' own tests ask about all kinds of paths; what is new here are nulls, and case over all of Unicode.
TEST(PathHelper, TextOperationsAreThoseOfTheirNames) {
    using Helper = CPathHelper;
    const CString longer = L"C:\\" + CString(L'x', 245), file = LR"(C:\a\b.c)", deep = LR"(\\s\t\u\v)";
    const std::pair<CString, CString> texts[] = {
        // clang-format off
        {Helper::GetParentPath(file), LR"(C:\a)"}, {Helper::GetFileName(file), L"b.c"},
        {Helper::GetExtension(file), L".c"}, {Helper::GetFileTitle(file), L"b"},
        {Helper::CombinePath(LR"(C:\a\)", L"b"), LR"(C:\a\b)"}, {Helper::CombinePath(L"a\\", nullptr), L"a\\"},
        {Helper::ReplaceExtension(file, L".d"), LR"(C:\a\b.d)"}, {Helper::ReplaceExtension(L"a.b", nullptr), L"a"},
        {Helper::AbbreviatePath(LR"(C:\1\2\3\4\n)"), LR"(C:\1\2\3\...\n)"},
        {Helper::AddLongPathPrefix(deep), LR"(\\?\UNC\s\t\u\v)"},
        {Helper::RemoveLongPathPrefix(LR"(\\?\UNC\s\t\u\v)"), deep},
        {Helper::MakeLongPath(longer), LR"(\\?\)" + longer}, {Helper::MakeLongPath(file), file},
        {Helper::GetDriveRoot(LR"(\\?\d:\x)"), L"d:\\"}, {Helper::GetUncRoot(deep), LR"(\\s\t)"},
        {Helper::GetUncRelativePart(deep), LR"(u\v)"}, {Helper::GetRelativePath(file, L"C:\\A"), L"b.c"},
        {Helper::GetRelativePath(file, L"C:\\b"), file},
        {Helper::GetRelativePath(L"C:\\\x00c4\\c", L"c:\\\x00e4"), L"c"},
        // clang-format on
    };
    for (const auto& [text, expected] : texts) EXPECT_EQ(text, expected);
    EXPECT_TRUE(Helper::IsSubPath(L"c:\\\x00e4", L"X:\\C:\\\x00c4\\b") && !Helper::IsSubPath(file, L"C:\\a"));
    EXPECT_TRUE(Helper::IsRootPath(L"C:\\") && !Helper::IsRootPath(file));
    EXPECT_TRUE(Helper::IsDrivePath(file) && !Helper::IsDrivePath(deep));
    EXPECT_TRUE(Helper::IsUncPath(deep) && !Helper::IsUncPath(file));
    EXPECT_TRUE(Helper::IsDottedServerPath(LR"(\\s.d\t)") && !Helper::IsDottedServerPath(deep));
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
        const auto problem = ProblemOf([&] { call(none); });
        EXPECT_EQ(problem, std::tuple(CFileException::genericException, LONG{ERROR_FILE_NOT_FOUND}, none));
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
    const std::tuple<LPCWSTR, bool, bool> rows[] = {{L"%PATH_HELPER_TEST%\\a rather long name.extension", true, false},
                                                    {L"%PATH_HELPER_TEST%", false, true},
                                                    {L"%PATH_HELPER_TEST%\\none", false, false},
                                                    {L"", false, false}};
    for (const auto& [path, isFile, isDirectory] : rows) {
        EXPECT_EQ(CPathHelper::FileExists(path), isFile);
        EXPECT_EQ(CPathHelper::DirectoryExists(path), isDirectory);
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
