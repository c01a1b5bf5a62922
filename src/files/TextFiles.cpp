#include "files/TextFiles.h"

#include <algorithm>
#include <ctime>

#include "files/LongPathFile.h"
#include "files/TextLineSplitter.h"
#include "files/Utf8TextFile.h"
#include "helpers/TextCompare.h"

namespace {

bool IsAscii(std::string_view text) {
    unsigned char bits = 0;
    for (const char byte : text) bits |= static_cast<unsigned char>(byte);
    return bits < 0x80;
}

void AddLine(CStringList& lines, std::string_view utf8) {
    lines.AddTail(L"");
    if (utf8.empty()) return;
    const int bytes = static_cast<int>(utf8.size());
    CString& line = lines.GetTail();
    const LPWSTR buffer = line.GetBufferSetLength(bytes);
    if (IsAscii(utf8)) {
        // Most lines are, and a call to the system takes longer than all else.
        std::copy(utf8.begin(), utf8.end(), buffer);
        return;
    }
    // UTF-8 never has more UTF-16 units than bytes, so one call does.
    line.ReleaseBuffer(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, buffer, bytes));
}

CString Timestamp() {
    constexpr size_t kMaxChars = 128;
    const std::time_t now = std::time(nullptr);
    WCHAR text[kMaxChars];
    const size_t length = std::wcsftime(text, kMaxChars, L"%m/%d/%y %I:%M:%S %p ", std::localtime(&now));
    return {text, static_cast<int>(length)};
}

// Open also writes the byte-order mark of a file that is new or empty.
bool OpenWithTries(CUtf8TextFile& file, const CString& path, UINT flags) {
    constexpr int kTries = 10;
    constexpr DWORD kPauseMs = 1000;
    if (LongPath::IsRefused(path)) return false;
    for (int i = 0; i < kTries; ++i) {
        if (file.Open(path, flags)) return true;
        Sleep(kPauseMs);
    }
    return false;
}

void WriteLine(CUtf8TextFile& file, CString line) {
    if (!EndsWithCrLf(line)) line += L"\r\n";
    file.WriteString(line);
}

}  // namespace

void ReadTextLines(const CString& path, CStringList& lines, bool keepLineEnds) {
    constexpr UINT kBlockBytes = 4096;
    lines.RemoveAll();
    const bool hasMark = CUtf8TextFile::HasByteOrderMark(path);
    CVlpFile file;
    if (!file.Open(path, CFile::modeRead | CFile::shareDenyWrite)) return;
    if (hasMark) file.Seek(kByteOrderMarkBytes, CFile::begin);

    TextLineSplitter splitter(keepLineEnds);
    char block[kBlockBytes];
    while (const UINT got = file.Read(block, kBlockBytes)) {
        splitter.Add({block, got});
        while (const auto line = splitter.Next()) AddLine(lines, *line);
    }
    if (!splitter.Rest().empty()) AddLine(lines, splitter.Rest());
    file.Close();
}

bool AppendTextLine(const CString& path, const CString& line, bool addTimestamp, bool create) {
    const UINT ifCreating = create ? CFile::modeCreate | CFile::modeNoTruncate : 0;
    CUtf8TextFile file;
    if (!OpenWithTries(file, path, CFile::modeWrite | CFile::shareExclusive | ifCreating)) return false;
    file.SeekToEnd();
    WriteLine(file, addTimestamp ? Timestamp() + line : line);
    file.Close();
    return true;
}

bool WriteTextLines(const CString& path, const CStringList& lines, bool truncate) {
    const UINT ifKeeping = truncate ? 0U : CFile::modeNoTruncate;
    CUtf8TextFile file;
    if (!OpenWithTries(file, path, CFile::modeCreate | CFile::modeWrite | CFile::shareExclusive | ifKeeping)) {
        return false;
    }
    if (!truncate) file.SeekToEnd();
    for (POSITION place = lines.GetHeadPosition(); place != nullptr;) WriteLine(file, lines.GetNext(place));
    file.Close();
    return true;
}
