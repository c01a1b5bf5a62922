// The small pieces that registry files are made of.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

inline constexpr std::wstring_view kRegistryFileHeader = L"Windows Registry Editor Version 5.00";
inline constexpr std::wstring_view kRegistryFileHeader4 = L"REGEDIT4";

// The first place at or behind `at` that is neither a space nor a tab.
inline std::size_t SkipBlanks(std::wstring_view text, std::size_t at) {
    while (at < text.size() && (text[at] == L' ' || text[at] == L'\t')) ++at;
    return at;
}

inline constexpr auto kHexDigits = [] {
    std::array<std::uint8_t, 128> digits{};
    digits.fill(0xFF);
    for (std::size_t i = 0; i < 10; ++i) digits[L'0' + i] = static_cast<std::uint8_t>(i);
    for (std::size_t i = 0; i < 6; ++i) digits[L'a' + i] = digits[L'A' + i] = static_cast<std::uint8_t>(10 + i);
    return digits;
}();

// The value of a hexadecimal digit, or 16 and more for any other unit.
inline unsigned HexDigit(wchar_t c) {
    const auto index = static_cast<std::size_t>(c);
    return index < kHexDigits.size() ? kHexDigits[index] : 0xFFU;
}

// A hexadecimal number as the system's importer reads it: behind blanks, with a sign, with leading zeros, and with "0x"
// where `mayHavePrefix`. Moves `at` behind it. None without a digit, and for a number that does not fit into 32 bits.
std::optional<std::uint32_t> ReadHexNumber(std::wstring_view text, std::size_t& at, bool mayHavePrefix);

// A text between quotes, of which `at` is the first unit behind the opening one. Moves `at` behind the closing one.
// False when there is none, or when the text holds "\0". An unknown escape stands for the unit behind its backslash.
bool ReadQuoted(std::wstring_view text, std::size_t& at, std::wstring& quoted);

// What the unit behind a backslash stands for; 0 for "\0".
wchar_t Unescape(wchar_t c);

// Appends what stands between quotes for the text.
void AppendEscaped(std::wstring& out, std::wstring_view text);
