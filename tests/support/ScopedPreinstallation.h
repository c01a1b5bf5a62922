// Makes the machine look like a preinstallation boot: the key that tells it, an installed system on drive D or E, and
// offline hives mounted from files that the system saved. All of it goes away with the object, also what was mounted by
// others under the offline names.
//
// The prefix needs the second drives: WINE_RUN_PREPARE=tests/support/second-drives.sh scripts/wine-run ..., and in
// CMake the test's property ENVIRONMENT (see tests/registry). All members throw std::runtime_error on failure.
#pragma once

#include <filesystem>

#include "support/ScopedRegistryKey.h"

extern "C" LONG NTAPI RtlAdjustPrivilege(ULONG privilege, BOOLEAN enable, BOOLEAN forThread, PBOOLEAN before);

// SeBackupPrivilege and SeRestorePrivilege, which saving and mounting hives need, for the process.
inline void EnableHivePrivileges() {
    BOOLEAN before = FALSE;
    for (const ULONG backupAndRestore : {17UL, 18UL}) RtlAdjustPrivilege(backupAndRestore, TRUE, FALSE, &before);
}

// A hive with given content. Paths of keys and values are relative to its root.
class HiveBuilder : public ScopedRegistryKey {
public:
    // Writes the hive to a file, which must not exist; the folders on the way are created.
    void Save(const std::filesystem::path& file) const {
        EnableHivePrivileges();
        std::filesystem::create_directories(file.parent_path());
        if (const LSTATUS status = RegSaveKeyW(Key(), file.c_str(), nullptr); status != ERROR_SUCCESS)
            throw std::runtime_error("saving a hive: error " + std::to_string(status));
    }
};

class ScopedPreinstallation {
public:
    ScopedPreinstallation() {
        if (!std::filesystem::exists(L"D:\\") || !std::filesystem::exists(L"E:\\"))
            throw std::runtime_error("run with tests/support/second-drives.sh");
        RemoveInstallations();
    }
    ~ScopedPreinstallation() {
        EnableHivePrivileges();
        RegUnLoadKeyW(HKEY_LOCAL_MACHINE, L"OS_SOFTWARE");
        RegUnLoadKeyW(HKEY_LOCAL_MACHINE, L"OS_SYSTEM");
        RegUnLoadKeyW(HKEY_USERS, L"OS_DEFAULT");
        RemoveInstallations();
    }
    ScopedPreinstallation(const ScopedPreinstallation&) = delete;
    ScopedPreinstallation& operator=(const ScopedPreinstallation&) = delete;

    // "D:\Windows\System32" or the same on E, created when missing.
    static std::wstring SystemFolder(wchar_t drive) {
        std::wstring folder = std::wstring(1, drive) + L":\\Windows\\System32";
        std::filesystem::create_directories(folder);
        return folder;
    }
    // Saves the hive as the installed system's, `name` being SOFTWARE, SYSTEM and the like, and returns the file.
    static std::wstring Install(wchar_t drive, const wchar_t* name, const HiveBuilder& hive) {
        std::wstring file = SystemFolder(drive) + L"\\config\\" + name;
        hive.Save(file);
        return file;
    }

private:
    static void RemoveInstallations() {
        std::error_code ignored;
        for (const wchar_t* folder : {L"D:\\Windows", L"E:\\Windows"}) std::filesystem::remove_all(folder, ignored);
    }

    const ScopedRegistryKey m_mark{HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Windows NT\\CurrentVersion\\WinPE"};
};
