// Each kind of system that the toolkit meets is asked everything: a running one, as a 64-bit and as a 32-bit process,
// and a preinstallation boot without an installed system, with one of 32 bits, of 64 bits, and with a damaged one.
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <io.h>
#include <thread>

#include "registry/FileVersion.h"
#include "registry/FsRedirection.h"
#include "registry/HiveRedirection.h"
#include "registry/OfflineEnvironment.h"
#include "registry/ProductVersion.h"
#include "registry/RegistryHelper.h"
#include "registry/SystemRoot.h"
#include "registry/Thrown.h"
#include "registry/WindowsVersion.h"
#include "support/FakeVersion.h"
#include "support/FreshProcess.h"
#include "support/Narrow.h"
#include "support/ResourceCounter.h"
#include "support/ScopedPreinstallation.h"
#include "support/ScopedTestDir.h"

namespace {

namespace fs = std::filesystem;

const HMODULE kSelf = GetModuleHandleW(nullptr);
constexpr wchar_t kVersionKey[] = L"Microsoft\\Windows NT\\CurrentVersion";

std::string Facts() {
    CString text;
    text.Format(L"boot image %d, drive %d, mounted %d, 64 bit %d, mask %x, 32-bit files '%s'", IsWinPE(),
                FindOfflineWindowsDrive(), IsOfflineSoftwareMounted(), IsOffline64BitOs(), AddWow64KeyFlag(KEY_READ),
                GetWow64DirectoryText().GetString());
    return Narrow(text.GetString());
}

// The version text, and the names of all questions that are answered with yes.
std::string VersionFacts() {
    const std::pair<const char*, bool> facts[] = {
        {"pre", CWindowsVersion::IsPreVista()},          {"vista", CWindowsVersion::IsVistaOrLater()},
        {"7", CWindowsVersion::IsWindows7OrLater()},     {"8", CWindowsVersion::IsWindows8OrLater()},
        {"8.1", CWindowsVersion::IsWindows81OrLater()},  {"10", CWindowsVersion::IsWindows10OrLater()},
        {"11", CWindowsVersion::IsWindows11OrLater()},   {"workstation", CWindowsVersion::IsWorkstation()},
        {"server", CWindowsVersion::IsServer()},         {"2008", CWindowsVersion::IsServer2008OrLater()},
        {"2012", CWindowsVersion::IsServer2012OrLater()}};
    std::string text = Narrow(CWindowsVersion::GetVersionText().GetString());
    for (const auto& [name, isTrue] : facts)
        if (isTrue) text += std::string(" ") + name;
    return text;
}

std::wstring Redirected(LPCWSTR path, REGSAM access = KEY_READ, DWORD nativeViewOnly = 0) {
    CString result = path;
    RedirectToOfflineHive(result, access, nativeViewOnly);
    return result.GetString();
}

CString ValueBelow(LPCWSTR path, REGSAM access = KEY_READ, DWORD nativeViewOnly = 0) {
    return CRegistryHelper(HKEY_LOCAL_MACHINE, path, access, nativeViewOnly).GetStringValue(L"v");
}

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
        system.SetNumber(L"Select", L"Default", 1);
        system.SetNumber(L"Select", L"Current", 2);
        system.SetText(L"ControlSet001\\Services", L"v", L"first");
        system.SetText(L"ControlSet002\\Services", L"v", L"second");
        m_machine.Mount(L"OS_SOFTWARE", m_machine.Install(L'D', L"SOFTWARE", software));
        m_machine.Mount(L"OS_SYSTEM", m_machine.Install(L'D', L"SYSTEM", system));
    }

private:
    ScopedPreinstallation m_machine;
};

// What the system tells a 32-bit process, and the redirection of its files, one value for each disabling call.
BOOL s_isWow64 = TRUE;
BOOL s_succeeds = FALSE;
ULONG_PTR s_nextOldValue = 100;
PVOID s_reverted = nullptr;

BOOL WINAPI AnswerWow64(HANDLE, PBOOL isWow64) {
    *isWow64 = s_isWow64;
    return s_succeeds;
}

