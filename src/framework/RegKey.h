// A registry key that closes itself. Every member that may fail returns a Win32 status and throws nothing:
//
//     CRegKey key;
//     if (key.Open(HKEY_CURRENT_USER, L"Software\\Example", KEY_READ) == ERROR_SUCCESS) {
//         WCHAR text[100];
//         ULONG chars = 100;
//         if (key.QueryStringValue(L"Name", text, &chars) == ERROR_SUCCESS) Use(text);
//     }
#pragma once

#include "framework/TransactionManager.h"

class AFX_API CRegKey {
public:
    // Calls go through the transaction manager, if one is given; its owner keeps it alive.
    explicit CRegKey(CAtlTransactionManager* transactions = nullptr) : m_pTM(transactions) {}
    ~CRegKey();
    CRegKey(const CRegKey&) = delete;
    CRegKey& operator=(const CRegKey&) = delete;

    operator HKEY() const { return m_hKey; }  // NOLINT(google-explicit-constructor)

    // On success both close the key that was open, and keep the view bits of `access` in m_samWOW64. On failure the key
    // that was open stays so.
    LONG Open(HKEY parent, LPCWSTR name, REGSAM access = KEY_READ | KEY_WRITE);
    LONG Create(HKEY parent, LPCWSTR name, LPWSTR keyClass = nullptr, DWORD options = REG_OPTION_NON_VOLATILE,
                REGSAM access = KEY_READ | KEY_WRITE, LPSECURITY_ATTRIBUTES securityAttributes = nullptr,
                LPDWORD disposition = nullptr);
    LONG Close();

    // Writes the characters and one terminator. ERROR_INVALID_DATA for a null text.
    LONG SetStringValue(LPCWSTR name, LPCWSTR value, DWORD type = REG_SZ);
    LONG SetDWORDValue(LPCWSTR name, DWORD value);
    LONG SetBinaryValue(LPCWSTR name, const void* value, ULONG bytes);
    // `chars` holds the size of the buffer, and receives that of the text, both with the terminator. A null buffer asks
    // for the size alone. ERROR_INVALID_DATA for a value that is no text or has no terminator, ERROR_MORE_DATA for a
    // buffer that is too small.
    LONG QueryStringValue(LPCWSTR name, LPWSTR value, ULONG* chars);

    HKEY m_hKey = nullptr;
    REGSAM m_samWOW64 = 0;
    CAtlTransactionManager* m_pTM;

private:
    void Adopt(HKEY key, REGSAM access);
};
