// A running system is asked everything, as a 64-bit process sees it, as a 32-bit one does, and of each release.
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <io.h>
#include <thread>

#include "registry/FileVersion.h"
#include "registry/FsRedirection.h"
#include "registry/HiveRedirection.h"
#include "registry/ProcessPrivilege.h"
#include "registry/ProductVersion.h"
#include "registry/SystemFacts.h"
#include "registry/SystemRoot.h"
#include "support/FakeVersion.h"
#include "support/FreshProcess.h"
#include "support/ScopedTestDir.h"

namespace {

const HMODULE kSelf = GetModuleHandleW(nullptr);

}  // namespace

TEST(RunningSystem, SeenByA64BitProcess) {
    EXPECT_IN_FRESH_PROCESS([] {
        static std::string s_drives;
        const ImportPatch<decltype(&_waccess)> access(kSelf, "_waccess", [](const wchar_t* path, int) {
            s_drives += static_cast<char>(path[0]);
            return -1;
        });
        EXPECT_EQ(Facts(),
                  "boot image 0, drive 0, mounted 0, 64 bit 0, mask 20019, 32-bit files 'C:\\windows\\syswow64'");
        EXPECT_EQ(s_drives, "CDEFGHIJKLMNOPQRSTUVWXYZ");
        EXPECT_TRUE(DisableFsRedirection());
        EXPECT_FALSE(RevertFsRedirection()) << "the idle answers differ";
        CString path = L"SOFTWARE\\CurrentControlSet";
        RedirectToOfflineHive(path, KEY_READ, 0);
        EXPECT_EQ(path, L"SOFTWARE\\CurrentControlSet");
        CString kernel;
        EXPECT_EQ(GetFileVersionText(JoinPath(GetSystemRootPath(), L"system32\\kernel32.dll"), kernel), 0u);
        WCHAR version[64] = {};
        EXPECT_EQ(GetOfflineOsVersion(version, 64), 1);
        EXPECT_EQ(kernel, version);
        WCHAR cut[4] = {L'?', L'?', L'?', L'?'};
        GetOfflineOsVersion(cut, 3);
        GetOfflineOsVersion(cut + 3, 0);
        EXPECT_EQ(std::wstring(cut, 4), std::wstring(kernel.Left(2)) + L'\0' + L'?');
    });
}

// The redirection of files has one value for each disabling call.
TEST(RunningSystem, SeenByA32BitProcess) {
    EXPECT_IN_FRESH_PROCESS([] {
        static BOOL s_isWow64 = TRUE, s_succeeds = FALSE;
        static ULONG_PTR s_oldValue = 99, s_reverted = 0;
        const ImportPatch<decltype(&IsWow64Process)> wow64(
            kSelf, "IsWow64Process", [](HANDLE, PBOOL is) { return *is = s_isWow64, s_succeeds; });
        const ImportPatch<decltype(&GetSystemWow64DirectoryW)> directory(
            kSelf, "GetSystemWow64DirectoryW",
            [](LPWSTR text, UINT) { return static_cast<UINT>(std::wcslen(std::wcscpy(text, L"C:\\SysWOW64"))); });
        const ImportPatch<decltype(&Wow64DisableWow64FsRedirection)> disable(
            kSelf, "Wow64DisableWow64FsRedirection",
            [](PVOID* old) { return *old = reinterpret_cast<PVOID>(++s_oldValue), s_succeeds; });
        const ImportPatch<decltype(&Wow64RevertWow64FsRedirection)> revert(
            kSelf, "Wow64RevertWow64FsRedirection",
            [](PVOID old) { return s_reverted = reinterpret_cast<ULONG_PTR>(old), s_succeeds; });
        EXPECT_FALSE(IsOffline64BitOs());
        s_succeeds = TRUE;
        EXPECT_TRUE(IsOffline64BitOs()) << "a question that failed is asked again";
        s_isWow64 = FALSE;
        EXPECT_EQ(Facts(), "boot image 0, drive 0, mounted 0, 64 bit 1, mask 20119, 32-bit files 'C:\\SysWOW64'");
        EXPECT_TRUE(DisableFsRedirection());
        std::thread([] {
            DisableFsRedirection();
            RevertFsRedirection();
            EXPECT_EQ(s_reverted, 101u);
        }).join();
        EXPECT_TRUE(RevertFsRedirection());
        EXPECT_EQ(s_reverted, 100u) << "each thread pairs its own calls";
        s_succeeds = FALSE;
        EXPECT_FALSE(DisableFsRedirection());
        EXPECT_FALSE(RevertFsRedirection());
    });
}

