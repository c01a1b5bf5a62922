#include "files/FileFindEx.h"

#include <gtest/gtest.h>
#include <set>
#include <string>

#include "files/DeepFolder.h"
#include "files/NotedCall.h"
#include "files/PathHelper.h"
#include "support/ImportPatch.h"
#include "support/ReparseVolume.h"
#include "support/ScopedPreinstallation.h"
#include "support/ScopedTestDir.h"

namespace {

using Names = std::set<std::wstring>;

void CreateEmptyFile(const CString& path) {
    CloseHandle(CreateFileW(CPathHelper::MakeLongPath(path), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
}

// Everything that a search reports by its path, the dots left out.
Names PathsOf(CFileFind& search, LPCWSTR pattern) {
    Names paths;
    for (BOOL more = search.FindFile(pattern); more;) {
        more = search.FindNextFile();
        if (!search.IsDots()) paths.insert(search.GetFilePath().GetString());
    }
    return paths;
}

}  // namespace

TEST(FileFindEx, ListsAsTheBaseDoes) {
    const ScopedTestDir dir;
    for (const LPCWSTR name : {L"a.txt", L"b.txt", L"c.dat"}) CreateEmptyFile(dir.Path(name).c_str());
    CreateDirectoryW(dir.Path(L"below").c_str(), nullptr);
    CFileFindEx search;
    CFileFind base;
    const Names all = {dir.Path(L"a.txt"), dir.Path(L"b.txt"), dir.Path(L"below"), dir.Path(L"c.dat")};
    EXPECT_EQ(PathsOf(search, dir.Path(L"*").c_str()), all);
    EXPECT_EQ(PathsOf(base, dir.Path(L"*").c_str()), all);
    EXPECT_EQ(PathsOf(search, (dir.Path() + L"\\").c_str()), all);
    EXPECT_EQ(PathsOf(search, dir.Path(L"*.txt").c_str()), (Names{dir.Path(L"a.txt"), dir.Path(L"b.txt")}));
    EXPECT_EQ(search.GetRoot(), (dir.Path() + L"\\").c_str());
    ASSERT_TRUE(search.FindFile(dir.Path(L"below").c_str()));
    EXPECT_FALSE(search.FindNextFile());
    EXPECT_TRUE(search.IsDirectory());
    EXPECT_EQ(search.GetFileName(), L"below");
    search.Close();
    EXPECT_EQ(search.GetFileName(), L"");
    EXPECT_FALSE(search.FindNextFile());
}

TEST(FileFindEx, ASearchEndsWithItsObjectAndBeforeTheNext) {
    static int s_ended = 0;
    const ImportPatch<decltype(&FindClose)> patch(LoadedModule(L"framework.dll"), "FindClose", [](HANDLE search) {
        ++s_ended;
        return FindClose(search);
    });
    const ScopedTestDir dir;
    {
        CFileFindEx search;
        EXPECT_TRUE(search.FindFile(dir.Path(L"*").c_str()));
        EXPECT_TRUE(search.FindFile(dir.Path(L"*").c_str()));
        EXPECT_EQ(s_ended, 1);
    }
    EXPECT_EQ(s_ended, 2);
}

TEST(FileFindEx, WhatItAsksTheSystemFor) {
    const NotedCall asked(&::FindFirstFileW, "FindFirstFileW", INVALID_HANDLE_VALUE);
    const std::wstring longer = L"Q:\\" + std::wstring(245, L'x');
    const std::wstring fits = longer.substr(0, 247);
    CFileFindEx search;
    for (const LPCWSTR none : {static_cast<LPCWSTR>(nullptr), L"", L"Q:\\"}) {
        EXPECT_FALSE(search.FindFile(none));
        EXPECT_EQ(TakePaths(), Paths());
    }
    struct Case {
        std::wstring path, pattern;
    };
    const Case cases[] = {
        {L"Q:\\a\\", L"Q:\\a\\*.*"},   {L"Q:\\*", L"Q:\\*"},        {L"name", L"name"}, {fits, fits},
        {longer, L"\\\\?\\" + longer}, {L"\\\\?\\", L"\\\\?\\*.*"},
    };
    for (const Case& c : cases) {
        EXPECT_FALSE(search.FindFile(c.path.c_str()));
        EXPECT_EQ(TakePaths(), Paths{c.pattern});
    }
}

TEST(FileFindEx, ANameOfTwoHundredAndSixtyCharactersIsRefused) {
    const ScopedTestDir dir;
    CFileFindEx search;
    for (const size_t length : {259u, 260u}) {
        ASSERT_TRUE(search.FindFile(dir.Path(L"*").c_str()));
        const NotedCall asked(&::FindFirstFileW, "FindFirstFileW", INVALID_HANDLE_VALUE, ERROR_FILE_NOT_FOUND);
        EXPECT_FALSE(search.FindFile(dir.Path(std::wstring(length, L'n')).c_str()));
        EXPECT_EQ(GetLastError(), length == 260 ? DWORD{ERROR_BAD_ARGUMENTS} : DWORD{ERROR_FILE_NOT_FOUND});
        EXPECT_EQ(TakePaths().empty(), length == 260);
        EXPECT_FALSE(search.FindNextFile()) << "the earlier search has ended as well";
    }
}

TEST(FileFindEx, FarBeyondTheClassicLimitNoPrefixShows) {
    const ScopedTestDir dir;
    const CString folder = MakeDeepFolder(dir.Path()).c_str();
    const CString file = folder + L"\\file";
    CreateEmptyFile(file);
    CFileFindEx search;
    const Names found = {file.GetString()};
    EXPECT_EQ(PathsOf(search, folder + L"\\*"), found);
    EXPECT_EQ(search.GetRoot(), folder + L"\\");
    EXPECT_EQ(PathsOf(search, CPathHelper::AddLongPathPrefix(folder) + L"\\*"), found);
    EXPECT_EQ(search.GetRoot(), CPathHelper::AddLongPathPrefix(folder) + L"\\");
}

TEST(FileFindEx, OnAPreinstallationBootDriveCIsSearchedElsewhere) {
    const ScopedPreinstallation machine;
    const std::wstring system = machine.SystemFolder(L'D');
    CreateDirectoryW((system + L"\\config").c_str(), nullptr);
    CFileFindEx tooEarly;
    EXPECT_EQ(PathsOf(tooEarly, L"C:\\Windows\\System32\\conf*").count(L"C:\\Windows\\System32\\config"), 0u);
    CreateDirectoryW((system + L"\\config\\SOFTWARE").c_str(), nullptr);
    CFileFindEx search;
    const Names found = {L"C:\\Windows\\System32\\config\\SOFTWARE"};
    for (const LPCWSTR pattern : {L"C:\\Windows\\System32\\config\\*", L"D:\\Windows\\System32\\config\\*",
                                  L"d:\\Windows\\System32\\config\\*", L"\\\\?\\C:\\Windows\\System32\\config\\*"}) {
        EXPECT_EQ(PathsOf(search, pattern), found);
    }
    // What was given is reported: a small letter stays.
    EXPECT_EQ(PathsOf(search, L"c:\\Windows\\System32\\config\\*").count(L"c:\\Windows\\System32\\config\\SOFTWARE"),
              1u);
    EXPECT_TRUE(search.FindFile(L"d:\\Windows\\*"));
    EXPECT_EQ(search.GetRoot(), L"C:\\Windows\\");
}

TEST(FileFindEx, TransactionsDecideHowASearchBegins) {
    const ScopedTestDir dir;
    CAtlTransactionManager fallback(TRUE, FALSE), none(FALSE, FALSE);
    CFileFindEx through(&fallback), refused(&none);
    EXPECT_TRUE(through.FindFile(dir.Path(L"*").c_str()));
    EXPECT_FALSE(refused.FindFile(dir.Path(L"*").c_str()));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_FUNCTION});
}
