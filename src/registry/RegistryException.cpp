#include "registry/RegistryException.h"

#include <algorithm>
#include <iterator>

IMPLEMENT_DYNAMIC(CRegistryException, CException)

CRegistryException::CRegistryException(const CRegistryException& other) : CException(), m_status(other.m_status) {
    ThrowRegistryException(ERROR_INVALID_OPERATION);
}

CRegistryException& CRegistryException::operator=(const CRegistryException&) {
    ThrowRegistryException(ERROR_INVALID_OPERATION);
}

BOOL CRegistryException::GetErrorMessage(LPWSTR buffer, UINT maxChars, PUINT) const {
    std::fill_n(buffer, maxChars, L'\0');
    return FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, m_status, 0, buffer, maxChars, nullptr) != 0;
}

void ThrowRegistryException(DWORD status) {
    throw new CRegistryException(status);
}

void CheckRegistryStatus(LONG status) {
    if (status != ERROR_SUCCESS) ThrowRegistryException(static_cast<DWORD>(status));
}

CString FormatRegistryError(const CRegistryException& problem) {
    WCHAR text[260];
    CString result;
    if (problem.GetErrorMessage(text, static_cast<UINT>(std::size(text)))) {
        result.Format(L"[0x%x] %s", problem.GetStatus(), text);
    }
    return result;
}
