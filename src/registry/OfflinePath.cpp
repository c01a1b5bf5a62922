#include "registry/OfflinePath.h"

#include <cwchar>
#include <iterator>

#include "helpers/AsciiCase.h"

namespace {

constexpr std::uint32_t kView64 = 0x100;  // KEY_WOW64_64KEY
constexpr std::uint32_t kView32 = 0x200;  // KEY_WOW64_32KEY
constexpr std::wstring_view kOfflineSoftware = L"OS_SOFTWARE";
constexpr std::wstring_view kOfflineSoftware32 = L"OS_SOFTWARE\\Wow6432Node";
constexpr std::wstring_view kCurrentControlSet = L"currentcontrolset";

// The length counts for both names, so a bare "SYSTEM" still means the boot image's key, and nothing asks for a
// backslash behind the name: "SYSTEMATIC" is redirected.
bool IsRedirected(std::wstring_view path) {
    constexpr std::wstring_view kSoftware = L"SOFTWARE";
    if (path.size() < kSoftware.size()) return false;
    return StartsWithIgnoringAsciiCase(path, kSoftware) || StartsWithIgnoringAsciiCase(path, L"SYSTEM");
}

bool Wants32BitView(const std::wstring& path, std::uint32_t access, bool nativeViewOnly, OfflineFacts& facts) {
    if (nativeViewOnly || (access & kView64) != 0) return false;
    if ((access & kView32) != 0) return true;
    return !facts.KeyOpens(path);
}

// The boot image's CurrentControlSet link does not exist in a mounted hive. It is looked for in any path, not only in
// those of OS_SYSTEM, and only its first occurrence is replaced.
void NameControlSet(std::wstring& path, OfflineFacts& facts) {
    const auto at = FindIgnoringAsciiCase(path, kCurrentControlSet);
    if (at == std::wstring::npos) return;
    const auto number = facts.CurrentControlSet();
    if (!number) return;
    wchar_t name[32];
    std::swprintf(name, std::size(name), L"ControlSet%03u", static_cast<unsigned>(*number));
    path.replace(at, kCurrentControlSet.size(), name);
}

}  // namespace

std::wstring OfflinePath(std::wstring_view path, std::uint32_t access, bool nativeViewOnly, OfflineFacts& facts) {
    std::wstring result(path);
    if (!facts.IsPreinstallation() || !IsRedirected(path) || !facts.MountHives()) return result;
    result.insert(0, L"OS_");
    if (facts.IsTarget64Bit() && StartsWithIgnoringAsciiCase(result, kOfflineSoftware) &&
        Wants32BitView(result, access, nativeViewOnly, facts)) {
        result.replace(0, kOfflineSoftware.size(), kOfflineSoftware32);
    }
    NameControlSet(result, facts);
    return result;
}
