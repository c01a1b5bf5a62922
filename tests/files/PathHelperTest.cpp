#include "files/PathHelper.h"

#include <shlobj.h>
#include <shlwapi.h>

#include <functional>
#include <gtest/gtest.h>
#include <malloc.h>
#include <string>
#include <vector>

#include "files/HostilePaths.h"
#include "files/NotedCall.h"
#include "support/FileBytes.h"
#include "support/ImportPatch.h"
#include "support/ScopedPreinstallation.h"
#include "support/ScopedRegistryKey.h"
#include "support/ScopedRegistryPlace.h"
#include "support/ScopedTestDir.h"

namespace {

int s_allocations = 0;

// Texts of the string class are allocated in the library's module.
struct CountedAllocations {
    ImportPatch<void* (*)(size_t)> patch{LoadedModule(L"libstdc++-6.dll"), "malloc", [](size_t bytes) {
                                             ++s_allocations;
                                             return malloc(bytes);
                                         }};
};

// Wine gives a path with the prefix back unseen; Windows looks its elements up, and keeps the prefix.
DWORD WINAPI LongNameAsOnWindows(LPCWSTR path, LPWSTR buffer, DWORD chars) {
    constexpr std::wstring_view kPrefix = L"\\\\?\\";
    EXPECT_TRUE(std::wstring_view(path).starts_with(kPrefix));
    static const auto s_real = SystemFunction(&::GetLongPathNameW, L"kernel32.dll", "GetLongPathNameW");
    WCHAR text[260];
    const DWORD length = s_real(path + kPrefix.size(), text, 260);
    if (length == 0) return 0;
    const std::wstring name = std::wstring(kPrefix).append(text, length);
    if (chars <= name.size()) return static_cast<DWORD>(name.size() + 1);
    wcscpy(buffer, name.c_str());
    return static_cast<DWORD>(name.size());
}

struct LongNames {
    ImportPatch<decltype(&::GetLongPathNameW)> patch{GetModuleHandleW(nullptr), "GetLongPathNameW",
                                                     LongNameAsOnWindows};
};

LONG ErrorOf(const std::function<void()>& function) {
    try {
        function();
    } catch (CFileException* problem) {
        EXPECT_EQ(problem->m_cause, CFileException::genericException);
        const LONG error = problem->m_lOsError;
        problem->Delete();
        return error;
    }
    return ERROR_SUCCESS;
}

}  // namespace

TEST(PathHelper, AgreesWithTheSystemOnDrivesAndShares) {
    for (const std::wstring& path : HostilePaths()) {
        SCOPED_TRACE(testing::PrintToString(path.substr(0, 40)));
        EXPECT_EQ(CPathHelper::IsDrivePath(path.c_str()), PathGetDriveNumberW(path.c_str()) != -1);
        if (path.starts_with(L"\\\\?\\") || path.size() > 260) continue;
        EXPECT_EQ(CPathHelper::IsUncPath(path.c_str()), PathIsUNCW(path.c_str()) && !PathIsUNCServerW(path.c_str()));
    }
}

TEST(PathHelper, ATextCostsOneAllocationAtMost) {
    using Operation = CString (*)(const CString&);
    const Operation combine = [](const CString& path) { return CPathHelper::CombinePath(path, L"below\\it"); };
    const Operation keep = [](const CString& path) { return CPathHelper::CombinePath(path, nullptr); };
    const Operation replace = [](const CString& path) { return CPathHelper::ReplaceExtension(path, L".extension"); };
    const CountedAllocations counted;
    int most = 0;
    for (const std::wstring& hostile : HostilePaths()) {
        const CString path = hostile.c_str();
        for (const Operation operation :
             {CPathHelper::GetDriveRoot, CPathHelper::GetUncRelativePart, CPathHelper::GetUncRoot,
              CPathHelper::GetParentPath, CPathHelper::GetFileName, CPathHelper::GetExtension,
              CPathHelper::GetFileTitle, CPathHelper::AbbreviatePath, CPathHelper::AddLongPathPrefix,
              CPathHelper::RemoveLongPathPrefix, CPathHelper::MakeLongPath, combine, keep, replace}) {
            s_allocations = 0;
            const CString result = operation(path);
            most = std::max(most, s_allocations);
        }
    }
    EXPECT_EQ(most, 1);
}

