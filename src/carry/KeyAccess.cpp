#include "carry/KeyAccess.h"

#include <winternl.h>

#include "helpers/AsciiCase.h"

extern "C" NTSTATUS NTAPI NtDeleteKey(HANDLE key);

namespace {

constexpr DWORD kLongestKeyName = 255;

LONG RemoveBelow(HKEY key);

// Through a handle, because RegDeleteKeyW takes a link for its target.
LONG Remove(HKEY parent, const std::wstring& path) {
    UniqueKey key;
    const LONG status = OpenKey(parent, path, DELETE | KEY_READ, LinkMode::Open, key);
    if (status != ERROR_SUCCESS) return status;
    const LONG below = RemoveBelow(key.get());
    return below == ERROR_SUCCESS ? static_cast<LONG>(RtlNtStatusToDosError(NtDeleteKey(key.get()))) : below;
}

LONG RemoveBelow(HKEY key) {
    for (;;) {
        std::wstring name(kLongestKeyName + 1, L'\0');
        DWORD length = kLongestKeyName + 1;
        LONG status = RegEnumKeyExW(key, 0, name.data(), &length, nullptr, nullptr, nullptr, nullptr);
        if (status == ERROR_NO_MORE_ITEMS) return ERROR_SUCCESS;
        if (status != ERROR_SUCCESS) return status;
        name.resize(length);
        status = Remove(key, name);
        if (status != ERROR_SUCCESS) return status;
    }
}

}  // namespace

bool IsLinkValue(std::wstring_view name, DWORD type) {
    return type == REG_LINK && EqualIgnoringAsciiCase(name, L"SymbolicLinkValue");
}

LONG OpenKey(HKEY parent, const std::wstring& path, REGSAM access, LinkMode mode, UniqueKey& key) {
    HKEY opened = nullptr;
    const LONG status = RegOpenKeyExW(parent, path.c_str(), mode == LinkMode::Open ? REG_OPTION_OPEN_LINK : 0,
                                      access | KEY_WOW64_64KEY, &opened);
    if (status == ERROR_SUCCESS) key.reset(opened);
    return status;
}

LONG CreateKey(const KeyPlace& place, LinkMode mode, UniqueKey& key) {
    constexpr REGSAM kAccess = KEY_SET_VALUE | KEY_QUERY_VALUE;
    if (mode == LinkMode::Open) {
        const LONG status = OpenKey(place.root, place.path, kAccess, mode, key);
        if (status != ERROR_FILE_NOT_FOUND) return status;
    }
    HKEY created = nullptr;
    const bool isLink = mode == LinkMode::Open;
    const LONG status = RegCreateKeyExW(
        place.root, place.path.c_str(), 0, nullptr, isLink ? REG_OPTION_CREATE_LINK : REG_OPTION_NON_VOLATILE,
        kAccess | (isLink ? KEY_CREATE_LINK : 0) | KEY_WOW64_64KEY, nullptr, &created, nullptr);
    if (status == ERROR_SUCCESS) key.reset(created);
    return status;
}

LONG RemoveBranch(const KeyPlace& place) {
    const LONG status = Remove(place.root, place.path);
    return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

std::wstring FoldKeyCase(std::wstring_view text) {
    std::wstring folded(text);
    CharUpperBuffW(folded.data(), static_cast<DWORD>(folded.size()));
    return folded;
}
