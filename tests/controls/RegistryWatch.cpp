#include "controls/RegistryWatch.h"

#include <gtest/gtest.h>
#include <utility>

RegistryWatch* RegistryWatch::s_watch = nullptr;

RegistryWatch::RegistryWatch()
    : m_open(GetModuleHandleW(nullptr), "RegOpenKeyExW", Open),
      m_close(GetModuleHandleW(nullptr), "RegCloseKey", Close),
      m_enumKey(GetModuleHandleW(nullptr), "RegEnumKeyExW", EnumKey),
      m_enumValue(GetModuleHandleW(nullptr), "RegEnumValueW", EnumValue),
      m_queryInfo(GetModuleHandleW(nullptr), "RegQueryInfoKeyW", QueryInfo) {
    s_watch = this;
}

RegistryWatch::~RegistryWatch() {
    s_watch = nullptr;
}

RegistryWatch::Calls RegistryWatch::Take() {
    return std::exchange(m_calls, {});
}

LSTATUS WINAPI RegistryWatch::Open(HKEY root, LPCWSTR path, DWORD options, REGSAM access, PHKEY key) {
    EXPECT_EQ(options, 0u);
    EXPECT_EQ(access, static_cast<REGSAM>(0x20019));
    s_watch->m_calls.opened.emplace_back(path);
    return s_watch->m_denied == path ? ERROR_ACCESS_DENIED
                                     : s_watch->m_open.Original()(root, path, options, access, key);
}

LSTATUS WINAPI RegistryWatch::Close(HKEY key) {
    ++s_watch->m_calls.closed;
    return s_watch->m_close.Original()(key);
}

LSTATUS WINAPI RegistryWatch::EnumKey(HKEY key, DWORD index, LPWSTR name, LPDWORD length, LPDWORD reserved, LPWSTR type,
                                      LPDWORD typeLength, PFILETIME written) {
    EXPECT_EQ(*length, 1024u);
    ++s_watch->m_calls.subkeysAsked;
    return s_watch->m_failingSubkey == index
               ? ERROR_MORE_DATA
               : s_watch->m_enumKey.Original()(key, index, name, length, reserved, type, typeLength, written);
}

LSTATUS WINAPI RegistryWatch::EnumValue(HKEY key, DWORD index, LPWSTR name, LPDWORD length, LPDWORD reserved,
                                        LPDWORD type, LPBYTE data, LPDWORD dataLength) {
    EXPECT_EQ(data, nullptr) << "the tree shows no data";
    ++s_watch->m_calls.valuesAsked;
    return s_watch->m_enumValue.Original()(key, index, name, length, reserved, type, data, dataLength);
}

LSTATUS WINAPI RegistryWatch::QueryInfo(HKEY key, LPWSTR type, LPDWORD typeLength, LPDWORD reserved, LPDWORD subkeys,
                                        LPDWORD longestSubkey, LPDWORD longestType, LPDWORD values, LPDWORD longestName,
                                        LPDWORD longestData, LPDWORD descriptor, PFILETIME written) {
    ++s_watch->m_calls.queried;
    return s_watch->m_queryInfo.Original()(key, type, typeLength, reserved, subkeys, longestSubkey, longestType, values,
                                           longestName, longestData, descriptor, written);
}
