#include "framework/RegKey.h"

#include <cwchar>

CRegKey::~CRegKey() {
    Close();
}

LONG CRegKey::Open(HKEY parent, LPCWSTR name, REGSAM access) {
    HKEY key = nullptr;
    const LONG status =
        m_pTM ? m_pTM->RegOpenKeyEx(parent, name, 0, access, &key) : ::RegOpenKeyExW(parent, name, 0, access, &key);
    if (status == ERROR_SUCCESS) Adopt(key, access);
    return status;
}

LONG CRegKey::Create(HKEY parent, LPCWSTR name, LPWSTR keyClass, DWORD options, REGSAM access,
                     LPSECURITY_ATTRIBUTES securityAttributes, LPDWORD disposition) {
    HKEY key = nullptr;
    const LONG status =
        m_pTM ? m_pTM->RegCreateKeyEx(parent, name, 0, keyClass, options, access, securityAttributes, &key, disposition)
              : ::RegCreateKeyExW(parent, name, 0, keyClass, options, access, securityAttributes, &key, disposition);
    if (status == ERROR_SUCCESS) Adopt(key, access);
    return status;
}

LONG CRegKey::Close() {
    LONG status = ERROR_SUCCESS;
    if (m_hKey) status = ::RegCloseKey(m_hKey);
    m_hKey = nullptr;
    m_samWOW64 = 0;
    return status;
}

LONG CRegKey::SetStringValue(LPCWSTR name, LPCWSTR value, DWORD type) {
    if (!value) return ERROR_INVALID_DATA;
    const size_t bytes = (std::wcslen(value) + 1) * sizeof(WCHAR);
    if (bytes > MAXDWORD) return ERROR_INVALID_DATA;
    return ::RegSetValueExW(m_hKey, name, 0, type, reinterpret_cast<const BYTE*>(value), static_cast<DWORD>(bytes));
}

LONG CRegKey::SetDWORDValue(LPCWSTR name, DWORD value) {
    return ::RegSetValueExW(m_hKey, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof(value));
}

LONG CRegKey::SetBinaryValue(LPCWSTR name, const void* value, ULONG bytes) {
    return ::RegSetValueExW(m_hKey, name, 0, REG_BINARY, static_cast<const BYTE*>(value), bytes);
}

LONG CRegKey::QueryStringValue(LPCWSTR name, LPWSTR value, ULONG* chars) {
    const ULONG capacity = *chars;
    DWORD bytes = capacity > MAXDWORD / sizeof(WCHAR) ? MAXDWORD : capacity * static_cast<DWORD>(sizeof(WCHAR));
    *chars = 0;
    DWORD type = REG_NONE;
    const LONG status = ::RegQueryValueExW(m_hKey, name, nullptr, &type, reinterpret_cast<BYTE*>(value), &bytes);
    if (status != ERROR_SUCCESS) return status;
    if (type != REG_SZ && type != REG_EXPAND_SZ) return ERROR_INVALID_DATA;
    const DWORD units = bytes / static_cast<DWORD>(sizeof(WCHAR));
    if (value) {
        const bool terminated = units != 0 && bytes % sizeof(WCHAR) == 0 && value[units - 1] == L'\0';
        if (!terminated && capacity != 0) value[0] = L'\0';
        if (!terminated && bytes != 0) return ERROR_INVALID_DATA;
    }
    *chars = units;
    return ERROR_SUCCESS;
}

void CRegKey::Adopt(HKEY key, REGSAM access) {
    Close();
    m_hKey = key;
    m_samWOW64 = access & (KEY_WOW64_32KEY | KEY_WOW64_64KEY);
}