UINT WINAPI AnswerWow64Directory(LPWSTR buffer, UINT size) {
    EXPECT_EQ(size, 260u);
    return static_cast<UINT>(std::wcslen(std::wcscpy(buffer, L"C:\\Windows\\SysWOW64")));
}

BOOL WINAPI DisableRedirection(PVOID* oldValue) {
    *oldValue = reinterpret_cast<PVOID>(s_nextOldValue++);
    return s_succeeds;
}

BOOL WINAPI RevertRedirection(PVOID oldValue) {
    s_reverted = oldValue;
    return s_succeeds;
}

// Wine answers for any file of this name with its own kernel, so the installed one's version is asked of the test
// program.
CString FileBehind(LPCWSTR path) {
    WCHAR self[1000];
    GetModuleFileNameW(nullptr, self, 1000);
    return _wcsicmp(path, L"D:\\Windows\\System32\\kernel32.dll") == 0 ? self : path;
}

DWORD WINAPI SizeBehind(LPCWSTR path, LPDWORD handle) {
    const auto size = SystemFunction(&GetFileVersionInfoSizeW, L"version.dll", "GetFileVersionInfoSizeW");
    return size(FileBehind(path), handle);
}

BOOL WINAPI ReadBehind(LPCWSTR path, DWORD handle, DWORD size, LPVOID block) {
    const auto read = SystemFunction(&GetFileVersionInfoW, L"version.dll", "GetFileVersionInfoW");
    return read(FileBehind(path), handle, size, block);
}

}  // namespace

TEST(RunningSystem, Of64Bits) {
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
        EXPECT_EQ(Redirected(L"SOFTWARE\\CurrentControlSet"), L"SOFTWARE\\CurrentControlSet");
        WCHAR directory[300] = {};
        GetWindowsDirectoryW(directory, 300);
        EXPECT_EQ(GetSystemRootPath().CompareNoCase(directory), 0);
        CString kernel;
        ASSERT_EQ(GetFileVersionText(CString(directory) + L"\\system32\\kernel32.dll", kernel), 0u);
        WCHAR version[64] = {};
        EXPECT_EQ(GetOfflineOsVersion(version, 64), 1);
        EXPECT_EQ(kernel, version);
        WCHAR cut[4] = {L'?', L'?', L'?', L'?'};
        GetOfflineOsVersion(cut, 3);
        GetOfflineOsVersion(cut + 3, 0);
        EXPECT_EQ(std::wstring(cut, 4), std::wstring(kernel.Left(2)) + L'\0' + L'?');
    });
}

TEST(RunningSystem, Seen32BitWide) {
    EXPECT_IN_FRESH_PROCESS([] {
        const ImportPatch<decltype(&AnswerWow64)> wow64(kSelf, "IsWow64Process", AnswerWow64);
        const ImportPatch<decltype(&AnswerWow64Directory)> directory(kSelf, "GetSystemWow64DirectoryW",
                                                                     AnswerWow64Directory);
        const ImportPatch<decltype(&DisableRedirection)> disable(kSelf, "Wow64DisableWow64FsRedirection",
                                                                 DisableRedirection);
        const ImportPatch<decltype(&RevertRedirection)> revert(kSelf, "Wow64RevertWow64FsRedirection",
                                                               RevertRedirection);
        EXPECT_FALSE(IsOffline64BitOs());
        s_succeeds = TRUE;
        EXPECT_TRUE(IsOffline64BitOs()) << "a question that failed is asked again";
        s_isWow64 = FALSE;
        EXPECT_EQ(Facts(),
                  "boot image 0, drive 0, mounted 0, 64 bit 1, mask 20119, 32-bit files 'C:\\Windows\\SysWOW64'");
        EXPECT_TRUE(DisableFsRedirection());
        std::thread([] {
            DisableFsRedirection();
            RevertFsRedirection();
            EXPECT_EQ(s_reverted, reinterpret_cast<PVOID>(101));
        }).join();
        EXPECT_TRUE(RevertFsRedirection());
        EXPECT_EQ(s_reverted, reinterpret_cast<PVOID>(100)) << "each thread pairs its own calls";
        s_succeeds = FALSE;
        EXPECT_FALSE(DisableFsRedirection());
        EXPECT_FALSE(RevertFsRedirection());
    });
}

