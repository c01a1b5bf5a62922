// Mounting the installed system's hives: real hive files on another drive, copied, mounted, read, taken down.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "offline/MachineNames.h"
#include "offline/WinPeHelper.h"
#include "registry/OfflineEnvironment.h"
#include "registry/ProcessPrivilege.h"
#include "registry/RegistryHelper.h"
#include "registry/Thrown.h"
#include "support/FreshProcess.h"
#include "support/ImportPatch.h"
#include "support/LogCapture.h"
#include "support/Narrow.h"
#include "support/ScopedPreinstallation.h"

namespace {

namespace fs = std::filesystem;

constexpr wchar_t kDefaultUserHive[] = L"D:\\Users\\Default\\NTUSER.DAT";
constexpr wchar_t kVersionKey[] = L"Microsoft\\Windows NT\\CurrentVersion";

std::wstring InConfig(const wchar_t* file) {
    return std::wstring(L"D:\\Windows\\System32\\config\\") + file;
}

// A boot image that keeps its temporary files on drive E, as a real one keeps them on X, and an installed system of 64
// bits on drive D with which nothing is wrong.
class BootedMachine {
public:
    BootedMachine() {
        fs::create_directories(TempFolder());
        SetEnvironmentVariableW(L"TMP", TempFolder().c_str());
        HiveBuilder software;
        software.SetText(kVersionKey, L"SystemRoot", L"C:\\Windows");
        const std::wstring profile = L"%SystemDrive%\\Users\\Default";
        software.SetData(std::wstring(kVersionKey) + L"\\ProfileList", L"Default", REG_EXPAND_SZ, profile.c_str(),
                         (profile.size() + 1) * sizeof(wchar_t));
        software.SetText(L"Both", L"v", L"64");
        software.SetText(L"Wow6432Node\\Only32", L"v", L"32");
        software.SetText(L"Wow6432Node\\Microsoft\\Windows\\CurrentVersion", L"ProgramFilesDir (x86)", L"C:\\P");
        HiveBuilder system;
        system.SetNumber(L"Select", L"Current", 2);
        system.SetText(L"ControlSet002\\Services\\Tcpip\\Parameters", L"Domain", L"alpha.beta");
        system.SetText(L"ControlSet002\\Services\\Tcpip\\Parameters", L"Hostname", L"desk-\xE4");
        HiveBuilder user;
        user.SetText(L"Software\\Mark", L"v", L"default user");
        m_machine.Install(L'D', L"SOFTWARE", software);
        m_machine.Install(L'D', L"SYSTEM", system);
        fs::create_directories(fs::path(kDefaultUserHive).parent_path());
        user.Save(kDefaultUserHive);
    }
    ~BootedMachine() {
        std::error_code ignored;
        MakeReadOnly(false);
        for (const auto& entry : fs::directory_iterator(TempFolder(), ignored)) {
            SetFileAttributesW(entry.path().c_str(), FILE_ATTRIBUTE_NORMAL);
        }
        for (const wchar_t* folder : {L"D:\\Users", L"E:\\Temp"}) fs::remove_all(folder, ignored);
    }

    static std::wstring TempFolder() { return L"E:\\Temp"; }

    // The hives of SOFTWARE and the default user.
    static void MakeReadOnly(bool isReadOnly) {
        const DWORD attributes = isReadOnly ? FILE_ATTRIBUTE_READONLY : FILE_ATTRIBUTE_NORMAL;
        SetFileAttributesW(InConfig(L"SOFTWARE").c_str(), attributes);
        SetFileAttributesW(kDefaultUserHive, attributes);
    }

