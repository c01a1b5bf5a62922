// A preinstallation boot with real hive files on another drive, which the toolkit copies, mounts, reads and takes down:
// without an installed system, with one of 32 bits, with one of 64, and with each damage that it can have.
#include <atlbase.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <set>

#include "offline/MachineNames.h"
#include "offline/WinPeHelper.h"
#include "registry/FileVersion.h"
#include "registry/FsRedirection.h"
#include "registry/HiveRedirection.h"
#include "registry/RegistryHelper.h"
#include "registry/SystemFacts.h"
#include "registry/SystemRoot.h"
#include "registry/Thrown.h"
#include "support/FreshProcess.h"
#include "support/LogCapture.h"
#include "support/ResourceCounter.h"
#include "support/ScopedPreinstallation.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using Texts = std::vector<std::wstring>;

constexpr wchar_t kTemp[] = L"E:\\Temp";
constexpr wchar_t kUserHive[] = L"D:\\Users\\Default\\NTUSER.DAT";
constexpr wchar_t kVersionKey[] = L"Microsoft\\Windows NT\\CurrentVersion";
constexpr wchar_t kNetwork[] = L"ControlSet002\\Services\\Tcpip\\Parameters";
constexpr wchar_t kNoProfile[] = L"Failed to load Default User Profile Path!";
const HMODULE kSelf = GetModuleHandleW(nullptr);

std::wstring InConfig(const wchar_t* file) {
    return std::wstring(L"D:\\Windows\\System32\\config\\") + file;
}

std::wstring CopyFailed(const std::wstring& file) {
    return L"Unable to copy reg file('" + file + L"') to temp directory. Error:00000002";
}

// The boot image keeps its temporary files on drive E, as a real one keeps them on X; the installed system is on D.
class BootedMachine {
public:
    explicit BootedMachine(bool has64Bits = true) {
        fs::create_directories(kTemp);
        SetEnvironmentVariableW(L"TMP", kTemp);
        HiveBuilder software, system, user;
        software.SetText(kVersionKey, L"SystemRoot", L"C:\\Windows");
        software.SetText(kVersionKey + L"\\ProfileList"s, L"Default", L"%SystemDrive%\\Users\\Default", REG_EXPAND_SZ);
        software.SetText(L"Both", L"v", L"64");
        if (has64Bits) {
            software.SetText(L"Wow6432Node\\Microsoft\\Windows\\CurrentVersion", L"ProgramFilesDir (x86)", L"C:\\P");
            software.SetText(L"Wow6432Node\\Both", L"v", L"32");
            software.SetText(L"Wow6432Node\\Only32", L"v", L"32");
        }
        system.SetNumber(L"Select", L"Default", 1);
        system.SetNumber(L"Select", L"Current", 2);
        system.SetText(kNetwork, L"Domain", L"alpha.beta");
        system.SetText(kNetwork, L"Hostname", L"desk-\xE4");
        user.SetText(L"Software\\Mark", L"v", L"default user");
        m_machine.Install(L'D', L"SOFTWARE", software);
        m_machine.Install(L'D', L"SYSTEM", system);
        user.Save(kUserHive);
    }
    ~BootedMachine() {
        std::error_code ignored;
        for (const auto& entry : fs::directory_iterator(kTemp, ignored)) MakeReadOnly(entry.path().wstring(), false);
        for (const std::wstring& file : {InConfig(L"SOFTWARE"), kUserHive + L""s}) MakeReadOnly(file, false);
        for (const wchar_t* folder : {L"D:\\Users", kTemp}) fs::remove_all(folder, ignored);
    }

    static void MakeReadOnly(const std::wstring& file, bool isReadOnly = true) {
        SetFileAttributesW(file.c_str(), isReadOnly ? FILE_ATTRIBUTE_READONLY : FILE_ATTRIBUTE_NORMAL);
    }

    // How the names of the temporary files go on behind their number.
    static std::set<std::wstring> TempFiles() {
        std::set<std::wstring> endings;
        for (const auto& entry : fs::directory_iterator(kTemp)) {
            const std::wstring name = entry.path().filename().wstring();
            endings.insert(name.substr(0, 2) + name.substr(name.find(L'.')));
        }
        return endings;
    }

private:
    ScopedPreinstallation m_machine;
};

std::wstring Redirected(LPCWSTR path, REGSAM access = KEY_READ, DWORD nativeViewOnly = 0) {
    CString result = path;
    RedirectToOfflineHive(result, access, nativeViewOnly);
    return result.GetString();
}