TEST(RunningSystem, OfEachRelease) {
    const std::pair<std::tuple<DWORD, DWORD, DWORD, BYTE, LPCWSTR>, const char*> releases[] = {
        {{5, 2, 3790, 3, L"Service Pack 2"}, "5.2.3790 Service Pack 2 pre server"},
        {{6, 0, 6002, 1, L""}, "6.0.6002  vista workstation"},
        {{6, 0, 6002, 2, L""}, "6.0.6002  vista server 2008"},
        {{6, 1, 7601, 3, L"Service Pack 1"}, "6.1.7601 Service Pack 1 vista 7 server 2008"},
        {{6, 2, 9200, 3, L""}, "6.2.9200  vista 7 8 server 2008 2012"},
        {{6, 3, 9600, 1, L""}, "6.3.9600  vista 7 8 8.1 workstation"},
        {{10, 0, 21999, 1, L""}, "10.0.21999  vista 7 8 8.1 10 workstation"},
        {{10, 0, 22000, 2, L""}, "10.0.22000  vista 7 8 8.1 10 11 server 2008 2012"},
    };
    for (const auto& release : releases) {
        EXPECT_IN_FRESH_PROCESS([&] {
            const auto version = std::make_from_tuple<FakeVersion>(release.first);
            EXPECT_EQ(VersionFacts(), release.second);
            EXPECT_EQ(CWindowsVersion::GetServicePackText(), std::get<LPCWSTR>(release.first));
            EXPECT_EQ(FakeVersion::s_asked, 1) << "found once";
        });
    }
}

TEST(FileVersion, IsTheFilesOwnAndComparedByParts) {
    const ScopedTestDir dir;
    std::ofstream(std::filesystem::path(dir.Path(L"cut.exe")), std::ios::binary) << "MZ";
    CString text = L"old";
    for (const std::wstring& path : {dir.Path(L"cut.exe"), dir.Path(L"no.dll"), std::wstring()})
        EXPECT_NE(GetFileVersionText(path.c_str(), text), 0u) << Narrow(path);
    EXPECT_EQ(text, L"old");
    EXPECT_EQ(GetModuleVersionText(), L"10.0.22000.65") << "of the module with the toolkit";
    EXPECT_TRUE(IsVersionOlderThanModule(L"10.0.21999", 4));
    EXPECT_FALSE(IsVersionOlderThanModule(L"10.0.22000.65", 4));
    EXPECT_TRUE(IsProductVersion7OrLater(L"7") && !IsProductVersion7OrLater(L"6.9"));
    EXPECT_TRUE(IsKnownProductVersion(CString(L"10.5.1.2")) && !IsKnownProductVersion(L"18.0"));
    EXPECT_EQ(JoinPath(L"C:\\", L"x") + JoinPath(L"C:\\a", L"x"), L"C:\\xC:\\a\\x");
}

TEST(ProcessPrivilege, ATokenThatCannotBeAdjustedStaysOpen) {
    HANDLE token = nullptr;
    const SeenCall<OpenProcessToken> opening(
        kSelf, "OpenProcessToken", [](auto...) {}, [&](HANDLE, DWORD, PHANDLE opened) { token = *opened; });
    DWORD flags = 0;
    SetProcessPrivilege(L"SeBackupPrivilege", true);
    EXPECT_FALSE(GetHandleInformation(token, &flags));
    SetProcessPrivilege(L"SeNoSuchPrivilege", true);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_SUCH_PRIVILEGE});
    EXPECT_TRUE(CloseHandle(token));
}
