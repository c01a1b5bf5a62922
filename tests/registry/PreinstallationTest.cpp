// The registry road on a preinstallation boot, with real hives that the system saved and mounted.
#include <filesystem>
#include <gtest/gtest.h>

#include "offline/WinPeHelper.h"
#include "registry/FileVersion.h"
#include "registry/FsRedirection.h"
#include "registry/HiveRedirection.h"
#include "registry/OfflineEnvironment.h"
#include "registry/RegistryHelper.h"
#include "registry/SystemRoot.h"
#include "registry/Thrown.h"
#include "registry/WindowsVersion.h"
#include "support/FreshProcess.h"
#include "support/ImportPatch.h"
#include "support/ResourceCounter.h"
#include "support/ScopedPreinstallation.h"

namespace {

constexpr wchar_t kVersionKey[] = L"Microsoft\\Windows NT\\CurrentVersion";

// An installed system on drive D whose hives are mounted.
class InstalledSystem {
public:
    explicit InstalledSystem(bool has64Bits) {
        HiveBuilder software;
        software.SetText(kVersionKey, L"SystemRoot", L"C:\\Windows");
        software.SetText(L"Both", L"v", L"64");
        if (has64Bits) {
            software.SetText(L"Wow6432Node\\Microsoft\\Windows\\CurrentVersion", L"ProgramFilesDir (x86)", L"C:\\P");
            software.SetText(L"Wow6432Node\\Both", L"v", L"32");
            software.SetText(L"Wow6432Node\\Only32", L"v", L"32");
        }
        HiveBuilder system;
        system.SetNumber(L"Select", L"Current", 2);
        system.SetText(L"ControlSet001\\Services", L"v", L"first");
        system.SetText(L"ControlSet002\\Services", L"v", L"second");
        m_machine.Mount(L"OS_SOFTWARE", m_machine.Install(L'D', L"SOFTWARE", software));
        m_machine.Mount(L"OS_SYSTEM", m_machine.Install(L'D', L"SYSTEM", system));
    }

private:
    ScopedPreinstallation m_machine;
};

// Wine answers for any file of this name with its own kernel, so the installed one's version is asked of the test
// program.
CString FileBehind(LPCWSTR path) {
    CString file = path;
    if (file.CompareNoCase(L"D:\\Windows\\System32\\kernel32.dll") == 0) {
        GetModuleFileNameW(nullptr, file.GetBufferSetLength(1000), 1000);
        file.ReleaseBuffer();
    }
    return file;
}

DWORD WINAPI SizeBehind(LPCWSTR path, LPDWORD handle) {
    return SystemFunction(&GetFileVersionInfoSizeW, L"version.dll", "GetFileVersionInfoSizeW")(FileBehind(path),
                                                                                               handle);
}

BOOL WINAPI ReadBehind(LPCWSTR path, DWORD handle, DWORD size, LPVOID block) {
    return SystemFunction(&GetFileVersionInfoW, L"version.dll", "GetFileVersionInfoW")(FileBehind(path), handle, size,
                                                                                       block);
}

CString Redirected(LPCWSTR path, REGSAM access = KEY_READ, DWORD nativeViewOnly = 0) {
    CString result = path;
    RedirectToOfflineHive(result, access, nativeViewOnly);
    return result;
}

CString ValueBelow(LPCWSTR path, REGSAM access = KEY_READ, DWORD nativeViewOnly = 0) {
    return CRegistryHelper(HKEY_LOCAL_MACHINE, path, access, nativeViewOnly).GetStringValue(L"v");
}

}  // namespace

