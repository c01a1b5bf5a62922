// Full registry paths, which begin with the long name of a hive.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// The hives by the numbers of their predefined handles.
enum class RegistryHive : std::uint32_t {
    ClassesRoot = 0x80000000,
    CurrentUser = 0x80000001,
    LocalMachine = 0x80000002,
    Users = 0x80000003,
    CurrentConfig = 0x80000005,
};

struct HivePathParts {
    std::optional<RegistryHive> hive;  // none when the first part names no hive
    std::wstring_view subkey;          // a view into the path; empty for "HKEY_USERS\"
};

// The hive and what stands behind the first backslash. None when there is no backslash, or nothing before it. Only the
// five long names are hives, in any case; an unknown first part is not a failure.
std::optional<HivePathParts> SplitHivePath(std::wstring_view path);
