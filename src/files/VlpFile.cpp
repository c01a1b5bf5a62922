#include "files/VlpFile.h"

#include <algorithm>
#include <atlbase.h>
#include <cstdlib>
#include <memory>

#include "files/FileSession.h"
#include "files/LongPathFile.h"
#include "files/WriteRate.h"
#include "siblings/coresv/LogMethodEntryExit.h"

IMPLEMENT_DYNAMIC(CVlpFile, CFile)

namespace {

BOOL FailOpening(LPCWSTR name, CFileException* problem) {
    const LONG error = static_cast<LONG>(GetLastError());
    if (problem != nullptr) {
        problem->m_lOsError = error;
        problem->m_cause = CFileException::OsErrorToException(error);
        problem->m_strFileName = name;
    }
    return FALSE;
}

}  // namespace

CVlpFile::CVlpFile(const CString& name) {
    const CLogMethodEntryExit log(L"CVlpFile ctor");
    CFileException problem;
    const bool isOpen = !LongPath::IsRefused(name)
                            ? CVlpFile::Open(name.GetString(), modeRead | shareDenyWrite, &problem) != FALSE
                            : FailOpening(name, &problem) != FALSE;
    if (!isOpen) {
        Logger().LogWarningMessageFormat(L"File open failure - File:'%s'(%d:%d)", problem.m_strFileName.GetString(),
                                         problem.m_lOsError, problem.m_cause);
        AfxThrowFileException(problem.m_cause, problem.m_lOsError, problem.m_strFileName);
    }
}

BOOL CVlpFile::Open(LPCWSTR name, UINT flags, CFileException* problem) {
    if (m_session != nullptr) {
        m_hFile = m_session->OpenDataFile(name);
        m_position = 0;
        return IsOpen();
    }
    // An earlier handle is left alone: it may be somebody else's, put into m_hFile.
    m_hFile = hFileNull;
    m_bCloseOnDelete = FALSE;
    m_strFileName = name;
    const HANDLE file = OpenLocal(flags);
    if (file == INVALID_HANDLE_VALUE) return FailOpening(name, problem);
    m_hFile = file;
    m_bCloseOnDelete = TRUE;
    return TRUE;
}

BOOL CVlpFile::Open(const CString& name, UINT flags, CFileException* problem) {
    return LongPath::IsRefused(name) ? FailOpening(name, problem) : Open(name.GetString(), flags, problem);
}

UINT CVlpFile::Read(void* buffer, UINT count) {
    if (m_useMemoryBuffer) return m_memoryBuffer.Read(buffer, count);
    if (m_session == nullptr) return CFile::Read(buffer, count);
    m_position += count;
    return m_session->ReadData(m_hFile, buffer, count);
}

ULONGLONG CVlpFile::Seek(LONGLONG offset, UINT from) {
    return m_useMemoryBuffer ? m_memoryBuffer.Seek(offset, from) : SeekFile(offset, from);
}

ULONGLONG CVlpFile::SeekFile(LONGLONG offset, UINT from) {
    if (m_session == nullptr) return CFile::Seek(offset, from);
    m_position = static_cast<ULONGLONG>(m_session->SeekData(m_hFile, offset, from));
    return m_position;
}

ULONGLONG CVlpFile::GetPosition() const {
    if (m_useMemoryBuffer) return m_memoryBuffer.GetPosition();
    return m_session != nullptr ? m_position : CFile::GetPosition();
}

ULONGLONG CVlpFile::GetLength() const {
    if (m_useMemoryBuffer) return m_memoryBuffer.GetLength();
    if (m_session != nullptr) AfxThrowFileException(CFileException::none, -1, m_strFileName);
    return CFile::GetLength();
}

bool CVlpFile::IsEmpty() const {
    // Opening in a session makes the file anew, so only a local one can hold anything that its buffer does not.
    return GetLength() == 0 && (!m_useMemoryBuffer || m_session != nullptr || CFile::GetLength() == 0);
}