TEST(Preinstallation, WithoutMountedHivesPathsReachTheBootImage) {
    EXPECT_IN_FRESH_PROCESS([] {
        const ScopedPreinstallation machine;
        EXPECT_TRUE(IsWinPE());
        EXPECT_FALSE(IsOfflineSoftwareMounted());
        EXPECT_EQ(FindOfflineWindowsDrive(), 0);
        HiveBuilder hive;
        for (const wchar_t drive : {L'E', L'D'}) {
            machine.Install(drive, L"SOFTWARE", hive);
            EXPECT_EQ(FindOfflineWindowsDrive(), drive) << "the first with a hive";
        }
        std::filesystem::remove_all(L"D:\\Windows");
        std::filesystem::remove_all(L"E:\\Windows");
        EXPECT_NE(WinPeHelper::LoadLocalMachineProfile(), 0u);
        EXPECT_EQ(Redirected(L"SOFTWARE\\Microsoft"), L"SOFTWARE\\Microsoft");
        EXPECT_TRUE(CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows NT"));
    });
}

TEST(Preinstallation, AMountedHiveIsFoundBelowItsOfflineName) {
    EXPECT_IN_FRESH_PROCESS([] {
        const InstalledSystem installed(false);
        EXPECT_TRUE(IsOfflineSoftwareMounted());
        EXPECT_EQ(WinPeHelper::LoadLocalMachineProfile(), 0u);
        EXPECT_EQ(Redirected(L"software\\x"), L"OS_software\\x");
        EXPECT_EQ(ValueBelow(L"SOFTWARE\\Both"), L"64");
        EXPECT_FALSE(CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Classes"))
            << "the boot image's own keys are out of sight";
        EXPECT_TRUE(CRegistryHelper::KeyExists(HKEY_CURRENT_USER, L"SOFTWARE\\Microsoft")) << "other hives stay";
        EXPECT_TRUE(CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, L"OS_SOFTWARE\\Both"));
        EXPECT_FALSE(IsOffline64BitOs());
        EXPECT_EQ(Redirected(L"SOFTWARE\\Only32"), L"OS_SOFTWARE\\Only32");
        CRegistryHelper::EnsureKeyAndChild(HKEY_LOCAL_MACHINE, L"SOFTWARE\\New", L"child", nullptr, 0, true);
        EXPECT_TRUE(CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, L"OS_SOFTWARE\\New\\child"));
        CRegistryHelper::CreateChildKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\New\\other", nullptr, 0);
        EXPECT_TRUE(CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, L"OS_SOFTWARE\\New\\other"));
    });
}

TEST(Preinstallation, A64BitInstallationHasTwoViews) {
    EXPECT_IN_FRESH_PROCESS([] {
        const InstalledSystem installed(true);
        EXPECT_TRUE(IsOffline64BitOs());
        EXPECT_EQ(AddWow64KeyFlag(KEY_READ), REGSAM{KEY_READ | KEY_WOW64_64KEY});
        EXPECT_TRUE(GetWow64DirectoryText().IsEmpty());
        EXPECT_EQ(ValueBelow(L"SOFTWARE\\Both"), L"64");
        EXPECT_EQ(ValueBelow(L"SOFTWARE\\Both", KEY_READ | KEY_WOW64_32KEY), L"32");
        EXPECT_EQ(Redirected(L"SOFTWARE\\Both", KEY_READ | KEY_WOW64_32KEY, 1), L"OS_SOFTWARE\\Both");
        EXPECT_EQ(ValueBelow(L"SOFTWARE\\Only32"), L"32");
        EXPECT_EQ(StatusThrownBy([] { ValueBelow(L"SOFTWARE\\Only32", KEY_READ | KEY_WOW64_64KEY); }), 2u);
        EXPECT_EQ(StatusThrownBy([] { ValueBelow(L"SOFTWARE\\Only32", KEY_READ, 1); }), 2u);
        EXPECT_EQ(Redirected(L"SOFTWARE\\Nowhere"), L"OS_SOFTWARE\\Wow6432Node\\Nowhere");
        // Off this kind of boot a 64-bit system would have a redirection to switch off.
        EXPECT_TRUE(DisableFsRedirection());
        EXPECT_FALSE(RevertFsRedirection());
    });
}

TEST(Preinstallation, BitnessAskedBeforeTheMountStaysFalse) {
    EXPECT_IN_FRESH_PROCESS([] {
        {
            const ScopedPreinstallation machine;
            EXPECT_FALSE(IsOffline64BitOs());
        }
        const InstalledSystem installed(true);
        EXPECT_FALSE(IsOffline64BitOs());
    });
}

