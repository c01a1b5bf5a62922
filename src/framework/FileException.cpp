#include "framework/FileException.h"

IMPLEMENT_DYNAMIC(CFileException, CException)

BOOL CFileException::GetErrorMessage(LPWSTR text, UINT maxChars, PUINT helpContext) const {
    CException::GetErrorMessage(text, maxChars, helpContext);
    if (text == nullptr || maxChars == 0 || m_lOsError == -1) return FALSE;
    // The system writes all or nothing, so the text is cut here.
    LPWSTR message = nullptr;
    const DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    if (FormatMessageW(flags, nullptr, static_cast<DWORD>(m_lOsError), 0, reinterpret_cast<LPWSTR>(&message), 0,
                       nullptr) == 0) {
        return FALSE;
    }
    lstrcpynW(text, message, static_cast<int>(maxChars));
    LocalFree(message);
    return TRUE;
}

int CFileException::OsErrorToException(LONG osError) {
    switch (osError) {
        case ERROR_SUCCESS:
            return none;
        case ERROR_FILE_NOT_FOUND:
            return fileNotFound;
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_DRIVE:
        case ERROR_BAD_PATHNAME:
        case ERROR_INVALID_NAME:
        case ERROR_FILENAME_EXCED_RANGE:
        case ERROR_BAD_NETPATH:
        case ERROR_BAD_NET_NAME:
            return badPath;
        case ERROR_TOO_MANY_OPEN_FILES:
        case ERROR_NO_MORE_FILES:
            return tooManyOpenFiles;
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
        case ERROR_FILE_EXISTS:
        case ERROR_ALREADY_EXISTS:
            return accessDenied;
        case ERROR_INVALID_HANDLE:
            return invalidFile;
        case ERROR_CURRENT_DIRECTORY:
            return removeCurrentDir;
        case ERROR_CANNOT_MAKE:
            return directoryFull;
        case ERROR_SEEK:
        case ERROR_NEGATIVE_SEEK:
            return badSeek;
        case ERROR_CRC:
        case ERROR_NOT_READY:
        case ERROR_READ_FAULT:
        case ERROR_WRITE_FAULT:
        case ERROR_GEN_FAILURE:
            return hardIO;
        case ERROR_SHARING_VIOLATION:
            return sharingViolation;
        case ERROR_LOCK_VIOLATION:
            return lockViolation;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return diskFull;
        case ERROR_HANDLE_EOF:
            return endOfFile;
        default:
            return genericException;
    }
}

void CFileException::ThrowOsError(LONG osError, LPCWSTR fileName) {
    AfxThrowFileException(OsErrorToException(osError), osError, fileName);
}

void AfxThrowFileException(int cause, LONG osError, LPCWSTR fileName) {
    throw new CFileException(cause, osError, fileName);
}
