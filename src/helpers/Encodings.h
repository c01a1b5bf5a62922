// Text in other encodings. Buffers that are handed out belong to the caller; null or an empty text means failure.
#pragma once

#include <afx.h>

#include <memory>
#include <span>

// Half as many bytes as the text has characters, and one more that is zero. Null for a text of odd length. A pair that
// is not two digits gives what wcstol makes of it.
std::unique_ptr<BYTE[]> HexToBytes(const CString& text);

// Appends two lower-case digits for each byte.
void BytesToHex(std::span<const BYTE> bytes, CString& text);

// Without a terminator; `padded` adds two zero bytes, which `bytes`, the size, counts. A lone surrogate becomes what
// Windows makes of it. Null, and a size of 0, for an empty text.
std::unique_ptr<BYTE[]> WideToUtf8(const CString& text, bool padded, int& bytes);

// The text with its terminator and two more zero characters behind it. Null for null. Malformed bytes become what
// Windows makes of them.
std::unique_ptr<WCHAR[]> Utf8ToWide(LPCSTR text);

// In the thread's ANSI code page; "?" for a character that it lacks, not one that merely looks alike.
CStringA WideToAnsi(LPCWSTR text);

// The UTF-8 bytes, padded, two to a character: no readable text but a carrier for the bytes. An odd last byte is
// dropped, which is one of the padding.
CString Utf8PackedInWide(const CString& text);
