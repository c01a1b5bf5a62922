// Exceptions live on the heap, are thrown by pointer, and whoever catches one ends it:
//
//     try {
//         Work();
//     } catch (CException* problem) {
//         wchar_t text[200];
//         if (problem->GetErrorMessage(text, 200)) Show(text);
//         problem->Delete();
//     }
#pragma once

#include "framework/Object.h"

class AFX_API CException : public CObject {
    DECLARE_DYNAMIC(CException)

public:
    // With `autoDelete` FALSE, Delete leaves the object alone: its owner is whoever made it.
    explicit CException(BOOL autoDelete = TRUE) : m_bAutoDelete(autoDelete) {}

    void Delete();
    // Puts the text, cut to `maxChars` characters with its terminator, into `text`. FALSE and an empty text if there is
    // none. `helpContext`, if given, becomes 0 or the topic's number.
    virtual BOOL GetErrorMessage(LPWSTR text, UINT maxChars, PUINT helpContext = nullptr) const;

private:
    BOOL m_bAutoDelete;
};

// The exceptions that carry nothing but their kind.
class AFX_API CSimpleException : public CException {
    DECLARE_DYNAMIC(CSimpleException)

public:
    BOOL GetErrorMessage(LPWSTR text, UINT maxChars, PUINT helpContext = nullptr) const override;

protected:
    // A literal.
    explicit CSimpleException(LPCWSTR message) : m_message(message) {}

private:
    LPCWSTR m_message;
};

class AFX_API CMemoryException : public CSimpleException {
    DECLARE_DYNAMIC(CMemoryException)
public:
    CMemoryException() : CSimpleException(L"There is not enough memory.") {}
};

class AFX_API CNotSupportedException : public CSimpleException {
    DECLARE_DYNAMIC(CNotSupportedException)
public:
    CNotSupportedException() : CSimpleException(L"This operation is not supported.") {}
};

class AFX_API CResourceException : public CSimpleException {
    DECLARE_DYNAMIC(CResourceException)
public:
    CResourceException() : CSimpleException(L"A resource is missing.") {}
};

class AFX_API CInvalidArgException : public CSimpleException {
    DECLARE_DYNAMIC(CInvalidArgException)
public:
    CInvalidArgException() : CSimpleException(L"An argument is not valid.") {}
};

// Ends an operation after the user has been told why; it has no text of its own.
class AFX_API CUserException : public CException {
    DECLARE_DYNAMIC(CUserException)
};

[[noreturn]] AFX_API void AfxThrowMemoryException();
[[noreturn]] AFX_API void AfxThrowNotSupportedException();
[[noreturn]] AFX_API void AfxThrowResourceException();
[[noreturn]] AFX_API void AfxThrowUserException();
[[noreturn]] AFX_API void AfxThrowInvalidArgException();
