#include "files/Utf8TextFile.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <span>
#include <vector>

IMPLEMENT_DYNAMIC(CUtf8TextFile, CCoreSocketFile)

namespace {

constexpr BYTE kByteOrderMark[kByteOrderMarkBytes] = {0xEF, 0xBB, 0xBF};

bool StartsWithMark(std::span<const BYTE> bytes) {
    return bytes.size() >= kByteOrderMarkBytes && std::memcmp(bytes.data(), kByteOrderMark, kByteOrderMarkBytes) == 0;
}

// Whether the work throws, and with what; what is no matter of files is a generic one.
template <class Work>
bool Throws(Work work, CFileException* problem) {
    try {
        work();
        return false;
    } catch (CException* thrown) {
        const auto* const ofFile = dynamic_cast<CFileException*>(thrown);
        if (problem != nullptr) {
            problem->m_cause = ofFile != nullptr ? ofFile->m_cause : int{CFileException::genericException};
            problem->m_lOsError = ofFile != nullptr ? ofFile->m_lOsError : -1;
        }
        thrown->Delete();
        return true;
    }
}

}  // namespace

CUtf8TextFile::CUtf8TextFile(const CString& name, UINT flags, CSocketFileOwner* owner)
    : CCoreSocketFile(name, flags, owner) {
    if (NeedsByteOrderMark(flags)) WriteByteOrderMark();
}

BOOL CUtf8TextFile::Open(LPCWSTR name, UINT flags, CFileException* problem) {
    if (!CCoreSocketFile::Open(name, flags, problem)) return FALSE;
    if (Throws([&] { StartWithByteOrderMark(flags); }, problem)) {
        if (problem != nullptr) problem->m_strFileName = name;
        Throws([&] { Close(); }, nullptr);
        return FALSE;
    }
    return TRUE;
}

void CUtf8TextFile::StartWithByteOrderMark(UINT flags) {
    if (!NeedsByteOrderMark(flags)) return;
    // A memory buffer may have been given its text before the file was opened.
    std::vector<BYTE> given(UsesMemoryBuffer() ? GetLength() : 0);
    if (given.empty()) return WriteByteOrderMark();
    SeekToBegin();
    Read(given.data(), static_cast<UINT>(given.size()));
    if (StartsWithMark(given)) return;
    WriteByteOrderMark();
    Write(given.data(), static_cast<UINT>(given.size()));
}

void CUtf8TextFile::WriteString(const CString& text) {
    // No character takes more, so one call to the system does.
    constexpr size_t kMostBytes = 3;
    const auto capacity = static_cast<int>(
        std::min<size_t>(kMostBytes * static_cast<size_t>(text.GetLength()), std::numeric_limits<int>::max()));
    if (capacity == 0) return;
    const auto utf8 = std::make_unique_for_overwrite<char[]>(static_cast<size_t>(capacity));
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text, text.GetLength(), utf8.get(), capacity, nullptr, nullptr);
    if (bytes <= 0) AfxThrowMemoryException();
    Write(utf8.get(), static_cast<UINT>(bytes));
}

void CUtf8TextFile::WriteUtf8(LPCWSTR text) {
    if (text != nullptr) CUtf8TextFile::WriteString(text);
}

void CUtf8TextFile::WriteByteOrderMark() {
    SeekToBegin();
    Write(kByteOrderMark, kByteOrderMarkBytes);
}

bool CUtf8TextFile::HasByteOrderMark(const CString& path) {
    CVlpFile file;
    if (!file.Open(path, modeRead | shareDenyWrite)) return false;
    BYTE head[kByteOrderMarkBytes]{};
    return StartsWithMark({head, file.Read(head, kByteOrderMarkBytes)});
}

bool CUtf8TextFile::NeedsByteOrderMark(UINT flags) const {
    if ((flags & modeCreate) == 0) return false;
    return (flags & modeNoTruncate) == 0 || (IsOpen() && IsEmpty());
}

void CUtf8TextFile::AppendFile(const CString& path) {
    constexpr UINT kBlockBytes = 4096;
    if (!IsOpen() || !HasByteOrderMark(path)) return;
    CVlpFile source(path);
    SeekToEnd();
    source.Seek(kByteOrderMarkBytes, begin);
    BYTE block[kBlockBytes];
    while (const UINT got = source.Read(block, kBlockBytes)) Write(block, got);
    source.Close();
}
