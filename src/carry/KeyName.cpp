#include "carry/KeyName.h"

#include <algorithm>
#include <array>

#include "helpers/AsciiCase.h"

namespace {

struct HiveNames {
    RegistryHive hive;
    std::wstring_view full;
    std::wstring_view abbreviation;
};

constexpr std::array<HiveNames, 5> kHives{{
    {RegistryHive::ClassesRoot, L"HKEY_CLASSES_ROOT", L"HKCR"},
    {RegistryHive::CurrentUser, L"HKEY_CURRENT_USER", L"HKCU"},
    {RegistryHive::LocalMachine, L"HKEY_LOCAL_MACHINE", L"HKLM"},
    {RegistryHive::Users, L"HKEY_USERS", L"HKU"},
    {RegistryHive::CurrentConfig, L"HKEY_CURRENT_CONFIG", L"HKCC"},
}};

constexpr wchar_t kBackslash = L'\\';

// The elements of the path with one backslash between them.
std::wstring Tidy(std::wstring_view path) {
    std::wstring tidy;
    tidy.reserve(path.size());
    for (const wchar_t c : path) {
        if (c != kBackslash || (!tidy.empty() && tidy.back() != kBackslash)) tidy += c;
    }
    if (!tidy.empty() && tidy.back() == kBackslash) tidy.pop_back();
    return tidy;
}

}  // namespace

std::optional<KeyName> ParseKeyName(std::wstring_view text) {
    const std::size_t end = std::min(text.find(kBackslash), text.size());
    const std::wstring_view name = text.substr(0, end);
    for (const HiveNames& hive : kHives) {
        if (EqualIgnoringAsciiCase(name, hive.full) || EqualIgnoringAsciiCase(name, hive.abbreviation)) {
            return KeyName{hive.hive, Tidy(text.substr(end))};
        }
    }
    return std::nullopt;
}

std::wstring FormatKeyName(const KeyName& key) {
    std::wstring text(std::ranges::find(kHives, key.hive, &HiveNames::hive)->full);
    if (!key.subkey.empty()) text.append(1, kBackslash).append(key.subkey);
    return text;
}

bool IsWholeHive(const KeyName& key) {
    if (key.subkey.empty()) return true;
    const bool holdsHives = key.hive == RegistryHive::LocalMachine || key.hive == RegistryHive::Users;
    return holdsHives && key.subkey.find(kBackslash) == key.subkey.npos;
}
