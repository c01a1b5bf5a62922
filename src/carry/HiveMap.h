// Where the keys of another user and of an installation on another drive lie while their hives are mounted.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "carry/KeyName.h"

struct OfflineMounts {
    std::wstring software;  // names below HKEY_LOCAL_MACHINE
    std::wstring system;
    std::uint32_t controlSet = 1;  // that CurrentControlSet stands for
};

struct HiveMap {
    std::wstring user;  // a name below HKEY_USERS that HKEY_CURRENT_USER stands for; empty: the user of the process
    std::optional<OfflineMounts> offline;
};

// The key where it lies. With offline mounts none for a key that the installation has not got: of its machine, only
// SOFTWARE, SYSTEM and HKEY_CLASSES_ROOT, which is SOFTWARE\Classes, and HKEY_CURRENT_USER when a user is given.
std::optional<KeyName> MapKey(const KeyName& key, const HiveMap& map);