TEST(RunningSystem, OfEachRelease) {
    const struct {
        DWORD major, minor, build;
        BYTE type;
        LPCWSTR servicePack;
        const char* facts;
    } releases[] = {
        {5, 2, 3790, 3, L"Service Pack 2", "5.2.3790 Service Pack 2 pre server"},
        {6, 0, 6002, 1, L"", "6.0.6002  vista workstation"},
        {6, 0, 6002, 2, L"", "6.0.6002  vista server 2008"},
        {6, 1, 7601, 1, L"Service Pack 1", "6.1.7601 Service Pack 1 vista 7 workstation"},
        {6, 2, 9200, 3, L"", "6.2.9200  vista 7 8 server 2008 2012"},
        {6, 3, 9600, 1, L"", "6.3.9600  vista 7 8 8.1 workstation"},
        {10, 0, 21999, 1, L"", "10.0.21999  vista 7 8 8.1 10 workstation"},
        {10, 0, 22000, 2, L"", "10.0.22000  vista 7 8 8.1 10 11 server 2008 2012"},
    };
    for (const auto& release : releases) {
        SCOPED_TRACE(release.facts);
        EXPECT_IN_FRESH_PROCESS([&] {
            const FakeVersion version(release.major, release.minor, release.build, release.type, release.servicePack);
            EXPECT_EQ(VersionFacts(), release.facts);
            EXPECT_EQ(CWindowsVersion::GetServicePackText(), release.servicePack);
            EXPECT_EQ(version.Asked(), 1) << "found once";
        });
    }
}

