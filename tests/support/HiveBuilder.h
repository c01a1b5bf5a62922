// Hive files with given content, saved by the system itself from a key that is removed afterwards.
#pragma once

#include <string>

#include "support/ScopedRegistryKey.h"

// The paths of the keys and values are relative to the root of the hive.
class HiveBuilder : public ScopedRegistryKey {
public:
    // Not volatile, unlike other keys of tests: the system leaves volatile keys out of a saved hive.
    HiveBuilder() : ScopedRegistryKey(HKEY_CURRENT_USER, REG_OPTION_NON_VOLATILE) {}

    // Writes the hive to a file, which must not exist. Throws std::runtime_error on failure.
    void Save(const std::wstring& file) const;
};

// Enables SeBackupPrivilege and SeRestorePrivilege, which saving and mounting hives need, for the process.
void EnableHivePrivileges();