// The value "v", or the status thrown.
std::wstring ValueBelow(LPCWSTR path, REGSAM access = KEY_READ, DWORD nativeViewOnly = 0) {
    CString value;
    const DWORD status = StatusThrownBy(
        [&] { value = CRegistryHelper(HKEY_LOCAL_MACHINE, path, access, nativeViewOnly).GetStringValue(L"v"); });
    return status == ERROR_SUCCESS ? value.GetString() : std::to_wstring(status);
}

// Wine answers for any file of this name with its own kernel, so the installed one's version is asked of the test
// program.
LPCWSTR FileBehind(LPCWSTR path) {
    return _wcsicmp(path, L"D:\\Windows\\System32\\kernel32.dll") == 0 ? _wpgmptr : path;
}

}  // namespace

TEST(BootImage, WithoutAnInstalledSystem) {
    EXPECT_IN_FRESH_PROCESS([] {
        const ScopedPreinstallation machine;
        EXPECT_EQ(Redirected(L"SOFTWARE\\Microsoft"), L"SOFTWARE\\Microsoft") << "nothing can be mounted";
        EXPECT_TRUE(CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows NT"));
        testing::internal::CaptureStdout();
        HKEY list = nullptr;
        EXPECT_EQ(OpenOfflineProfileList(list), 2u);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "RegLoadKey failed - Error:00000002\n");
        EXPECT_EQ(Facts(), "boot image 1, drive 0, mounted 0, 64 bit 0, mask 20019, 32-bit files ''");
        for (const wchar_t drive : {L'E', L'D'}) {
            machine.Install(drive, L"SOFTWARE", HiveBuilder());
            EXPECT_EQ(FindOfflineWindowsDrive(), drive) << "the first with a hive";
        }
        const BootedMachine installed;
        EXPECT_EQ(ValueBelow(L"SOFTWARE\\Both"), L"64");
        EXPECT_FALSE(IsOffline64BitOs()) << "asked before the mount, it stays so";
    });
}

TEST(BootImage, WithAnInstallationOf32BitsItsKernelTellsTheVersion) {
    EXPECT_IN_FRESH_PROCESS([] {
        const BootedMachine installed(false);
        static const auto size = SystemFunction(&GetFileVersionInfoSizeW, L"version.dll", "GetFileVersionInfoSizeW");
        static const auto read = SystemFunction(&GetFileVersionInfoW, L"version.dll", "GetFileVersionInfoW");
        const ImportPatch<decltype(&GetFileVersionInfoSizeW)> sizes(
            kSelf, "GetFileVersionInfoSizeW",
            [](LPCWSTR path, LPDWORD handle) { return size(FileBehind(path), handle); });
        const ImportPatch<decltype(&GetFileVersionInfoW)> reads(
            kSelf, "GetFileVersionInfoW", [](LPCWSTR path, DWORD handle, DWORD bytes, LPVOID block) {
                return read(FileBehind(path), handle, bytes, block);
            });
        EXPECT_EQ(Redirected(L"SOFTWARE\\Only32"), L"OS_SOFTWARE\\Only32");
        EXPECT_EQ(Facts(), "boot image 1, drive 68, mounted 1, 64 bit 0, mask 20019, 32-bit files ''");
        EXPECT_FALSE(CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Classes")) << "the boot image's own";
        EXPECT_TRUE(CRegistryHelper::KeyExists(HKEY_CURRENT_USER, L"SOFTWARE\\Microsoft")) << "other hives stay";
        EXPECT_EQ(GetSystemRootPath(), L"C:\\Windows");
        EXPECT_EQ(VersionFacts(), "10.0.22000.65 vista 7 8 8.1 10 11 workstation");
        EXPECT_TRUE(CWindowsVersion::GetServicePackText().IsEmpty());
        WCHAR version[64] = {};
        EXPECT_EQ(GetOfflineOsVersion(version, 64), 1);
        EXPECT_STREQ(version, L"10.0.22000.65");
        CString text;
        EXPECT_NE(GetFileVersionText(L"E:\\Windows\\System32\\kernel32.dll", text), 0u) << "only drive C is moved";
        EXPECT_EQ(GetFileVersionText(L"c:\\windows\\system32\\kernel32.dll", text), 0u);
        EXPECT_EQ(text, version);
        CString name = L"as it was";
        RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, (L"OS_SYSTEM\\"s + kNetwork).c_str(), L"Hostname");
        EXPECT_TRUE(!GetMachineName(name) && name == L"as it was");
        // The current control set is the selected one.
        CRegistryHelper select(HKEY_LOCAL_MACHINE, L"SYSTEM\\Select", KEY_ALL_ACCESS);
        EXPECT_EQ(Redirected(L"system\\currentCONTROLset\\x"), L"OS_system\\ControlSet002\\x");
        select.SetStringValue(L"Current", L"too long");
        EXPECT_EQ(Redirected(L"SYSTEM\\CurrentControlSet"), L"OS_SYSTEM\\CurrentControlSet");
        select.Close();
        RegDeleteKeyW(HKEY_LOCAL_MACHINE, L"OS_SYSTEM\\Select");
        EXPECT_EQ(Redirected(L"system\\currentCONTROLset\\x"), L"OS_system\\currentCONTROLset\\x");
        EXPECT_EQ(StatusThrownBy([] { GetMachineDomainName(); }), 2u);
    });
}