TEST(PathHelper, SubPathsIgnoreCaseOverAllOfUnicode) {
    EXPECT_TRUE(CPathHelper::IsSubPath(L"c:\\\x00e4", L"X:\\C:\\\x00c4\\b"));
    EXPECT_FALSE(CPathHelper::IsSubPath(L"c:\\\x00e4",
                                        L"C:\\\x00c4"
                                        L"b"));
    EXPECT_EQ(CPathHelper::GetRelativePath(L"C:\\A\\\\b\\c", L"c:\\a"), L"b\\c");
    EXPECT_EQ(CPathHelper::GetRelativePath(L"C:\\ab", L"C:\\a"), L"C:\\ab");
    EXPECT_EQ(CPathHelper::GetRelativePath(L"C:\\a", L"C:\\a\\"), L"");
}

TEST(PathHelper, SameRootLooksAtTwoHundredAndSixtyCharacters) {
    const CString deep = (L"C:\\" + std::wstring(40000, L'x')).c_str();
    EXPECT_TRUE(CPathHelper::IsSameRoot(deep, L"c:\\y"));
    EXPECT_FALSE(CPathHelper::IsSameRoot(deep, L"D:\\y"));
    EXPECT_FALSE(CPathHelper::IsSameRoot(L"", L"x"));
}

