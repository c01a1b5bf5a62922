#include "framework/Exception.h"

#include <cwchar>

IMPLEMENT_DYNAMIC(CException, CObject)
IMPLEMENT_DYNAMIC(CMemoryException, CException)
IMPLEMENT_DYNAMIC(CNotSupportedException, CException)
IMPLEMENT_DYNAMIC(CResourceException, CException)
IMPLEMENT_DYNAMIC(CUserException, CException)
IMPLEMENT_DYNAMIC(CInvalidArgException, CException)

namespace {

BOOL Answer(const wchar_t* message, LPWSTR text, UINT maxChars, PUINT helpContext) {
    if (helpContext != nullptr) *helpContext = 0;
    if (text == nullptr || maxChars == 0) return FALSE;
    wcsncpy(text, message, maxChars - 1);
    text[maxChars - 1] = L'\0';
    return TRUE;
}

}  // namespace

void CException::Delete() {
    if (m_bAutoDelete) delete this;
}

BOOL CException::GetErrorMessage(LPWSTR text, UINT maxChars, PUINT helpContext) const {
    Answer(L"", text, maxChars, helpContext);
    return FALSE;
}

BOOL CMemoryException::GetErrorMessage(LPWSTR text, UINT maxChars, PUINT helpContext) const {
    return Answer(L"There is not enough memory.", text, maxChars, helpContext);
}

BOOL CNotSupportedException::GetErrorMessage(LPWSTR text, UINT maxChars, PUINT helpContext) const {
    return Answer(L"This operation is not supported.", text, maxChars, helpContext);
}

BOOL CResourceException::GetErrorMessage(LPWSTR text, UINT maxChars, PUINT helpContext) const {
    return Answer(L"A resource is missing.", text, maxChars, helpContext);
}

BOOL CInvalidArgException::GetErrorMessage(LPWSTR text, UINT maxChars, PUINT helpContext) const {
    return Answer(L"An argument is not valid.", text, maxChars, helpContext);
}

void AfxThrowMemoryException() {
    throw new CMemoryException;
}

void AfxThrowNotSupportedException() {
    throw new CNotSupportedException;
}

void AfxThrowResourceException() {
    throw new CResourceException;
}

void AfxThrowUserException() {
    throw new CUserException;
}

void AfxThrowInvalidArgException() {
    throw new CInvalidArgException;
}
