// Walking a tree of 20,000 keys and reading a text from each, by the toolkit and by the bare calls.
#include <string>
#include <vector>

#include "registry/RegistryHelper.h"
#include "support/Ratios.h"

namespace {

constexpr LPCWSTR kTree = L"Software\\registry-bench";
constexpr int kBranches = 100;
constexpr int kLeaves = 199;
constexpr size_t kKeys = kBranches * (kLeaves + 1);

// What a walk has seen; both ways must agree.
struct Seen {
    size_t keys = 0;
    size_t chars = 0;
    bool operator==(const Seen&) const = default;
};

void AddKey(const std::wstring& path) {
    HKEY key = nullptr;
    Require(RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_WRITE, nullptr, &key,
                            nullptr) == ERROR_SUCCESS);
    const std::wstring text = L"text of " + path;
    RegSetValueExW(key, L"Name", 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                   static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR)));
    RegCloseKey(key);
}

void BuildTree() {
    AddKey(kTree);
    for (int branch = 0; branch < kBranches; ++branch) {
        const std::wstring path = std::wstring(kTree) + L"\\branch " + std::to_wstring(branch);
        AddKey(path);
        for (int leaf = 0; leaf < kLeaves; ++leaf) AddKey(path + L"\\leaf " + std::to_wstring(leaf));
    }
}

void WalkOurs(const CRegistryHelper& key, Seen& seen) {
    seen.chars += static_cast<size_t>(key.GetStringValue(L"Name").GetLength());
    CStringList names;
    key.EnumSubKeys(names);
    for (POSITION place = names.GetHeadPosition(); place;) {
        CRegistryHelper child;
        Require(child.Open(key, names.GetNext(place), KEY_READ) == ERROR_SUCCESS);
        ++seen.keys;
        WalkOurs(child, seen);
    }
}

// A value's size is not known, so this way asks for it, too.
std::wstring ReadBare(HKEY key) {
    DWORD bytes = 0;
    DWORD type = 0;
    Require(RegQueryValueExW(key, L"Name", nullptr, &type, nullptr, &bytes) == ERROR_SUCCESS);
    std::wstring text(bytes / sizeof(WCHAR), L'\0');
    Require(RegQueryValueExW(key, L"Name", nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &bytes) ==
            ERROR_SUCCESS);
    return text;
}

std::vector<std::wstring> NamesBare(HKEY key) {
    DWORD count = 0;
    DWORD longest = 0;
    Require(RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &count, &longest, nullptr, nullptr, nullptr, nullptr,
                             nullptr, nullptr) == ERROR_SUCCESS);
    std::vector<std::wstring> names;
    std::wstring name(longest + 1, L'\0');
    for (DWORD index = 0; index < count; ++index) {
        DWORD length = longest + 1;
        if (RegEnumKeyExW(key, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS) {
            names.emplace_back(name, 0, length);
        }
    }
    return names;
}

void WalkBare(HKEY key, Seen& seen) {
    seen.chars += ReadBare(key).size() - 1;
    for (const std::wstring& name : NamesBare(key)) {
        HKEY child = nullptr;
        Require(RegOpenKeyExW(key, name.c_str(), 0, KEY_READ, &child) == ERROR_SUCCESS);
        ++seen.keys;
        WalkBare(child, seen);
        RegCloseKey(child);
    }
}

}  // namespace

int wmain() {
    BuildTree();
    Seen ours;
    Seen bare;
    Ratios ratios;
    ratios.Compare("walking 20,000 keys, one text each", 1.15, Timed([&ours] {
                       ours = {};
                       WalkOurs(CRegistryHelper(HKEY_CURRENT_USER, kTree, KEY_READ), ours);
                   }),
                   Timed([&bare] {
                       bare = {};
                       HKEY root = nullptr;
                       Require(RegOpenKeyExW(HKEY_CURRENT_USER, kTree, 0, KEY_READ, &root) == ERROR_SUCCESS);
                       WalkBare(root, bare);
                       RegCloseKey(root);
                   }));
    Require(ours == bare && ours.keys == kKeys);
    RegDeleteTreeW(HKEY_CURRENT_USER, kTree);
    ratios.Print();
    return 0;
}
