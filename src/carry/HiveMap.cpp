#include "carry/HiveMap.h"

#include <string_view>

#include "helpers/AsciiCase.h"

namespace {

constexpr std::wstring_view kClasses = L"Classes";
constexpr std::wstring_view kCurrentControlSet = L"CurrentControlSet";

// The first element of a path, and what follows its backslash.
struct Split {
    std::wstring_view first;
    std::wstring_view rest;
};

Split SplitFirst(std::wstring_view path) {
    const auto end = path.find(L'\\');
    return {path.substr(0, end), end == path.npos ? std::wstring_view() : path.substr(end + 1)};
}

std::wstring Join(std::wstring_view parent, std::wstring_view path) {
    std::wstring joined(parent);
    if (!path.empty()) joined.append(1, L'\\').append(path);
    return joined;
}

std::wstring ControlSet(std::uint32_t number) {
    std::wstring digits = std::to_wstring(number);
    if (digits.size() < 3) digits.insert(0, 3 - digits.size(), L'0');
    return L"ControlSet" + digits;
}

}  // namespace

std::optional<KeyName> MapKey(const KeyName& key, const HiveMap& map) {
    if (key.hive == RegistryHive::CurrentUser && !map.user.empty()) {
        return KeyName{RegistryHive::Users, Join(map.user, key.subkey)};
    }
    if (!map.offline) return key;
    const auto inMachine = [](std::wstring path) { return KeyName{RegistryHive::LocalMachine, std::move(path)}; };
    if (key.hive == RegistryHive::ClassesRoot) {
        return inMachine(Join(Join(map.offline->software, kClasses), key.subkey));
    }
    if (key.hive != RegistryHive::LocalMachine) return std::nullopt;
    const auto [hive, path] = SplitFirst(key.subkey);
    if (EqualIgnoringAsciiCase(hive, L"SOFTWARE")) return inMachine(Join(map.offline->software, path));
    if (!EqualIgnoringAsciiCase(hive, L"SYSTEM")) return std::nullopt;
    const auto [set, below] = SplitFirst(path);
    if (!EqualIgnoringAsciiCase(set, kCurrentControlSet)) return inMachine(Join(map.offline->system, path));
    return inMachine(Join(Join(map.offline->system, ControlSet(map.offline->controlSet)), below));
}
