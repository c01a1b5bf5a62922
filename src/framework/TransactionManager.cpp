#include "framework/TransactionManager.h"

#include "framework/Exception.h"

namespace {

// Null when the system has no function of that name.
template <class Function>
Function FindIn(LPCWSTR library, const char* name) {
    const HMODULE module = GetModuleHandleW(library);
    if (!module) return nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

}  // namespace

CAtlTransactionManager::CAtlTransactionManager(BOOL fallback, BOOL autoCreateTransaction) : m_bFallback(fallback) {
    if (autoCreateTransaction) AfxThrowInvalidArgException();
}

CAtlTransactionManager::~CAtlTransactionManager() {
    if (m_hTransaction) CloseHandle(m_hTransaction);
}

HANDLE CAtlTransactionManager::FindFirstFile(LPCWSTR pattern, LPWIN32_FIND_DATAW data) {
    if (!m_hTransaction && m_bFallback) return ::FindFirstFileW(pattern, data);
    const auto find = FindIn<decltype(&::FindFirstFileTransactedW)>(L"kernel32.dll", "FindFirstFileTransactedW");
    if (!m_hTransaction || !find) {
        SetLastError(ERROR_INVALID_FUNCTION);
        return INVALID_HANDLE_VALUE;
    }
    return find(pattern, FindExInfoStandard, data, FindExSearchNameMatch, nullptr, 0, m_hTransaction);
}

LSTATUS CAtlTransactionManager::RegOpenKeyEx(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result) {
    if (!m_hTransaction) {
        return m_bFallback ? ::RegOpenKeyExW(key, subKey, options, access, result) : ERROR_INVALID_FUNCTION;
    }
    const auto open = FindIn<decltype(&::RegOpenKeyTransactedW)>(L"Advapi32.dll", "RegOpenKeyTransactedW");
    return open ? open(key, subKey, options, access, result, m_hTransaction, nullptr) : ERROR_INVALID_FUNCTION;
}

LSTATUS CAtlTransactionManager::RegCreateKeyEx(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR keyClass, DWORD options,
                                               REGSAM access, LPSECURITY_ATTRIBUTES securityAttributes, PHKEY result,
                                               LPDWORD disposition) {
    if (!m_hTransaction) {
        return m_bFallback ? ::RegCreateKeyExW(key, subKey, reserved, keyClass, options, access, securityAttributes,
                                               result, disposition)
                           : ERROR_INVALID_FUNCTION;
    }
    const auto create = FindIn<decltype(&::RegCreateKeyTransactedW)>(L"Advapi32.dll", "RegCreateKeyTransactedW");
    return create ? create(key, subKey, reserved, keyClass, options, access, securityAttributes, result, disposition,
                           m_hTransaction, nullptr)
                  : ERROR_INVALID_FUNCTION;
}

HANDLE CAtlTransactionManager::CreateFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                                          DWORD disposition, DWORD flags, HANDLE templateFile) {
    if (!m_hTransaction && m_bFallback) {
        return ::CreateFileW(path, access, share, security, disposition, flags, templateFile);
    }
    const auto create = FindIn<decltype(&::CreateFileTransactedW)>(L"kernel32.dll", "CreateFileTransactedW");
    if (!m_hTransaction || !create) {
        SetLastError(ERROR_INVALID_FUNCTION);
        return INVALID_HANDLE_VALUE;
    }
    return create(path, access, share, security, disposition, flags, templateFile, m_hTransaction, nullptr, nullptr);
}
