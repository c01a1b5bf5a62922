#include "framework/File.h"

#include "framework/TransactionManager.h"

IMPLEMENT_DYNAMIC(CFile, CObject)

const HANDLE CFile::hFileNull = INVALID_HANDLE_VALUE;

namespace {

constexpr UINT kAccessMask = 0x3;
constexpr UINT kShareMask = 0x70;

DWORD AccessOf(UINT flags) {
    switch (flags & kAccessMask) {
        case CFile::modeWrite:
            return GENERIC_WRITE;
        case CFile::modeReadWrite:
            return GENERIC_READ | GENERIC_WRITE;
        default:
            return GENERIC_READ;
    }
}

DWORD ShareOf(UINT flags) {
    switch (flags & kShareMask) {
        case CFile::shareDenyWrite:
            return FILE_SHARE_READ;
        case CFile::shareDenyRead:
            return FILE_SHARE_WRITE;
        case CFile::shareDenyNone:
            return FILE_SHARE_READ | FILE_SHARE_WRITE;
        default:
            return 0;
    }
}

DWORD DispositionOf(UINT flags) {
    if ((flags & CFile::modeCreate) == 0) return OPEN_EXISTING;
    return (flags & CFile::modeNoTruncate) != 0 ? OPEN_ALWAYS : CREATE_ALWAYS;
}

DWORD AttributesOf(UINT flags) {
    DWORD attributes = FILE_ATTRIBUTE_NORMAL;
    if ((flags & CFile::osNoBuffer) != 0) attributes |= FILE_FLAG_NO_BUFFERING;
    if ((flags & CFile::osWriteThrough) != 0) attributes |= FILE_FLAG_WRITE_THROUGH;
    if ((flags & CFile::osRandomAccess) != 0) attributes |= FILE_FLAG_RANDOM_ACCESS;
    if ((flags & CFile::osSequentialScan) != 0) attributes |= FILE_FLAG_SEQUENTIAL_SCAN;
    return attributes;
}

}  // namespace

CFile::CFile(LPCWSTR fileName, UINT openFlags) {
    CFileException problem;
    if (!CFile::Open(fileName, openFlags, &problem)) {
        AfxThrowFileException(problem.m_cause, problem.m_lOsError, problem.m_strFileName);
    }
}

CFile::~CFile() {
    if (m_hFile != hFileNull && m_bCloseOnDelete) CloseHandle(m_hFile);
}

BOOL CFile::Open(LPCWSTR fileName, UINT openFlags, CFileException* problem) {
    CFile::Close();
    SECURITY_ATTRIBUTES security{sizeof(security), nullptr, (openFlags & modeNoInherit) == 0};
    const DWORD access = AccessOf(openFlags);
    const DWORD share = ShareOf(openFlags);
    const DWORD disposition = DispositionOf(openFlags);
    const DWORD attributes = AttributesOf(openFlags);
    const HANDLE file = m_pTM != nullptr
                            ? m_pTM->CreateFile(fileName, access, share, &security, disposition, attributes, nullptr)
                            : CreateFileW(fileName, access, share, &security, disposition, attributes, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        const LONG error = static_cast<LONG>(GetLastError());
        if (problem != nullptr) {
            problem->m_lOsError = error;
            problem->m_cause = CFileException::OsErrorToException(error);
            problem->m_strFileName = fileName;
        }
        return FALSE;
    }
    m_hFile = file;
    m_bCloseOnDelete = TRUE;
    m_strFileName = fileName;
    return TRUE;
}

UINT CFile::Read(void* buffer, UINT count) {
    DWORD done = 0;
    if (count != 0 && !ReadFile(m_hFile, buffer, count, &done, nullptr)) ThrowLastError();
    return done;
}

void CFile::Write(const void* buffer, UINT count) {
    DWORD done = 0;
    if (count != 0 && !WriteFile(m_hFile, buffer, count, &done, nullptr)) ThrowLastError();
    if (done != count) AfxThrowFileException(CFileException::diskFull, -1, m_strFileName);
}

ULONGLONG CFile::Seek(LONGLONG offset, UINT from) {
    LARGE_INTEGER distance;
    distance.QuadPart = offset;
    LARGE_INTEGER position;
    if (!SetFilePointerEx(m_hFile, distance, &position, from)) ThrowLastError();
    return static_cast<ULONGLONG>(position.QuadPart);
}

ULONGLONG CFile::GetPosition() const {
    LARGE_INTEGER position;
    if (!SetFilePointerEx(m_hFile, LARGE_INTEGER{}, &position, FILE_CURRENT)) ThrowLastError();
    return static_cast<ULONGLONG>(position.QuadPart);
}

ULONGLONG CFile::GetLength() const {
    LARGE_INTEGER length;
    if (!GetFileSizeEx(m_hFile, &length)) ThrowLastError();
    return static_cast<ULONGLONG>(length.QuadPart);
}

void CFile::Close() {
    const HANDLE file = std::exchange(m_hFile, hFileNull);
    m_bCloseOnDelete = FALSE;
    const CString name = std::exchange(m_strFileName, CString());
    if (file != hFileNull && !CloseHandle(file)) {
        CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), name);
    }
}

void CFile::ThrowLastError() const {
    CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), m_strFileName);
}