    // The names that the temporary files end with, in order.
    static std::vector<std::wstring> TempFiles() {
        std::vector<std::wstring> extensions;
        for (const auto& entry : fs::directory_iterator(TempFolder())) {
            const std::wstring name = entry.path().filename().wstring();
            EXPECT_TRUE(name.starts_with(L"Z7")) << Narrow(name);
            extensions.push_back(name.substr(name.find(L'.')));
        }
        std::sort(extensions.begin(), extensions.end());
        return extensions;
    }

private:
    ScopedPreinstallation m_machine;
};

// Wine's copy leaves the attributes of an existing target as they are; the system's gives it those of the source.
BOOL WINAPI CopyWithAttributes(LPCWSTR source, LPCWSTR target, BOOL failIfExists) {
    return SystemFunction(&CopyFileW, L"kernel32.dll", "CopyFileW")(source, target, failIfExists) &&
           SetFileAttributesW(target, GetFileAttributesW(source));
}

CString ValueBelow(HKEY hive, LPCWSTR path) {
    return CRegistryHelper(hive, path, KEY_READ).GetStringValue(L"v");
}

using Texts = std::vector<std::wstring>;

// A machine is well until one thing is broken; mounting then gives the status and the errors, and mounting once more
// the next status.
void ExpectFailure(const char* name, void (*breakIt)(), DWORD status, DWORD nextStatus, const Texts& errors) {
    SCOPED_TRACE(name);
    EXPECT_IN_FRESH_PROCESS([&] {
        const BootedMachine machine;
        const ImportPatch<decltype(&CopyFileW)> copying(GetModuleHandleW(nullptr), "CopyFileW", CopyWithAttributes);
        breakIt();
        const LogCapture log;
        EXPECT_EQ(WinPeHelper::LoadLocalMachineProfile(), status);
        EXPECT_EQ(log.Messages(LogLevel::Error), errors);
        EXPECT_EQ(WinPeHelper::LoadLocalMachineProfile(), nextStatus);
    });
}

// "18+" for the enabling of a privilege and "17-" for the disabling of another, by their numbers in the system.
std::string s_privileges;

BOOL WINAPI NotePrivilege(HANDLE token, BOOL disableAll, PTOKEN_PRIVILEGES wanted, DWORD bytes,
                          PTOKEN_PRIVILEGES previous, PDWORD previousBytes) {
    const LUID_AND_ATTRIBUTES& privilege = wanted->Privileges[0];
    s_privileges += std::to_string(privilege.Luid.LowPart) + (privilege.Attributes == SE_PRIVILEGE_ENABLED ? "+" : "-");
    return SystemFunction(&AdjustTokenPrivileges, L"advapi32.dll", "AdjustTokenPrivileges")(
        token, disableAll, wanted, bytes, previous, previousBytes);
}

}  // namespace

