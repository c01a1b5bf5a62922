// Makes the machine look like a preinstallation boot: the key that tells it, an installed system on drive D or E, and
// offline hives mounted from files that the system saved. All of it goes away with the object, also what was mounted by
// others under the offline names.
//
// The prefix needs the second drives: WINE_RUN_PREPARE=tests/support/second-drives.sh scripts/wine-run ..., and in
// CMake the test's property ENVIRONMENT (see tests/registry). All members throw std::runtime_error on failure.
#pragma once

#include "support/ScopedRegistryKey.h"

// Enables SeBackupPrivilege and SeRestorePrivilege, which saving and mounting hives need, for the process.
void EnableHivePrivileges();

// A hive with given content. Paths of keys and values are relative to its root.
class HiveBuilder : public ScopedRegistryKey {
public:
    // Not volatile, unlike other keys of tests: the system leaves volatile keys out of a saved hive.
    HiveBuilder() : ScopedRegistryKey(HKEY_CURRENT_USER, REG_OPTION_NON_VOLATILE) {}

    // Writes the hive to a file, which must not exist.
    void Save(const std::wstring& file) const;
};

class ScopedPreinstallation {
public:
    ScopedPreinstallation();
    ~ScopedPreinstallation();
    ScopedPreinstallation(const ScopedPreinstallation&) = delete;
    ScopedPreinstallation& operator=(const ScopedPreinstallation&) = delete;

    // "D:\Windows\System32" or the same on E, created when missing.
    static std::wstring SystemFolder(wchar_t drive);
    // Saves the hive as the installed system's, `name` being SOFTWARE, SYSTEM and the like, and returns the file.
    static std::wstring Install(wchar_t drive, const wchar_t* name, const HiveBuilder& hive);
    // Mounts a hive file, under HKEY_LOCAL_MACHINE unless told otherwise.
    static void Mount(const wchar_t* name, const std::wstring& file, HKEY root = HKEY_LOCAL_MACHINE);
};
