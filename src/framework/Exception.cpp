#include "framework/Exception.h"

#include <cwchar>

IMPLEMENT_DYNAMIC(CException, CObject)
IMPLEMENT_DYNAMIC(CSimpleException, CException)
IMPLEMENT_DYNAMIC(CMemoryException, CSimpleException)
IMPLEMENT_DYNAMIC(CNotSupportedException, CSimpleException)
IMPLEMENT_DYNAMIC(CResourceException, CSimpleException)
IMPLEMENT_DYNAMIC(CInvalidArgException, CSimpleException)
IMPLEMENT_DYNAMIC(CUserException, CException)

void CException::Delete() {
    if (m_bAutoDelete) delete this;
}

BOOL CException::GetErrorMessage(LPWSTR text, UINT maxChars, PUINT helpContext) const {
    if (helpContext != nullptr) *helpContext = 0;
    if (text != nullptr && maxChars != 0) text[0] = L'\0';
    return FALSE;
}

BOOL CSimpleException::GetErrorMessage(LPWSTR text, UINT maxChars, PUINT helpContext) const {
    CException::GetErrorMessage(text, maxChars, helpContext);
    if (text == nullptr || maxChars == 0) return FALSE;
    wcsncpy(text, m_message, maxChars - 1);
    text[maxChars - 1] = L'\0';
    return TRUE;
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
