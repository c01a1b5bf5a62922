#include "files/Utf8TextFile.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

IMPLEMENT_DYNAMIC(CUtf8TextFile, CCoreSocketFile)

namespace {

constexpr BYTE kByteOrderMark[kByteOrderMarkBytes] = {0xEF, 0xBB, 0xBF};

}  // namespace

CUtf8TextFile::CUtf8TextFile(LPCWSTR name, UINT flags, CSocketFileOwner* owner) : CCoreSocketFile(name, flags, owner) {
    if (NeedsByteOrderMark(flags)) WriteByteOrderMark();
}

BOOL CUtf8TextFile::Open(LPCWSTR name, UINT flags, CFileException* problem) {
    if (!CCoreSocketFile::Open(name, flags, problem)) return FALSE;
    if (NeedsByteOrderMark(flags)) WriteByteOrderMark();
    return TRUE;
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

bool CUtf8TextFile::HasByteOrderMark(LPCWSTR path) {
    CVlpFile file;
    if (!file.Open(path, modeRead | shareDenyWrite)) return false;
    BYTE head[kByteOrderMarkBytes];
    return file.Read(head, kByteOrderMarkBytes) == kByteOrderMarkBytes &&
           std::memcmp(head, kByteOrderMark, kByteOrderMarkBytes) == 0;
}

bool CUtf8TextFile::NeedsByteOrderMark(UINT flags) const {
    if ((flags & modeCreate) == 0) return false;
    return (flags & modeNoTruncate) == 0 || (IsOpen() && GetLength() == 0);
}

void CUtf8TextFile::AppendFile(LPCWSTR path) {
    constexpr UINT kBlockBytes = 4096;
    if (!IsOpen() || !HasByteOrderMark(path)) return;
    CVlpFile source(path);
    SeekToEnd();
    source.Seek(kByteOrderMarkBytes, begin);
    BYTE block[kBlockBytes];
    while (const UINT got = source.Read(block, kBlockBytes)) Write(block, got);
    source.Close();
}