TEST(BootImage, WithAnInstallationOf64BitsBothViewsAreReadAndAllIsTakenDown) {
    EXPECT_IN_FRESH_PROCESS([] {
        const BootedMachine machine;
        std::ofstream(fs::path(InConfig(L"SOFTWARE.log1"))) << "1";
        std::ofstream(fs::path(InConfig(L"SOFTWARE.log2"))) << "2";
        // "18+" for the enabling of a privilege and "17-" for the disabling of another, by their numbers in the system.
        std::string privileges;
        const SeenCall<AdjustTokenPrivileges> adjusting(
            kSelf, "AdjustTokenPrivileges", [&](HANDLE, BOOL, PTOKEN_PRIVILEGES wanted, auto...) {
                const auto& [luid, attributes] = wanted->Privileges[0];
                privileges += std::to_string(luid.LowPart) + (attributes == SE_PRIVILEGE_ENABLED ? "+" : "-");
            });
        EXPECT_TRUE(DisableFsRedirection());  // does not ask the bitness, which nobody knows before the mount
        {
            const LogCapture log;
            EXPECT_EQ(ValueBelow(L"SOFTWARE\\Both"), L"64");
            EXPECT_EQ(log.Messages(LogLevel::Error), Texts());
            EXPECT_EQ(log.Messages(LogLevel::Informational).size(), 4u) << "two hives without logs";
            EXPECT_TRUE(log.Contains(LogLevel::Informational, CopyFailed(InConfig(L"SYSTEM.log1"))));
            EXPECT_TRUE(log.Contains(LogLevel::Trace, L"GetLastError() for SE_BACKUP_NAME privilege returns 0x0\n"));
        }
        const LogCapture log;
        EXPECT_EQ(WinPeHelper::LoadLocalMachineProfile(), 0u);
        EXPECT_EQ(log.GetLines(), std::vector<LogCapture::Line>()) << "what is mounted is told to nobody";
        EXPECT_EQ(Facts(), "boot image 1, drive 68, mounted 1, 64 bit 1, mask 20119, 32-bit files ''");
        EXPECT_TRUE(DisableFsRedirection());
        EXPECT_FALSE(RevertFsRedirection());
        EXPECT_EQ(ValueBelow(L"SOFTWARE\\Both", KEY_READ | KEY_WOW64_32KEY), L"32");
        EXPECT_EQ(Redirected(L"SOFTWARE\\Both", KEY_READ | KEY_WOW64_32KEY, 1), L"OS_SOFTWARE\\Both");
        EXPECT_EQ(ValueBelow(L"SOFTWARE\\Only32"), L"32");
        EXPECT_EQ(ValueBelow(L"SOFTWARE\\Only32", KEY_READ | KEY_WOW64_64KEY), L"2");
        EXPECT_EQ(ValueBelow(L"SOFTWARE\\Only32", KEY_READ, 1), L"2");
        EXPECT_EQ(Redirected(L"SOFTWARE\\Nowhere"), L"OS_SOFTWARE\\Wow6432Node\\Nowhere");
        // A key that is made in one view is read back there, and not in the other.
        CRegistryHelper(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Made", KEY_WRITE | KEY_WOW64_32KEY).SetStringValue(L"v", L"32");
        EXPECT_EQ(ValueBelow(L"OS_SOFTWARE\\Wow6432Node\\Made"), L"32");
        EXPECT_EQ(ValueBelow(L"SOFTWARE\\Made", KEY_READ | KEY_WOW64_64KEY), L"2");
        CRegistryHelper::EnsureKeyAndChild(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Only32", L"child", nullptr, 0, true);
        CRegistryHelper::CreateChildKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Made32", nullptr, 0);
        EXPECT_EQ(ValueBelow(L"OS_SOFTWARE\\Only32\\child") + ValueBelow(L"OS_SOFTWARE\\Wow6432Node\\Made32"), L"");
        {
            const ResourceCounter counter({kSelf, LoadedModule(L"RegistryRulesFramework.dll")});
            for (const LPCWSTR path : {L"SOFTWARE\\Both", L"SOFTWARE\\No\\CurrentControlSet"}) Redirected(path);
            EXPECT_GE(counter.Created("registry handle"), 5);
            EXPECT_EQ(counter.Report(), "");
        }
        EXPECT_EQ(CRegistryHelper(HKEY_USERS, L"OS_DEFAULT\\Software\\Mark", KEY_READ).GetStringValue(L"v"),
                  L"default user");
        CString name;
        EXPECT_TRUE(GetMachineName(name));
        EXPECT_EQ(GetMachineDomainName() + L" " + GetMachineHostName() + L" " + name, L"ALPHA DESK-\xC4 DESK-\xC4");
        HKEY list = nullptr;
        EXPECT_EQ(OpenOfflineProfileList(list), 0u);
        EXPECT_EQ(RegQueryValueExW(list, L"Default", nullptr, nullptr, nullptr, nullptr), 0);
        RegCloseKey(list);
        EXPECT_EQ(BootedMachine::TempFiles(), (std::set<std::wstring>{L"Z7.tmp", L"Z7.tmp.log1", L"Z7.tmp.log2"}));
        EXPECT_EQ(privileges, "18+17+") << "restoring, then saving";
        WinPeHelper::UnloadLocalMachineProfile();
        EXPECT_EQ(privileges, "18+17+18+17+18-17-");
        EXPECT_FALSE(IsOfflineSoftwareMounted());
        for (const auto& [root, mount] : {std::pair(HKEY_LOCAL_MACHINE, L"OS_SYSTEM"), {HKEY_USERS, L"OS_DEFAULT"}})
            EXPECT_EQ(CRegKey().Open(root, mount, KEY_READ), 2);
        EXPECT_EQ(BootedMachine::TempFiles(), (std::set<std::wstring>{L"Z7.tmp.log1", L"Z7.tmp.log2"}));
        EXPECT_EQ(log.Messages(LogLevel::Warning), Texts());
        EXPECT_EQ(ValueBelow(L"SOFTWARE\\Both"), L"64") << "mounted again";
    });
}

// A machine is well until one thing is broken. What is mounted before the failure stays, so the next call finds it
// done.
TEST(BootImage, EachDamageHasItsStatusAndItsLogLines) {
    const std::wstring noTemp = L"Unable to get temp file name for registry node. Error:";
    const std::wstring noSoftware = L"|Failed to load HKLM\\SOFTWARE file with Error:";
    const std::wstring noSystem = L"Failed to load HKLM\\SYSTEM file with Error:";
    const std::wstring noUser = L"|Failed to load HKU\\.DEFAULT file with Error:";
    const struct {
        DWORD status, nextStatus;
        std::wstring errors;
        void (*breakIt)();
    } cases[] = {
        {2, 2, L"PE Win Profile Drive could not be found!", [] { fs::remove(InConfig(L"SOFTWARE")); }},
        {2, 0, CopyFailed(InConfig(L"SYSTEM")) + L"|" + noSystem + L"00000002",
         [] { fs::remove(InConfig(L"SYSTEM")); }},
        {5, 5, noTemp + L"00000005" + noSoftware + L"00000005",
         [] { BootedMachine::MakeReadOnly(InConfig(L"SOFTWARE")); }},
        {267, 267, noTemp + L"0000010b" + noSoftware + L"0000010b", [] { fs::remove_all(kTemp); }},
        {2, 0, CopyFailed(kUserHive) + noUser + L"00000002", [] { fs::remove(kUserHive); }},
        {5, 0, kNoProfile, [] { fs::remove(InConfig(L"SOFTWARE")), HiveBuilder().Save(InConfig(L"SOFTWARE")); }},
        {183, 0, noSystem + L"000000b7", [] { CRegKey().Create(HKEY_LOCAL_MACHINE, L"OS_SYSTEM"); }},
        {1017, 0, noSystem + L"000003f9", [] { std::ofstream(fs::path(InConfig(L"SYSTEM"))) << "no hive"; }},
    };
    for (const auto& c : cases) {
        EXPECT_IN_FRESH_PROCESS([&] {
            const BootedMachine machine;
            // Wine's copy leaves the attributes of an existing target; the system's gives it those of the source.
            const SeenCall<CopyFileW> copying(
                kSelf, "CopyFileW", [](auto...) {},
                [](LPCWSTR source, LPCWSTR target, BOOL) { SetFileAttributesW(target, GetFileAttributesW(source)); });
            c.breakIt();
            const LogCapture log;
            EXPECT_EQ(WinPeHelper::LoadLocalMachineProfile(), c.status);
            std::wstring errors;
            for (const std::wstring& line : log.Messages(LogLevel::Error))
                errors += (errors.empty() ? L"" : L"|") + line;
            EXPECT_EQ(errors, c.errors);
            EXPECT_EQ(WinPeHelper::LoadLocalMachineProfile(), c.nextStatus);
            if (c.errors != kNoProfile) return;  // here the version key is missing, too
            for (int again = 0; again < 2; ++again) EXPECT_EQ(StatusThrownBy([] { GetSystemRootPath(); }), 2u);
            EXPECT_EQ(StatusThrownBy([] { CWindowsVersion::IsVistaOrLater(); }), 2u);
            EXPECT_EQ(VersionFacts(), " pre") << "thrown once, and zeros from then on";
            WCHAR version[8] = {};
            EXPECT_EQ(StatusThrownBy([&] { GetOfflineOsVersion(version, 8); }), 2u);
        });
    }
}

TEST(BootImage, ANodeIsTakenDownOnceItsKeysAreClosed) {
    EXPECT_IN_FRESH_PROCESS([] {
        const BootedMachine machine;
        EnableHivePrivileges();
        CString tempFile;
        ASSERT_EQ(WinPeHelper::LoadRegistryNode(HKEY_USERS, L"OS_DEFAULT", kUserHive, tempFile), 0u);
        const std::wstring copy = tempFile.GetString();
        CRegKey key;
        ASSERT_EQ(key.Open(HKEY_USERS, L"OS_DEFAULT", KEY_READ), 0);
        EXPECT_EQ(WinPeHelper::UnloadRegistryNode(HKEY_USERS, L"OS_DEFAULT", tempFile), 5u);
        EXPECT_EQ(tempFile, copy.c_str());
        key.Close();
        // A copy that somebody reads cannot be deleted; the mount is gone all the same.
        std::ifstream reader{fs::path(copy)};
        const LogCapture log;
        EXPECT_EQ(WinPeHelper::UnloadRegistryNode(HKEY_USERS, L"OS_DEFAULT", tempFile), 0u);
        EXPECT_TRUE(tempFile.IsEmpty());
        EXPECT_EQ(log.Messages(LogLevel::Warning),
                  (Texts{L"Unable to delete temp OS_DEFAULT reg file:'" + copy + L"'. Error:00000020"}));
        testing::internal::CaptureStdout();
        EXPECT_EQ(CheckFileReadWrite(L"D:\\none"), 2u);
        EXPECT_EQ(CheckFileReadWrite(kUserHive), 0u);
        BootedMachine::MakeReadOnly(kUserHive);
        EXPECT_EQ(CheckFileReadWrite(kUserHive), 5u);
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  "'D:\\none' does not exist\nRead/Write Permissions Failed - errno:13\n");
    });
}

TEST(RunningSystem, HasNamesOfItsOwnAndKeepsAKeyOfTheOfflineName) {
    CRegistryHelper key(HKEY_LOCAL_MACHINE, L"System\\CurrentControlSet\\Services\\Tcpip\\Parameters", KEY_ALL_ACCESS);
    for (const auto& [domain, label] : {std::pair(L"a.b.c", L"A"), {L".local", L".LOCAL"}, {L"alpha", L"ALPHA"}}) {
        key.SetStringValue(L"Domain", domain);
        EXPECT_EQ(GetMachineDomainName(), label);
    }
    RegDeleteValueW(key, L"Domain");
    EXPECT_EQ(GetMachineDomainName(), L"");
    const CString own = _wgetenv(L"COMPUTERNAME");
    CString name;
    EXPECT_TRUE(GetMachineName(name) && name == own);
    const ImportPatch<decltype(&GetComputerNameW)> tooLong(kSelf, "GetComputerNameW",
                                                           [](LPWSTR, LPDWORD size) { return BOOL{*size != 16}; });
    EXPECT_TRUE(!GetMachineName(name) && name == own) << "as it was";
    // Nobody has it open: it would go if it were taken for the mounted one.
    ASSERT_EQ(CRegKey().Create(HKEY_LOCAL_MACHINE, L"OS_SOFTWARE"), 0);
    WinPeHelper::UnloadLocalMachineProfile();
    EXPECT_EQ(RegDeleteKeyW(HKEY_LOCAL_MACHINE, L"OS_SOFTWARE"), 0) << "still there";
}
