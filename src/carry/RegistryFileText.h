// The small pieces that registry files are made of.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

inline constexpr std::wstring_view kRegistryFileHeader = L"Windows Registry Editor Version 5.00";
inline constexpr std::wstring_view kRegistryFileHeader4 = L"REGEDIT4";

// The first place at or behind `at` that is neither a space nor a tab.
std::size_t SkipBlanks(std::wstring_view text, std::size_t at);

// The value of a hexadecimal digit, or 16 and more for any other unit.
unsigned HexDigit(wchar_t c);

// A hexadecimal number as the system's importer reads it: behind blanks, with a sign, with leading zeros, and with "0x"
// where `mayHavePrefix`. Moves `at` behind it. None without a digit, and for a number that does not fit into 32 bits.
std::optional<std::uint32_t> ReadHexNumber(std::wstring_view text, std::size_t& at, bool mayHavePrefix);

// A text between quotes, of which `at` is the first unit behind the opening one. Moves `at` behind the closing one.
// None when there is none, or when the text holds "\0". An unknown escape stands for the unit behind its backslash.
std::optional<std::wstring> ReadQuoted(std::wstring_view text, std::size_t& at);

// What the unit behind a backslash stands for; 0 for "\0".
wchar_t Unescape(wchar_t c);

// Appends what stands between quotes for the text.
void AppendEscaped(std::wstring& out, std::wstring_view text);