void CVlpFile::Write(const void* buffer, UINT count) {
    if (m_useMemoryBuffer) {
        m_memoryBuffer.Write(buffer, count);
    } else if (IsWriteRateLimited()) {
        WriteLimited(buffer, count);
    } else {
        WriteUnlimited(buffer, count);
    }
}

void CVlpFile::WriteUnlimited(const void* buffer, UINT count) {
    if (m_session == nullptr) {
        CFile::Write(buffer, count);
    } else if (count != 0) {
        m_session->WriteData(m_hFile, buffer, count);
        m_position += count;
    }
}

void CVlpFile::WriteLimited(const void* buffer, UINT count) {
    const auto* next = static_cast<const BYTE*>(buffer);
    DWORD remaining = count;
    DWORD grant = 0;
    while (AcquireWriteQuota(remaining, grant)) {
        // The limit is one for disks. The handle of a session means nothing here, so the system refuses it.
        CFile::Write(next, grant);
        next += grant;
    }
}

void CVlpFile::Close() {
    if (m_useMemoryBuffer) WriteMemoryBuffer();
    if (m_session == nullptr) {
        CFile::Close();
    } else if (IsOpen()) {
        m_session->CloseFile(m_hFile);
        m_hFile = hFileNull;
        m_position = 0;
    }
}

// The limit of the write rate does not count here.
void CVlpFile::WriteMemoryBuffer() {
    m_memoryBuffer.SeekToBegin();
    ULONGLONG remaining = m_memoryBuffer.GetLength();
    SeekFile(0, begin);
    const std::unique_ptr<BYTE, decltype(&std::free)> buffer(m_memoryBuffer.Detach(), std::free);
    for (const BYTE* next = buffer.get(); remaining > 0;) {
        const auto count = static_cast<UINT>(std::min<ULONGLONG>(remaining, MAXLONG));
        WriteUnlimited(next, count);
        next += count;
        remaining -= count;
    }
}

void CVlpFile::SetFilePath(LPCWSTR path) {
    if (path == nullptr) AfxThrowInvalidArgException();
    m_strFileName = path;
}

HANDLE CVlpFile::OpenLocal(UINT flags) const {
    constexpr UINT kAccessMask = 3;
    constexpr UINT kShareMask = 0x70;
    constexpr DWORD kAccess[] = {GENERIC_READ, GENERIC_WRITE, GENERIC_READ | GENERIC_WRITE, GENERIC_READ};
    static constexpr std::pair<UINT, DWORD> kAttributes[] = {{osNoBuffer, FILE_FLAG_NO_BUFFERING},
                                                             {osWriteThrough, FILE_FLAG_WRITE_THROUGH},
                                                             {osRandomAccess, FILE_FLAG_RANDOM_ACCESS},
                                                             {osSequentialScan, FILE_FLAG_SEQUENTIAL_SCAN}};
    const DWORD access = kAccess[flags & kAccessMask];
    const UINT deny = flags & kShareMask;
    const DWORD share = deny == shareDenyWrite  ? FILE_SHARE_READ
                        : deny == shareDenyRead ? FILE_SHARE_WRITE
                        : deny == shareDenyNone ? FILE_SHARE_READ | FILE_SHARE_WRITE
                                                : 0;
    const DWORD ifCreating = (flags & modeNoTruncate) != 0 ? OPEN_ALWAYS : CREATE_ALWAYS;
    const DWORD disposition = (flags & modeCreate) != 0 ? ifCreating : OPEN_EXISTING;
    DWORD attributes = FILE_ATTRIBUTE_NORMAL;
    for (const auto& [flag, attribute] : kAttributes) {
        if ((flags & flag) != 0) attributes |= attribute;
    }
    SECURITY_ATTRIBUTES security{sizeof(security), nullptr, (flags & modeNoInherit) == 0};
    if (m_pTM != nullptr) {
        return m_pTM->CreateFile(m_strFileName, access, share, &security, disposition, attributes, nullptr);
    }
    return LongPath::CreateFile(m_strFileName, access, share, &security, disposition, attributes);
}