TEST(OfflineHives, AreMountedOnFirstNeedAndReadThroughTheRedirection) {
    EXPECT_IN_FRESH_PROCESS([] {
        const BootedMachine machine;
        std::ofstream(fs::path(InConfig(L"SOFTWARE.log1"))) << "1";
        std::ofstream(fs::path(InConfig(L"SOFTWARE.log2"))) << "2";
        const ImportPatch<decltype(&AdjustTokenPrivileges)> privileges(GetModuleHandleW(nullptr),
                                                                       "AdjustTokenPrivileges", NotePrivilege);
        {
            const LogCapture log;
            EXPECT_EQ(ValueBelow(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Both"), L"64");
            EXPECT_EQ(log.Messages(LogLevel::Error), Texts());
            EXPECT_EQ(log.Messages(LogLevel::Informational).size(), 4u) << "two hives without logs";
            EXPECT_TRUE(log.Contains(LogLevel::Informational,
                                     L"Unable to copy reg file('D:\\Windows\\System32\\config\\SYSTEM.log1') to temp "
                                     L"directory. Error:00000002"));
            EXPECT_TRUE(log.Contains(LogLevel::Trace, L"GetLastError() for SE_BACKUP_NAME privilege returns 0x0\n"));
        }
        const LogCapture log;
        EXPECT_EQ(WinPeHelper::LoadLocalMachineProfile(), 0u);
        EXPECT_EQ(ValueBelow(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Only32"), L"32");
        EXPECT_EQ(ValueBelow(HKEY_USERS, L"OS_DEFAULT\\Software\\Mark"), L"default user");
        EXPECT_EQ(GetMachineDomainName(), L"ALPHA");
        EXPECT_EQ(GetMachineHostName(), L"DESK-\xC4");
        CString name;
        EXPECT_TRUE(GetMachineName(name));
        EXPECT_EQ(name, L"DESK-\xC4");
        HKEY list = nullptr;
        EXPECT_EQ(OpenOfflineProfileList(list), 0u);
        EXPECT_EQ(RegQueryValueExW(list, L"Default", nullptr, nullptr, nullptr, nullptr), 0);
        EXPECT_EQ(log.GetLines().size(), 0u) << "mounted once, and silent from then on";
        // A copy of each hive is mounted, with what logs it has.
        EXPECT_EQ(BootedMachine::TempFiles(), (Texts{L".tmp", L".tmp", L".tmp", L".tmp.log1", L".tmp.log2"}));
        RegCloseKey(list);
        EXPECT_EQ(s_privileges, "18+17+") << "restoring, then saving";
        WinPeHelper::UnloadLocalMachineProfile();
        EXPECT_EQ(s_privileges, "18+17+18+17+18-17-");
        EXPECT_FALSE(IsOfflineSoftwareMounted());
        CRegKey key;
        EXPECT_EQ(key.Open(HKEY_LOCAL_MACHINE, L"OS_SYSTEM", KEY_READ), 2);
        EXPECT_EQ(key.Open(HKEY_USERS, L"OS_DEFAULT", KEY_READ), 2);
        EXPECT_EQ(BootedMachine::TempFiles(), (Texts{L".tmp.log1", L".tmp.log2"}));
        EXPECT_EQ(log.Messages(LogLevel::Warning), Texts());
        EXPECT_EQ(ValueBelow(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Both"), L"64") << "mounted again";
    });
}

TEST(OfflineHives, EachFailureHasItsStatusAndItsLogLines) {
    const std::wstring copyFailed =
        L"Unable to copy reg file('D:\\Windows\\System32\\config\\SYSTEM') to temp directory. ";
    ExpectFailure("no installed system", [] { fs::remove(InConfig(L"SOFTWARE")); }, 2, 2,
                  {L"PE Win Profile Drive could not be found!"});
    ExpectFailure("no SYSTEM hive", [] { fs::remove(InConfig(L"SYSTEM")); }, 2, 0,
                  {copyFailed + L"Error:00000002", L"Failed to load HKLM\\SYSTEM file with Error:00000002"});
    ExpectFailure("a hive without write permission", [] { BootedMachine::MakeReadOnly(true); }, 5, 5,
                  {L"Unable to get temp file name for registry node. Error:00000005",
                   L"Failed to load HKLM\\SOFTWARE file with Error:00000005"});
    ExpectFailure("no folder for temporary files", [] { fs::remove_all(BootedMachine::TempFolder()); }, 267, 267,
                  {L"Unable to get temp file name for registry node. Error:0000010b",
                   L"Failed to load HKLM\\SOFTWARE file with Error:0000010b"});
    ExpectFailure("no default user's hive", [] { fs::remove(kDefaultUserHive); }, 2, 0,
                  {L"Unable to copy reg file('D:\\Users\\Default\\NTUSER.DAT') to temp directory. Error:00000002",
                   L"Failed to load HKU\\.DEFAULT file with Error:00000002"});
    const auto emptySoftware = [] {
        HiveBuilder empty;
        empty.AddKey(L"x");
        empty.Save(InConfig(L"SOFTWARE"));
    };
    ExpectFailure("no list of profiles", emptySoftware, 5, 0, {L"Failed to load Default User Profile Path!"});
    ExpectFailure("a taken name", [] { CRegKey().Create(HKEY_LOCAL_MACHINE, L"OS_SYSTEM"); }, 183, 0,
                  {L"Failed to load HKLM\\SYSTEM file with Error:000000b7"});
    ExpectFailure("a hive that is none", [] { std::ofstream(fs::path(InConfig(L"SYSTEM"))) << "no hive"; }, 1017, 0,
                  {L"Failed to load HKLM\\SYSTEM file with Error:000003f9"});
}

TEST(OfflineHives, ANodeWhoseKeyIsOpenStaysMountedWithItsCopy) {
    EXPECT_IN_FRESH_PROCESS([] {
        const BootedMachine machine;
        EnableHivePrivileges();
        CString tempFile;
        ASSERT_EQ(WinPeHelper::LoadRegistryNode(HKEY_USERS, L"OS_DEFAULT", kDefaultUserHive, tempFile), 0u);
        const CString copy = tempFile;
        CRegKey key;
        ASSERT_EQ(key.Open(HKEY_USERS, L"OS_DEFAULT", KEY_READ), 0);
        EXPECT_EQ(WinPeHelper::UnloadRegistryNode(HKEY_USERS, L"OS_DEFAULT", tempFile), 5u);
        EXPECT_EQ(tempFile, copy);
        EXPECT_TRUE(fs::exists(copy.GetString()));
        key.Close();
        // A copy that somebody reads cannot be deleted; the mount is gone all the same.
        std::ifstream reader(fs::path(copy.GetString()));
        const LogCapture log;
        EXPECT_EQ(WinPeHelper::UnloadRegistryNode(HKEY_USERS, L"OS_DEFAULT", tempFile), 0u);
        EXPECT_TRUE(tempFile.IsEmpty());
        EXPECT_EQ(log.Messages(LogLevel::Warning),
                  (Texts{L"Unable to delete temp OS_DEFAULT reg file:'" + std::wstring(copy) + L"'. Error:00000020"}));
        EXPECT_EQ(WinPeHelper::UnloadRegistryNode(HKEY_USERS, L"OS_DEFAULT", tempFile), 2u);
    });
}

TEST(OfflineHives, OffAPreinstallationBootNothingIsTakenDown) {
    CRegKey key;
    ASSERT_EQ(key.Create(HKEY_LOCAL_MACHINE, L"OS_SOFTWARE"), 0);
    key.Close();
    WinPeHelper::UnloadLocalMachineProfile();
    EXPECT_EQ(RegDeleteKeyW(HKEY_LOCAL_MACHINE, L"OS_SOFTWARE"), 0) << "still there";
}

TEST(OfflineHives, ReadAndWriteAccessIsToldOnStandardOutput) {
    EXPECT_IN_FRESH_PROCESS([] {
        const BootedMachine machine;
        testing::internal::CaptureStdout();
        EXPECT_EQ(CheckFileReadWrite(L"D:\\none"), 2u);
        EXPECT_EQ(CheckFileReadWrite(kDefaultUserHive), 0u);
        machine.MakeReadOnly(true);
        EXPECT_EQ(CheckFileReadWrite(kDefaultUserHive), 5u);
        machine.MakeReadOnly(false);
        fs::remove(InConfig(L"SOFTWARE"));
        HKEY list = nullptr;
        EXPECT_EQ(OpenOfflineProfileList(list), 2u);
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  "'D:\\none' does not exist\nRead/Write Permissions Failed - errno:13\nRegLoadKey failed - "
                  "Error:00000002\n");
    });
}

TEST(MachineNames, AreTheNetworkSettings) {
    EXPECT_IN_FRESH_PROCESS([] {
        const LPCWSTR path = L"System\\CurrentControlSet\\Services\\Tcpip\\Parameters";
        CRegistryHelper key(HKEY_LOCAL_MACHINE, path, KEY_ALL_ACCESS);
        for (const auto& [domain, label] : {std::pair(L"a.b.c", L"A"), {L".local", L".LOCAL"}, {L"alpha", L"ALPHA"}}) {
            key.SetStringValue(L"Domain", domain);
            EXPECT_EQ(GetMachineDomainName(), label);
        }
        RegDeleteValueW(key, L"Domain");
        EXPECT_EQ(GetMachineDomainName(), L"");
        CString name;
        EXPECT_TRUE(GetMachineName(name));
        EXPECT_EQ(name, _wgetenv(L"COMPUTERNAME")) << "the system's own on a running system";
        {
            const ImportPatch<decltype(&GetComputerNameW)> tooLong(GetModuleHandleW(nullptr), "GetComputerNameW",
                                                                   [](LPWSTR, LPDWORD size) {
                                                                       EXPECT_EQ(*size, 16u);
                                                                       return FALSE;
                                                                   });
            EXPECT_FALSE(GetMachineName(name));
            EXPECT_FALSE(name.IsEmpty()) << "as it was";
        }
        const ScopedPreinstallation machine;
        RegDeleteValueW(key, L"Hostname");
        EXPECT_FALSE(GetMachineName(name));
        key.Close();
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, path);
        EXPECT_EQ(StatusThrownBy([&] { GetMachineName(name); }), 2u);
    });
}

TEST(ProcessPrivilege, ATokenThatCannotBeAdjustedStaysOpen) {
    static HANDLE s_token = nullptr;
    const ImportPatch<decltype(&OpenProcessToken)> patch(
        GetModuleHandleW(nullptr), "OpenProcessToken", [](HANDLE process, DWORD access, PHANDLE token) {
            const auto open = SystemFunction(&OpenProcessToken, L"advapi32.dll", "OpenProcessToken");
            const BOOL opened = open(process, access, token);
            s_token = *token;
            return opened;
        });
    DWORD flags = 0;
    SetProcessPrivilege(L"SeBackupPrivilege", true);
    EXPECT_FALSE(GetHandleInformation(s_token, &flags));
    SetProcessPrivilege(L"SeNoSuchPrivilege", true);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_SUCH_PRIVILEGE});
    EXPECT_TRUE(GetHandleInformation(s_token, &flags));
    CloseHandle(s_token);
}
