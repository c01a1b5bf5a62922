// Bitness and file system redirection of a running system, and versions of files.
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <thread>

#include "registry/FileVersion.h"
#include "registry/FsRedirection.h"
#include "registry/OfflineEnvironment.h"
#include "registry/ProductVersion.h"
#include "registry/SystemRoot.h"
#include "support/FreshProcess.h"
#include "support/ImportPatch.h"
#include "support/ScopedTestDir.h"

namespace {

template <class Function>
using Patch = ImportPatch<Function>;

HMODULE This() {
    return GetModuleHandleW(nullptr);
}

BOOL s_isWow64 = FALSE;
BOOL s_succeeds = TRUE;
int s_asked = 0;

BOOL WINAPI AnswerWow64(HANDLE, PBOOL isWow64) {
    ++s_asked;
    *isWow64 = s_isWow64;
    return s_succeeds;
}

UINT WINAPI AnswerWow64Directory(LPWSTR buffer, UINT size) {
    EXPECT_EQ(size, 260u);
    std::wcscpy(buffer, L"C:\\Windows\\SysWOW64");
    return static_cast<UINT>(std::wcslen(buffer));
}

// The file system redirection of a 32-bit process, one value for each disabling call.
ULONG_PTR s_nextOldValue = 100;
PVOID s_reverted = nullptr;
BOOL s_redirectionSucceeds = TRUE;

BOOL WINAPI DisableRedirection(PVOID* oldValue) {
    *oldValue = reinterpret_cast<PVOID>(s_nextOldValue++);
    return s_redirectionSucceeds;
}

BOOL WINAPI RevertRedirection(PVOID oldValue) {
    s_reverted = oldValue;
    return s_redirectionSucceeds;
}

}  // namespace

TEST(Bitness, A64BitProcessReadsFalse) {
    EXPECT_IN_FRESH_PROCESS([] {
        EXPECT_FALSE(IsWinPE());
        EXPECT_FALSE(IsOfflineSoftwareMounted());
        EXPECT_FALSE(IsOffline64BitOs());
        EXPECT_EQ(AddWow64KeyFlag(KEY_READ), REGSAM{KEY_READ});
        EXPECT_EQ(FindOfflineWindowsDrive(), 0);
        // The idle answers differ.
        EXPECT_TRUE(DisableFsRedirection());
        EXPECT_FALSE(RevertFsRedirection());
    });
}

TEST(Bitness, A32BitProcessOnA64BitSystemReadsTrueOnceItIsKnown) {
    EXPECT_IN_FRESH_PROCESS([] {
        const Patch<decltype(&IsWow64Process)> wow64(This(), "IsWow64Process", AnswerWow64);
        const Patch<decltype(&GetSystemWow64DirectoryW)> directory(This(), "GetSystemWow64DirectoryW",
                                                                   AnswerWow64Directory);
        s_isWow64 = TRUE;
        s_succeeds = FALSE;
        EXPECT_FALSE(IsOffline64BitOs());
        s_succeeds = TRUE;
        EXPECT_TRUE(IsOffline64BitOs()) << "a question that failed is asked again";
        EXPECT_EQ(AddWow64KeyFlag(KEY_READ), REGSAM{KEY_READ | 0x100});
        EXPECT_EQ(GetWow64DirectoryText(), L"C:\\Windows\\SysWOW64");
        s_isWow64 = FALSE;
        EXPECT_TRUE(IsOffline64BitOs());
        EXPECT_EQ(s_asked, 2);
    });
}

