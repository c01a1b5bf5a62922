#include "registry/HivePath.h"

#include "helpers/AsciiCase.h"

namespace {

struct HiveName {
    std::wstring_view name;
    RegistryHive hive;
};

constexpr HiveName kHiveNames[] = {
    {L"HKEY_CLASSES_ROOT", RegistryHive::ClassesRoot},     {L"HKEY_CURRENT_USER", RegistryHive::CurrentUser},
    {L"HKEY_LOCAL_MACHINE", RegistryHive::LocalMachine},   {L"HKEY_USERS", RegistryHive::Users},
    {L"HKEY_CURRENT_CONFIG", RegistryHive::CurrentConfig},
};

}  // namespace

std::optional<HivePathParts> SplitHivePath(std::wstring_view path) {
    const auto backslash = path.find(L'\\');
    if (backslash == 0 || backslash == std::wstring_view::npos) return std::nullopt;
    HivePathParts parts{std::nullopt, path.substr(backslash + 1)};
    for (const HiveName& entry : kHiveNames) {
        if (EqualIgnoringAsciiCase(path.substr(0, backslash), entry.name)) parts.hive = entry.hive;
    }
    return parts;
}
