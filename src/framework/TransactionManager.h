// Registry and file calls inside a kernel transaction. The transacted functions are looked up when they are called,
// because not every system has them.
#pragma once

#include "framework/Api.h"

class AFX_API CAtlTransactionManager {
public:
    // `fallback` lets the calls go on without a transaction while there is none. Nothing here starts a transaction:
    // CInvalidArgException when `autoCreateTransaction` asks for it.
    CAtlTransactionManager(BOOL fallback, BOOL autoCreateTransaction);
    // Closes the transaction's handle; what was not committed is undone by the system.
    virtual ~CAtlTransactionManager();
    CAtlTransactionManager(const CAtlTransactionManager&) = delete;
    CAtlTransactionManager& operator=(const CAtlTransactionManager&) = delete;

    // Null while there is no transaction. Stays the object's.
    HANDLE GetHandle() const { return m_hTransaction; }

    // FindFirstFileW within the transaction. INVALID_HANDLE_VALUE and ERROR_INVALID_FUNCTION where the system lacks the
    // transacted form, and where there is neither a transaction nor the fall-back.
    HANDLE FindFirstFile(LPCWSTR pattern, LPWIN32_FIND_DATAW data);

    // The registry functions of these names within the transaction. ERROR_INVALID_FUNCTION where the system lacks the
    // transacted form, and where there is neither a transaction nor the fall-back.
    LSTATUS RegOpenKeyEx(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result);
    LSTATUS RegCreateKeyEx(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR keyClass, DWORD options, REGSAM access,
                           LPSECURITY_ATTRIBUTES securityAttributes, PHKEY result, LPDWORD disposition);

    // CreateFileW within the transaction. INVALID_HANDLE_VALUE in the same cases; the last error is then the system's
    // own or ERROR_INVALID_FUNCTION.
    HANDLE CreateFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                      DWORD flags, HANDLE templateFile);

protected:
    HANDLE m_hTransaction = nullptr;
    BOOL m_bFallback;
};
