// Mounting the installed system's hives: real hive files on another drive, copied, mounted, read, taken down.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "registry/MachineNames.h"
#include "registry/OfflineEnvironment.h"
#include "registry/ProcessPrivilege.h"
#include "registry/RegistryHelper.h"
#include "registry/Thrown.h"
#include "registry/WinPeHelper.h"
#include "support/FreshProcess.h"
#include "support/ImportPatch.h"
#include "support/LogCapture.h"
#include "support/Narrow.h"
#include "support/ScopedPreinstallation.h"

namespace {

namespace fs = std::filesystem;

constexpr wchar_t kConfig[] = L"D:\\Windows\\System32\\config";
constexpr wchar_t kDefaultUserHive[] = L"D:\\Users\\Default\\NTUSER.DAT";
constexpr wchar_t kVersionKey[] = L"Microsoft\\Windows NT\\CurrentVersion";

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
        SetFileAttributesW((std::wstring(kConfig) + L"\\SOFTWARE").c_str(), attributes);
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
class CopyingOfAttributes {
public:
    CopyingOfAttributes() : m_patch(GetModuleHandleW(nullptr), "CopyFileW", Copy) { s_real = m_patch.Original(); }

private:
    static BOOL WINAPI Copy(LPCWSTR source, LPCWSTR target, BOOL failIfExists) {
        return s_real(source, target, failIfExists) && SetFileAttributesW(target, GetFileAttributesW(source));
    }

    static inline decltype(&CopyFileW) s_real = nullptr;
    ImportPatch<decltype(&CopyFileW)> m_patch;
};

CString ValueBelow(HKEY hive, LPCWSTR path) {
    return CRegistryHelper(hive, path, KEY_READ).GetStringValue(L"v");
}

using Texts = std::vector<std::wstring>;

}  // namespace

TEST(OfflineHives, AreMountedOnFirstNeedAndReadThroughTheRedirection) {
    EXPECT_IN_FRESH_PROCESS([] {
        const BootedMachine machine;
        std::ofstream(fs::path(std::wstring(kConfig) + L"\\SOFTWARE.log1")) << "1";
        std::ofstream(fs::path(std::wstring(kConfig) + L"\\SOFTWARE.log2")) << "2";
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
        WinPeHelper::UnloadLocalMachineProfile();
        EXPECT_FALSE(IsOfflineSoftwareMounted());
        CRegKey key;
        EXPECT_EQ(key.Open(HKEY_LOCAL_MACHINE, L"OS_SYSTEM", KEY_READ), 2);
        EXPECT_EQ(key.Open(HKEY_USERS, L"OS_DEFAULT", KEY_READ), 2);
        EXPECT_EQ(BootedMachine::TempFiles(), (Texts{L".tmp.log1", L".tmp.log2"}));
        EXPECT_EQ(log.Messages(LogLevel::Warning), Texts());
        EXPECT_EQ(ValueBelow(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Both"), L"64") << "mounted again";
    });
}

// Each takes a machine that is well, breaks one thing and names what that gives.
TEST(OfflineHives, EachFailureHasItsStatusAndItsLogLines) {
    static const std::wstring s_copyFailed = L"Unable to copy reg file('D:\\Windows\\System32\\config\\SYSTEM') to ";
    static const struct {
        const char* name;
        std::function<void()> breakIt;
        DWORD status;
        Texts errors;
        DWORD nextStatus;
    } s_cases[] = {
        {"no installed system",
         [] { fs::remove(fs::path(kConfig) / L"SOFTWARE"); },
         2,
         {L"PE Win Profile Drive could not be found!"},
         2},
        {"no SYSTEM hive",
         [] { fs::remove(fs::path(kConfig) / L"SYSTEM"); },
         2,
         {s_copyFailed + L"temp directory. Error:00000002", L"Failed to load HKLM\\SYSTEM file with Error:00000002"},
         0},
        {"a hive without write permission",
         [] { BootedMachine::MakeReadOnly(true); },
         5,
         {L"Unable to get temp file name for registry node. Error:00000005",
          L"Failed to load HKLM\\SOFTWARE file with Error:00000005"},
         5},
        {"no folder for temporary files",
         [] { fs::remove_all(BootedMachine::TempFolder()); },
         267,
         {L"Unable to get temp file name for registry node. Error:0000010b",
          L"Failed to load HKLM\\SOFTWARE file with Error:0000010b"},
         267},
        {"no default user's hive",
         [] { fs::remove(kDefaultUserHive); },
         2,
         {L"Unable to copy reg file('D:\\Users\\Default\\NTUSER.DAT') to temp directory. Error:00000002",
          L"Failed to load HKU\\.DEFAULT file with Error:00000002"},
         0},
        {"no list of profiles",
         [] {
             HiveBuilder empty;
             empty.AddKey(L"x");
             empty.Save(std::wstring(kConfig) + L"\\SOFTWARE");
         },
         5,
         {L"Failed to load Default User Profile Path!"},
         0},
        {"a taken name",
         [] {
             HKEY key = nullptr;
             RegCreateKeyW(HKEY_LOCAL_MACHINE, L"OS_SYSTEM", &key);
             RegCloseKey(key);
         },
         183,
         {L"Failed to load HKLM\\SYSTEM file with Error:000000b7"},
         0},
        {"a hive that is none",
         [] { std::ofstream(fs::path(kConfig) / L"SYSTEM") << "no hive"; },
         1017,
         {L"Failed to load HKLM\\SYSTEM file with Error:000003f9"},
         0},
    };
    for (size_t i = 0; i < std::size(s_cases); ++i) {
        EXPECT_EXIT(RunAndEnd([i] {
                        const auto& each = s_cases[i];
                        const BootedMachine machine;
                        const CopyingOfAttributes copying;
                        each.breakIt();
                        const LogCapture log;
                        EXPECT_EQ(WinPeHelper::LoadLocalMachineProfile(), each.status);
                        EXPECT_EQ(log.Messages(LogLevel::Error), each.errors);
                        EXPECT_EQ(WinPeHelper::LoadLocalMachineProfile(), each.nextStatus);
                    }),
                    testing::ExitedWithCode(0), "")
            << s_cases[i].name;
    }
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
        fs::remove(fs::path(kConfig) / L"SOFTWARE");
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
    static decltype(&OpenProcessToken) s_real = nullptr;
    const ImportPatch<decltype(&OpenProcessToken)> patch(GetModuleHandleW(nullptr), "OpenProcessToken",
                                                         [](HANDLE process, DWORD access, PHANDLE token) {
                                                             const BOOL opened = s_real(process, access, token);
                                                             s_token = *token;
                                                             return opened;
                                                         });
    s_real = patch.Original();
    DWORD flags = 0;
    SetProcessPrivilege(L"SeBackupPrivilege", true);
    EXPECT_FALSE(GetHandleInformation(s_token, &flags));
    SetProcessPrivilege(L"SeNoSuchPrivilege", true);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_SUCH_PRIVILEGE});
    EXPECT_TRUE(GetHandleInformation(s_token, &flags));
    CloseHandle(s_token);
}