TEST(BootImage, WithoutAnInstalledSystem) {
    EXPECT_IN_FRESH_PROCESS([] {
        const ScopedPreinstallation machine;
        EXPECT_EQ(Redirected(L"SOFTWARE\\Microsoft"), L"SOFTWARE\\Microsoft") << "nothing can be mounted";
        EXPECT_TRUE(CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows NT"));
        EXPECT_EQ(Facts(), "boot image 1, drive 0, mounted 0, 64 bit 0, mask 20019, 32-bit files ''");
        for (const wchar_t drive : {L'E', L'D'}) {
            machine.Install(drive, L"SOFTWARE", HiveBuilder());
            EXPECT_EQ(FindOfflineWindowsDrive(), drive) << "the first with a hive";
        }
        HiveBuilder software;
        software.SetText(L"Wow6432Node\\Microsoft\\Windows\\CurrentVersion", L"ProgramFilesDir (x86)", L"C:\\P");
        machine.Mount(L"OS_SOFTWARE", machine.Install(L'D', L"OTHER", software));
        EXPECT_FALSE(IsOffline64BitOs()) << "asked before the mount, it stays so";
    });
}

TEST(BootImage, WithAnInstallationOf32Bits) {
    EXPECT_IN_FRESH_PROCESS([] {
        const InstalledSystem installed(false);
        const ImportPatch<decltype(&SizeBehind)> size(kSelf, "GetFileVersionInfoSizeW", SizeBehind);
        const ImportPatch<decltype(&ReadBehind)> read(kSelf, "GetFileVersionInfoW", ReadBehind);
        EXPECT_EQ(Redirected(L"software\\x"), L"OS_software\\x");
        EXPECT_EQ(Redirected(L"SOFTWARE\\Only32"), L"OS_SOFTWARE\\Only32");
        EXPECT_EQ(Facts(), "boot image 1, drive 68, mounted 1, 64 bit 0, mask 20019, 32-bit files ''");
        EXPECT_FALSE(CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Classes")) << "the boot image's own";
        EXPECT_TRUE(CRegistryHelper::KeyExists(HKEY_CURRENT_USER, L"SOFTWARE\\Microsoft")) << "other hives stay";
        CRegistryHelper::EnsureKeyAndChild(HKEY_LOCAL_MACHINE, L"SOFTWARE\\New", L"child", nullptr, 0, true);
        CRegistryHelper::CreateChildKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\New\\other", nullptr, 0);
        for (const LPCWSTR made : {L"OS_SOFTWARE\\Both", L"OS_SOFTWARE\\New\\child", L"OS_SOFTWARE\\New\\other"})
            EXPECT_EQ(CRegKey().Open(HKEY_LOCAL_MACHINE, made, KEY_READ), 0) << Narrow(made);
        // The version is the installed kernel's.
        EXPECT_EQ(GetSystemRootPath(), L"C:\\Windows");
        EXPECT_EQ(VersionFacts(), "10.0.22000.65 vista 7 8 8.1 10 11 workstation");
        EXPECT_TRUE(CWindowsVersion::GetServicePackText().IsEmpty());
        WCHAR version[64] = {};
        EXPECT_EQ(GetOfflineOsVersion(version, 64), 1);
        EXPECT_STREQ(version, L"10.0.22000.65");
        CString text;
        EXPECT_NE(GetFileVersionText(L"E:\\Windows\\System32\\kernel32.dll", text), 0u) << "only drive C is moved";
        EXPECT_EQ(GetFileVersionText(L"c:\\windows\\system32\\kernel32.dll", text), 0u);
        EXPECT_EQ(text, L"10.0.22000.65");
        // The current control set is the selected one.
        EXPECT_EQ(ValueBelow(L"system\\currentCONTROLset\\Services"), L"second");
        CRegistryHelper select(HKEY_LOCAL_MACHINE, L"SYSTEM\\Select", KEY_ALL_ACCESS);
        select.SetStringValue(L"Current", L"3");
        EXPECT_EQ(Redirected(L"SYSTEM\\CurrentControlSet"), L"OS_SYSTEM\\ControlSet051")
            << "any four bytes are a number";
        select.SetStringValue(L"Current", L"too long");
        EXPECT_EQ(Redirected(L"SYSTEM\\CurrentControlSet"), L"OS_SYSTEM\\CurrentControlSet");
        select.Close();
        RegDeleteKeyW(HKEY_LOCAL_MACHINE, L"OS_SYSTEM\\Select");
        EXPECT_EQ(Redirected(L"system\\currentCONTROLset\\x"), L"OS_system\\currentCONTROLset\\x");
    });
}

TEST(BootImage, WithAnInstallationOf64Bits) {
    EXPECT_IN_FRESH_PROCESS([] {
        {
            const ScopedPreinstallation nothingMounted;
            EXPECT_TRUE(DisableFsRedirection());
            EXPECT_FALSE(RevertFsRedirection());
        }
        const InstalledSystem installed(true);
        EXPECT_EQ(Facts(), "boot image 1, drive 68, mounted 1, 64 bit 1, mask 20119, 32-bit files ''")
            << "the file system redirection did not ask the bitness before the mount";
        EXPECT_TRUE(DisableFsRedirection());
        EXPECT_FALSE(RevertFsRedirection());
        EXPECT_EQ(ValueBelow(L"SOFTWARE\\Both"), L"64");
        EXPECT_EQ(ValueBelow(L"SOFTWARE\\Both", KEY_READ | KEY_WOW64_32KEY), L"32");
        EXPECT_EQ(Redirected(L"SOFTWARE\\Both", KEY_READ | KEY_WOW64_32KEY, 1), L"OS_SOFTWARE\\Both");
        EXPECT_EQ(ValueBelow(L"SOFTWARE\\Only32"), L"32");
        EXPECT_EQ(StatusThrownBy([] { ValueBelow(L"SOFTWARE\\Only32", KEY_READ | KEY_WOW64_64KEY); }), 2u);
        EXPECT_EQ(StatusThrownBy([] { ValueBelow(L"SOFTWARE\\Only32", KEY_READ, 1); }), 2u);
        EXPECT_EQ(Redirected(L"SOFTWARE\\Nowhere"), L"OS_SOFTWARE\\Wow6432Node\\Nowhere");
        // A key that is made in one view is read back there, and not in the other.
        CRegistryHelper(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Made", KEY_WRITE | KEY_WOW64_32KEY).SetStringValue(L"v", L"32");
        CRegistryHelper::EnsureKeyAndChild(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Made64", L"child", nullptr, 0, true);
        EXPECT_EQ(ValueBelow(L"OS_SOFTWARE\\Wow6432Node\\Made"), L"32");
        EXPECT_EQ(StatusThrownBy([] { ValueBelow(L"SOFTWARE\\Made", KEY_READ | KEY_WOW64_64KEY); }), 2u);
        EXPECT_EQ(StatusThrownBy([] { ValueBelow(L"SOFTWARE\\Made64\\child", KEY_READ | KEY_WOW64_64KEY); }), 0u);
        EXPECT_EQ(StatusThrownBy([] { ValueBelow(L"SOFTWARE\\Made64", KEY_READ | KEY_WOW64_32KEY); }), 2u);

        const ResourceCounter counter({kSelf, LoadedModule(L"framework.dll")});
        for (int i = 0; i < 100; ++i) {
            for (const LPCWSTR path :
                 {L"SOFTWARE\\Both", L"SOFTWARE\\No\\CurrentControlSet", L"SYSTEM\\CurrentControlSet"})
                Redirected(path);
            CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Nowhere");
        }
        EXPECT_GE(counter.Created("registry handle"), 500);
        EXPECT_EQ(counter.Report(), "");
    });
}

TEST(BootImage, WithAnInstallationThatLacksItsVersionKey) {
    EXPECT_IN_FRESH_PROCESS([] {
        const ScopedPreinstallation machine;
        machine.Mount(L"OS_SOFTWARE", machine.Install(L'D', L"SOFTWARE", HiveBuilder()));
        for (int again = 0; again < 2; ++again) EXPECT_EQ(StatusThrownBy([] { GetSystemRootPath(); }), 2u);
        EXPECT_EQ(StatusThrownBy([] { CWindowsVersion::IsVistaOrLater(); }), 2u);
        EXPECT_EQ(VersionFacts(), " pre") << "thrown once, and zeros from then on";
        WCHAR version[8] = {};
        EXPECT_EQ(StatusThrownBy([&] { GetOfflineOsVersion(version, 8); }), 2u);
    });
}

TEST(FileVersion, IsTheFilesOwnAndComparedByParts) {
    const ScopedTestDir dir;
    std::ofstream(fs::path(dir.Path(L"plain.txt"))) << "no program";
    std::ofstream(fs::path(dir.Path(L"cut.exe")), std::ios::binary) << "MZ";
    CString text = L"old";
    for (const std::wstring& path : {dir.Path(L"plain.txt"), dir.Path(L"cut.exe"), dir.Path(L"no.dll"), std::wstring()})
        EXPECT_NE(GetFileVersionText(path.c_str(), text), 0u) << Narrow(path);
    EXPECT_EQ(text, L"old");
    EXPECT_EQ(GetModuleVersionText(), L"10.0.22000.65") << "of the module with the toolkit";
    EXPECT_TRUE(IsVersionOlderThanModule(L"10.0.21999", 4));
    EXPECT_FALSE(IsVersionOlderThanModule(L"10.0.22000.65", 4));
    EXPECT_FALSE(IsVersionAtLeast(L"8.1", L"8.1.0.5", 4));
    EXPECT_TRUE(IsProductVersion7OrLater(L"7"));
    EXPECT_FALSE(IsProductVersion7OrLater(L"6.9"));
    EXPECT_TRUE(IsKnownProductVersion(CString(L"10.5.1.2")) && IsKnownProductVersion(L"8.21"));
    EXPECT_FALSE(IsKnownProductVersion(L"18.0"));
    VersionParts parts{};
    ParseVersion(L"1.2.x.4", parts);
    EXPECT_EQ(parts, (VersionParts{1, 2, 0, 4}));
    EXPECT_EQ(JoinPath(L"C:\\", L"x") + JoinPath(L"C:\\a", L"x"), L"C:\\xC:\\a\\x");
}