TEST(FsRedirection, EachThreadPairsItsOwnCalls) {
    EXPECT_IN_FRESH_PROCESS([] {
        const Patch<decltype(&IsWow64Process)> wow64(This(), "IsWow64Process", AnswerWow64);
        const Patch<decltype(&Wow64DisableWow64FsRedirection)> disable(This(), "Wow64DisableWow64FsRedirection",
                                                                       DisableRedirection);
        const Patch<decltype(&Wow64RevertWow64FsRedirection)> revert(This(), "Wow64RevertWow64FsRedirection",
                                                                     RevertRedirection);
        s_isWow64 = TRUE;
        EXPECT_TRUE(DisableFsRedirection());
        std::thread([] {
            DisableFsRedirection();
            RevertFsRedirection();
            EXPECT_EQ(s_reverted, reinterpret_cast<PVOID>(101));
        }).join();
        EXPECT_TRUE(RevertFsRedirection());
        EXPECT_EQ(s_reverted, reinterpret_cast<PVOID>(100));
        s_redirectionSucceeds = FALSE;
        EXPECT_FALSE(DisableFsRedirection());
        EXPECT_FALSE(RevertFsRedirection());
    });
}

TEST(FileVersion, IsTheFilesOwnAndAFailureLeavesTheText) {
    const ScopedTestDir dir;
    std::ofstream(std::filesystem::path(dir.Path(L"plain.txt"))) << "no program";
    std::ofstream(std::filesystem::path(dir.Path(L"cut.exe")), std::ios::binary) << "MZ";
    CString text = L"old";
    for (const std::wstring& path : {dir.Path(L"plain.txt"), dir.Path(L"cut.exe"), dir.Path(L"no.dll"), std::wstring()})
        EXPECT_NE(GetFileVersionText(path.c_str(), text), 0u) << std::string(path.begin(), path.end());
    EXPECT_EQ(text, L"old");
    WCHAR self[1000];
    GetModuleFileNameW(nullptr, self, 1000);
    EXPECT_EQ(GetFileVersionText(self, text), 0u);
    EXPECT_EQ(text, L"10.0.22000.65");
    EXPECT_EQ(GetModuleVersionText(), L"10.0.22000.65") << "of the module with the toolkit";
    EXPECT_TRUE(IsVersionOlderThanModule(L"10.0.21999", 4));
    EXPECT_FALSE(IsVersionOlderThanModule(L"10.0.22000.65", 4));
    EXPECT_FALSE(IsVersionOlderThanModule(L"10.0", 2));
}

TEST(ProductVersion, IsComparedAsText) {
    EXPECT_TRUE(IsVersionAtLeast(L"8.1.0.5", L"8.1", 4));
    EXPECT_FALSE(IsVersionAtLeast(L"8.1", L"8.1.0.5", 4));
    EXPECT_TRUE(IsProductVersion7OrLater(L"7"));
    EXPECT_FALSE(IsProductVersion7OrLater(L"6.9"));
    EXPECT_TRUE(IsKnownProductVersion(CString(L"10.5.1.2")) && IsKnownProductVersion(L"8.21"));
    EXPECT_FALSE(IsKnownProductVersion(L"18.0"));
    VersionParts parts{};
    ParseVersion(L"1.2.x.4", parts);
    EXPECT_EQ(parts, (VersionParts{1, 2, 0, 4}));
}

TEST(SystemRoot, IsTheRunningSystems) {
    EXPECT_IN_FRESH_PROCESS([] {
        WCHAR directory[300] = {};
        GetWindowsDirectoryW(directory, 300);
        EXPECT_EQ(GetSystemRootPath().CompareNoCase(directory), 0);
        WCHAR version[64] = {};
        EXPECT_EQ(GetOfflineOsVersion(version, 64), 1);
        CString kernel;
        ASSERT_EQ(GetFileVersionText(CString(directory) + L"\\system32\\kernel32.dll", kernel), 0u);
        EXPECT_EQ(kernel, version);
        WCHAR cut[4] = {L'?', L'?', L'?', L'?'};
        GetOfflineOsVersion(cut, 3);
        EXPECT_EQ(kernel.Left(2), cut);
        EXPECT_EQ(cut[3], L'?');
        GetOfflineOsVersion(cut + 3, 0);
        EXPECT_EQ(cut[3], L'?');
    });
    EXPECT_EQ(JoinPath(L"C:\\", L"x"), L"C:\\x");
    EXPECT_EQ(JoinPath(L"C:\\a", L"x"), L"C:\\a\\x");
}
