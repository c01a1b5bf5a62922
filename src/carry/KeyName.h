// Names of registry keys as rules and registry files write them: a hive, long or short, and the path below it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "registry/HivePath.h"

struct KeyName {
    RegistryHive hive{};
    std::wstring subkey;  // without backslashes at its ends or two in a row; empty for the hive itself

    bool operator==(const KeyName&) const = default;
};

// Takes "HKEY_CURRENT_USER\a\b" and "HKCU\a\b", in any letter case. Backslashes too many are left out, as the system
// does when it opens a key. None when the text does not begin with a hive.
std::optional<KeyName> ParseKeyName(std::wstring_view text);

// With the long name of the hive.
std::wstring FormatKeyName(const KeyName& key);

// Whether the key is the root of a hive: each of the five, and each key directly below HKEY_LOCAL_MACHINE and
// HKEY_USERS, since the system keeps those in files of their own.
bool IsWholeHive(const KeyName& key);
