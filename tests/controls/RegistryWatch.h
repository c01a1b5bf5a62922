// Counts what this program's own code asks of the registry, and makes chosen calls fail, as long as the object lives.
// One at a time.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "support/ImportPatch.h"

class RegistryWatch {
public:
    RegistryWatch();
    ~RegistryWatch();
    RegistryWatch(const RegistryWatch&) = delete;
    RegistryWatch& operator=(const RegistryWatch&) = delete;

    struct Calls {
        std::vector<std::wstring> opened;  // the paths, also of keys that could not be opened
        int closed = 0;
        int subkeysAsked = 0;
        int valuesAsked = 0;
        int queried = 0;
    };
    // The calls since the last one of this.
    Calls Take();

    // Opening this path is denied from now on.
    void Deny(const std::wstring& path) { m_denied = path; }
    // The enumeration of subkeys fails at this index from now on, as at a name that is too long.
    void FailSubkeyAt(DWORD index) { m_failingSubkey = index; }

private:
    static LSTATUS WINAPI Open(HKEY root, LPCWSTR path, DWORD options, REGSAM access, PHKEY key);
    static LSTATUS WINAPI Close(HKEY key);
    static LSTATUS WINAPI EnumKey(HKEY key, DWORD index, LPWSTR name, LPDWORD length, LPDWORD reserved, LPWSTR type,
                                  LPDWORD typeLength, PFILETIME written);
    static LSTATUS WINAPI EnumValue(HKEY key, DWORD index, LPWSTR name, LPDWORD length, LPDWORD reserved, LPDWORD type,
                                    LPBYTE data, LPDWORD dataLength);
    static LSTATUS WINAPI QueryInfo(HKEY key, LPWSTR type, LPDWORD typeLength, LPDWORD reserved, LPDWORD subkeys,
                                    LPDWORD longestSubkey, LPDWORD longestType, LPDWORD values, LPDWORD longestName,
                                    LPDWORD longestData, LPDWORD descriptor, PFILETIME written);

    static RegistryWatch* s_watch;

    Calls m_calls;
    std::optional<std::wstring> m_denied;
    std::optional<DWORD> m_failingSubkey;
    ImportPatch<decltype(&RegOpenKeyExW)> m_open;
    ImportPatch<decltype(&RegCloseKey)> m_close;
    ImportPatch<decltype(&RegEnumKeyExW)> m_enumKey;
    ImportPatch<decltype(&RegEnumValueW)> m_enumValue;
    ImportPatch<decltype(&RegQueryInfoKeyW)> m_queryInfo;
};