TEST(Preinstallation, TheCurrentControlSetIsTheSelectedOne) {
    EXPECT_IN_FRESH_PROCESS([] {
        const InstalledSystem installed(false);
        EXPECT_EQ(Redirected(L"SYSTEM\\CurrentControlSet\\Services"), L"OS_SYSTEM\\ControlSet002\\Services");
        EXPECT_EQ(ValueBelow(L"system\\currentCONTROLset\\Services"), L"second");
        CRegistryHelper select(HKEY_LOCAL_MACHINE, L"SYSTEM\\Select", KEY_ALL_ACCESS);
        EXPECT_EQ(select.SetStringValue(L"Current", L"3"), 0);  // any type of no more than four bytes is a number
        EXPECT_EQ(Redirected(L"SYSTEM\\CurrentControlSet"), L"OS_SYSTEM\\ControlSet051");
        EXPECT_EQ(select.SetStringValue(L"Current", L"too long"), 0);
        EXPECT_EQ(Redirected(L"SYSTEM\\CurrentControlSet"), L"OS_SYSTEM\\CurrentControlSet");
        RegDeleteValueW(select, L"Current");
        EXPECT_EQ(Redirected(L"SYSTEM\\CurrentControlSet"), L"OS_SYSTEM\\CurrentControlSet");
        select.Close();
        RegDeleteKeyW(HKEY_LOCAL_MACHINE, L"OS_SYSTEM\\Select");
        EXPECT_EQ(Redirected(L"system\\currentCONTROLset\\x"), L"OS_system\\currentCONTROLset\\x");
    });
}

TEST(Preinstallation, RedirectionLeavesNothingOpen) {
    EXPECT_IN_FRESH_PROCESS([] {
        const InstalledSystem installed(true);
        ResourceCounter counter({GetModuleHandleW(nullptr), LoadedModule(L"framework.dll")});
        for (int i = 0; i < 100; ++i) {
            Redirected(L"SOFTWARE\\Both");
            Redirected(L"SOFTWARE\\Nowhere\\CurrentControlSet");
            Redirected(L"SYSTEM\\CurrentControlSet");
            Redirected(L"HARDWARE");
            CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Nowhere");
        }
        EXPECT_GE(counter.Created("registry handle"), 500);
        EXPECT_EQ(counter.Report(), "");
    });
}

TEST(Preinstallation, TheVersionIsTheInstalledKernels) {
    EXPECT_IN_FRESH_PROCESS([] {
        const InstalledSystem installed(false);
        const HMODULE self = GetModuleHandleW(nullptr);
        const ImportPatch<decltype(&SizeBehind)> size(self, "GetFileVersionInfoSizeW", SizeBehind);
        const ImportPatch<decltype(&ReadBehind)> read(self, "GetFileVersionInfoW", ReadBehind);
        EXPECT_EQ(GetSystemRootPath(), L"C:\\Windows");
        EXPECT_EQ(CWindowsVersion::GetVersionText(), L"10.0.22000.65");
        EXPECT_TRUE(CWindowsVersion::IsWindows11OrLater());
        EXPECT_TRUE(CWindowsVersion::IsWorkstation());
        EXPECT_TRUE(CWindowsVersion::GetServicePackText().IsEmpty());
        WCHAR version[64] = {};
        EXPECT_EQ(GetOfflineOsVersion(version, 64), 1);
        EXPECT_STREQ(version, L"10.0.22000.65");
        CString text = L"old";
        EXPECT_NE(GetFileVersionText(L"E:\\Windows\\System32\\kernel32.dll", text), 0u) << "only drive C is moved";
        EXPECT_EQ(GetFileVersionText(L"c:\\windows\\system32\\kernel32.dll", text), 0u);
        EXPECT_EQ(text, L"10.0.22000.65");
    });
}

TEST(Preinstallation, AMissingVersionKeyThrowsOnceAndLeavesZeros) {
    EXPECT_IN_FRESH_PROCESS([] {
        const ScopedPreinstallation machine;
        HiveBuilder empty;
        empty.AddKey(L"x");
        machine.Mount(L"OS_SOFTWARE", machine.Install(L'D', L"SOFTWARE", empty));
        EXPECT_EQ(StatusThrownBy([] { GetSystemRootPath(); }), 2u);
        EXPECT_EQ(StatusThrownBy([] { CWindowsVersion::IsVistaOrLater(); }), 2u);
        EXPECT_TRUE(CWindowsVersion::IsPreVista());
        EXPECT_FALSE(CWindowsVersion::IsWorkstation());
        EXPECT_TRUE(CWindowsVersion::GetVersionText().IsEmpty());
        WCHAR version[8] = {};
        EXPECT_EQ(StatusThrownBy([&] { GetOfflineOsVersion(version, 8); }), 2u);
    });
}
