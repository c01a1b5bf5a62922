// What went wrong with a file: a cause of the framework's list and the system's own error.
#pragma once

#include "framework/CString.h"

class AFX_API CFileException : public CException {
    DECLARE_DYNAMIC(CFileException)

public:
    enum {
        none,
        genericException,
        fileNotFound,
        badPath,
        tooManyOpenFiles,
        accessDenied,
        invalidFile,
        removeCurrentDir,
        directoryFull,
        badSeek,
        hardIO,
        sharingViolation,
        lockViolation,
        diskFull,
        endOfFile
    };

    explicit CFileException(int cause = none, LONG osError = -1, LPCWSTR fileName = nullptr)
        : m_cause(cause), m_lOsError(osError), m_strFileName(fileName) {}

    int m_cause;
    LONG m_lOsError;  // a Win32 error; -1 if there is none
    CString m_strFileName;

    // The system's text of the error; FALSE if it has none.
    BOOL GetErrorMessage(LPWSTR text, UINT maxChars, PUINT helpContext = nullptr) const override;

    // The cause that stands for a Win32 error; genericException for most.
    static int OsErrorToException(LONG osError);
    [[noreturn]] static void ThrowOsError(LONG osError, LPCWSTR fileName = nullptr);
};

[[noreturn]] AFX_API void AfxThrowFileException(int cause, LONG osError = -1, LPCWSTR fileName = nullptr);