TEST(PathHelper, ShortAndLongNames) {
    const LongNames names;
    const ScopedTestDir dir;
    const CString file = dir.Path(L"a rather long name.extension").c_str();
    PutBytes(file.GetString(), "");
    const CString brief = CPathHelper::GetShortPath(file);
    WCHAR system[260] = {};
    GetShortPathNameW(file, system, 260);
    EXPECT_EQ(brief, system);
    EXPECT_LT(CPathHelper::GetFileName(brief).GetLength(), 13);
    EXPECT_EQ(CPathHelper::GetFileName(CPathHelper::GetLongPath(brief)), L"a rather long name.extension");
    EXPECT_EQ(ErrorOf([&] { CPathHelper::GetShortPath(file + L"x"); }), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(ErrorOf([&] { CPathHelper::GetLongPath(file + L"x"); }), ERROR_FILE_NOT_FOUND);
}

TEST(PathHelper, ShortNamesOfLongPathsAreAskedForWithThePrefix) {
    const NotedCall names(&GetShortPathNameW, "GetShortPathNameW", 0, ERROR_ACCESS_DENIED);
    for (const int length : {247, 248}) {
        const CString path = L"Q:\\" + CString(L'x', length - 3);
        EXPECT_EQ(ErrorOf([&] { CPathHelper::GetShortPath(path); }), ERROR_ACCESS_DENIED);
        EXPECT_EQ(TakePaths(), Paths{(length == 248 ? L"\\\\?\\" + path : path).GetString()});
    }
}

TEST(PathHelper, NamesOnAPreinstallationBootComeBackWithDriveC) {
    const LongNames names;
    const ScopedPreinstallation machine;
    CreateDirectoryW((machine.SystemFolder(L'D') + L"\\config").c_str(), nullptr);
    CreateDirectoryW(L"D:\\Windows\\System32\\config\\SOFTWARE", nullptr);
    EXPECT_TRUE(CPathHelper::DirectoryExists(L"C:\\Windows\\System32\\config\\SOFTWARE"));
    EXPECT_EQ(CPathHelper::GetLongPath(L"c:\\Windows\\System32\\config"), L"C:\\Windows\\System32\\config");
    EXPECT_EQ(CPathHelper::GetLongPath(L"D:\\Windows\\System32\\config"), L"D:\\Windows\\System32\\config");
    EXPECT_EQ(CPathHelper::GetShortPath(L"c:\\Windows\\System32"), L"C:\\Windows\\System32");
    EXPECT_EQ(CPathHelper::GetShortPath(L"D:\\Windows\\System32"), L"C:\\Windows\\System32");
}

TEST(PathHelper, ExistenceExpandsVariablesAndTellsFilesFromDirectories) {
    const ScopedTestDir dir;
    PutBytes(dir.Path(L"file"), "");
    SetEnvironmentVariableW(L"PATH_HELPER_TEST", dir.Path().c_str());
    EXPECT_TRUE(CPathHelper::FileExists(L"%PATH_HELPER_TEST%\\file"));
    EXPECT_FALSE(CPathHelper::DirectoryExists(L"%PATH_HELPER_TEST%\\file"));
    EXPECT_TRUE(CPathHelper::DirectoryExists(L"%PATH_HELPER_TEST%"));
    EXPECT_FALSE(CPathHelper::FileExists(L"%PATH_HELPER_TEST%"));
    EXPECT_FALSE(CPathHelper::FileExists(L"%PATH_HELPER_TEST%\\none"));
    EXPECT_FALSE(CPathHelper::DirectoryExists(L""));
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

TEST(PathHelper, DrivesOfAnyNumber) {
    CStringList drives;
    EXPECT_TRUE(CPathHelper::EnumerateDrives(drives));
    EXPECT_NE(drives.Find(L"C:\\"), nullptr);
    EXPECT_TRUE(CPathHelper::IsValidDrive(L"c:\\anything"));
    for (const LPCWSTR none : {L"", L"Q:\\", L"\\\\s\\t"}) EXPECT_FALSE(CPathHelper::IsValidDrive(none));

    // More text than the first try has room for: 99 drives that are not there, then C.
    const ImportPatch<decltype(&::GetLogicalDriveStringsW)> many(
        GetModuleHandleW(nullptr), "GetLogicalDriveStringsW", [](DWORD chars, LPWSTR buffer) -> DWORD {
            constexpr DWORD kLength = 100 * 4;
            if (chars <= kLength) return kLength + 1;
            for (DWORD i = 0; i < 100; ++i) wcscpy(buffer + 4 * i, i < 99 ? L"0:\\" : L"C:\\");
            buffer[kLength] = L'\0';
            return kLength;
        });
    drives.RemoveAll();
    EXPECT_TRUE(CPathHelper::EnumerateDrives(drives));
    EXPECT_EQ(drives.GetCount(), 1);

    const NotedCall none(&GetLogicalDriveStringsW, "GetLogicalDriveStringsW", 0);
    EXPECT_FALSE(CPathHelper::EnumerateDrives(drives));
    EXPECT_FALSE(CPathHelper::IsValidDrive(L"C:\\"));
}

TEST(PathHelper, MappedDrivesByTheirNetworkPath) {
    ScopedRegistryKey user(HKEY_USERS);
    const CString sid = user.Path().c_str();
    EXPECT_EQ(CPathHelper::MapNetworkPath(L"M:\\a", sid), L"");
    user.SetText(L"Network\\M", L"RemotePath", L"\\\\server\\share");
    user.SetText(L"Network\\N", L"RemotePath", L"\\\\server\\share\\");
    user.SetText(L"Network\\O", L"RemotePath", L"");
    EXPECT_EQ(CPathHelper::MapNetworkPath(L"m:\\a\\b", sid), L"\\\\server\\share\\a\\b");
    EXPECT_EQ(CPathHelper::MapNetworkPath(L"N:\\a", sid), L"\\\\server\\share\\a");
    EXPECT_EQ(CPathHelper::MapNetworkPath(L"N:", sid), L"\\\\server\\share\\");
    EXPECT_EQ(CPathHelper::MapNetworkPath(L"O:\\a", sid), L"");
    EXPECT_EQ(CPathHelper::MapNetworkPath(L"\\\\s\\t\\a", sid), L"");
    EXPECT_EQ(CPathHelper::MapNetworkPath(L"M:\\a", L""), L"");
    ScopedRegistryPlace mine(HKEY_CURRENT_USER, L"Network\\M");
    mine.SetText(L"RemotePath", L"\\\\server\\mine");
    EXPECT_EQ(CPathHelper::MapNetworkPath(L"M:\\a", L""), L"\\\\server\\mine\\a");
}
