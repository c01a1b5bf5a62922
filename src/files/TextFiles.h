// Whole lines of UTF-8 text files. A path with a zero inside cannot be opened: ERROR_INVALID_NAME, and no second try.
#pragma once

#include <afxcoll.h>

// Puts the file's lines into `lines`, in place of what it held; empty when the file cannot be opened. CR LF, LF CR, CR
// and LF end a line and are left out unless `keepLineEnds`; a single CR or LF as the file's last byte is always kept. A
// byte-order mark is left out. Malformed bytes become what Windows makes of them. Others may read the file meanwhile.
// CFileException when reading fails.
void ReadTextLines(const CString& path, CStringList& lines, bool keepLineEnds);

// Writes the line behind the file's end, with CR LF unless it ends so. `addTimestamp` puts the local time before it,
// "11/24/26 06:05:00 PM ". With `create` a missing file is made, and an empty one gets a byte-order mark. While others
// have the file open, and on every other failure to open it, this tries again each second, ten times in all; then the
// result is false. CFileException when writing fails.
bool AppendTextLine(const CString& path, const CString& line, bool addTimestamp, bool create);

// Writes lines as AppendTextLine, with the same tries; `truncate` empties the file before. A missing file is made.
bool WriteTextLines(const CString& path, const CStringList& lines, bool truncate);
