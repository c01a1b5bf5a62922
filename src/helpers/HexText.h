// Bytes as hexadecimal text and back.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

// Writes each byte as two lower-case digits; `digits` has two characters for each byte.
void WriteHexDigits(std::span<const std::uint8_t> bytes, std::span<wchar_t> digits);

// Reads each pair of characters as one byte, either case; `bytes` has one byte for each whole pair. A pair that is not
// two digits gives what wcstol makes of it: "1z" is 1, "zz" is 0, "-1" is 0xff.
void ReadHexPairs(std::wstring_view text, std::span<std::uint8_t> bytes);
