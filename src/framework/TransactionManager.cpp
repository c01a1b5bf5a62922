#include "framework/TransactionManager.h"

#include "framework/Exception.h"

namespace {

// Null when the system has no function of that name.
template <class Function>
Function FindInAdvapi(const char* name) {
    const HMODULE module = GetModuleHandleW(L"Advapi32.dll");
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

LSTATUS CAtlTransactionManager::RegOpenKeyEx(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result) {
    if (!m_hTransaction) {
        return m_bFallback ? ::RegOpenKeyExW(key, subKey, options, access, result) : ERROR_INVALID_FUNCTION;
    }
    const auto open = FindInAdvapi<decltype(&::RegOpenKeyTransactedW)>("RegOpenKeyTransactedW");
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
    const auto create = FindInAdvapi<decltype(&::RegCreateKeyTransactedW)>("RegCreateKeyTransactedW");
    return create ? create(key, subKey, reserved, keyClass, options, access, securityAttributes, result, disposition,
                           m_hTransaction, nullptr)
                  : ERROR_INVALID_FUNCTION;
}
