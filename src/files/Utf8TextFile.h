// A file of UTF-8 text that begins with a byte-order mark.
//
//     CUtf8TextFile file;
//     if (!file.Open(path, CFile::modeCreate | CFile::modeWrite)) return false;
//     file.WriteString(L"one line\r\n");
//
// Line ends are the caller's. files/TextFiles.h reads and writes whole lines.
#pragma once

#include "files/CoreSocketFile.h"

constexpr UINT kByteOrderMarkBytes = 3;

class CUtf8TextFile : public CCoreSocketFile {
    DECLARE_DYNAMIC(CUtf8TextFile)

public:
    CUtf8TextFile() = default;
    // Opens the local file as Open does; CFileException if that fails.
    CUtf8TextFile(const CString& name, UINT flags, CSocketFileOwner* owner = nullptr);
    ~CUtf8TextFile() override = default;

    // Writes the mark where NeedsByteOrderMark asks for it, before what a memory buffer was given already. When it
    // cannot be written, the file is closed again and the result is FALSE; so it is in a session with modeCreate and
    // modeNoTruncate together, because its files have no length.
    BOOL Open(LPCWSTR name, UINT flags, CFileException* problem = nullptr) override;
    using CVlpFile::Open;
    virtual void WriteString(const CString& text);
    // Adds the text of another local file behind this one's end, without the mark. Nothing happens when that file has
    // no mark or this one is not open.
    virtual void AppendFile(const CString& path);

    // Null writes nothing.
    void WriteUtf8(LPCWSTR text);
    // At the file's start, over what stands there; the position is then behind it.
    void WriteByteOrderMark();
    // False for what cannot be opened.
    static bool HasByteOrderMark(const CString& path);
    // True for a file that is made anew, and for one that was opened as such but kept, if it is empty, and with it the
    // memory buffer.
    bool NeedsByteOrderMark(UINT flags) const;

private:
    void StartWithByteOrderMark(UINT flags);
};
