#include "framework/MemFile.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

IMPLEMENT_DYNAMIC(CMemFile, CFile)

CMemFile::~CMemFile() {
    CMemFile::Close();
}

BYTE* CMemFile::Detach() {
    m_nPosition = m_nBufferSize = m_nFileSize = 0;
    return std::exchange(m_lpBuffer, nullptr);
}

UINT CMemFile::GetBufferPtr(UINT command, UINT count, void** start, void** stop) {
    switch (command) {
        case bufferRead:
            break;
        case bufferWrite:
            GrowFile(End(count));
            *start = m_lpBuffer + m_nPosition;
            *stop = static_cast<BYTE*>(*start) + count;
            return count;
        case bufferCommit:
            m_nPosition = End(count);
            m_nFileSize = std::max(m_nFileSize, m_nPosition);
            return 0;
        default:
            AfxThrowNotSupportedException();
    }
    const UINT available = Available(count);
    *start = m_lpBuffer + (available != 0 ? m_nPosition : 0);
    *stop = static_cast<BYTE*>(*start) + available;
    m_nPosition += available;
    return available;
}

UINT CMemFile::Read(void* buffer, UINT count) {
    const UINT available = Available(count);
    if (available != 0) std::memcpy(buffer, m_lpBuffer + m_nPosition, available);
    m_nPosition += available;
    return available;
}

void CMemFile::Write(const void* buffer, UINT count) {
    if (count == 0) return;
    const SIZE_T needed = End(count);
    GrowFile(needed);
    if (m_nPosition > m_nFileSize) std::memset(m_lpBuffer + m_nFileSize, 0, m_nPosition - m_nFileSize);
    std::memcpy(m_lpBuffer + m_nPosition, buffer, count);
    m_nPosition = needed;
    m_nFileSize = std::max(m_nFileSize, needed);
}

ULONGLONG CMemFile::Seek(LONGLONG offset, UINT from) {
    SIZE_T base = 0;
    if (from == current) base = m_nPosition;
    if (from == CFile::end) base = m_nFileSize;
    const bool isBeforeStart = offset < 0 && ULONGLONG{0} - static_cast<ULONGLONG>(offset) > base;
    if (isBeforeStart || from > CFile::end) AfxThrowFileException(CFileException::badSeek);
    m_nPosition = base + static_cast<SIZE_T>(offset);
    return m_nPosition;
}

void CMemFile::SetLength(ULONGLONG length) {
    GrowFile(length);
    if (length > m_nFileSize) std::memset(m_lpBuffer + m_nFileSize, 0, length - m_nFileSize);
    m_nFileSize = length;
    m_nPosition = std::min<SIZE_T>(m_nPosition, length);
}

void CMemFile::Close() {
    std::free(Detach());
    m_nGrowBytes = 0;
}

UINT CMemFile::Available(UINT count) const {
    if (m_nPosition >= m_nFileSize) return 0;
    return static_cast<UINT>(std::min<SIZE_T>(count, m_nFileSize - m_nPosition));
}

SIZE_T CMemFile::End(UINT count) const {
    if (m_nPosition + count < m_nPosition) AfxThrowMemoryException();
    return m_nPosition + count;
}

void CMemFile::GrowFile(SIZE_T bytes) {
    if (bytes <= m_nBufferSize) return;
    if (m_nGrowBytes == 0) AfxThrowMemoryException();
    const SIZE_T missing = (m_nGrowBytes - bytes % m_nGrowBytes) % m_nGrowBytes;
    // Detach promises a buffer for free(), so it cannot be a container's.
    auto* const grown = bytes + missing < bytes ? nullptr : std::realloc(m_lpBuffer, bytes + missing);
    if (grown == nullptr) AfxThrowMemoryException();
    m_lpBuffer = static_cast<BYTE*>(grown);
    m_nBufferSize = bytes + missing;
}
