// Decisions on numbers that are written as text.
#pragma once

#include <cstdint>
#include <string_view>

// True when the whole of `text` is one decimal number from `min` to `max`, both included. Leading white space and a
// sign are taken; anything behind the digits, no digits at all, a number that does not fit, or a null text gives false.
bool IsIntInRange(const wchar_t* text, std::int32_t min, std::int32_t max);

// A leading decimal number as a 32-bit value: 0 when the text does not begin with one, the nearest bound when it does
// not fit.
std::int32_t LeadingNumber(std::wstring_view text);

// The digit grouping of a locale ("3;0", "3;2;0") in the form of NUMBERFMTW::Grouping (3, 32). A text without ";0" at
// its end asks for no repetition of its last group, and each number in it moves the earlier ones up: "3" gives 30.
std::uint32_t GroupingNumber(std::wstring_view text);

enum class ByteUnit { Bytes, Kilobytes, Megabytes, Gigabytes };

struct ScaledSize {
    double amount = 0;
    ByteUnit unit = ByteUnit::Bytes;
};

// The size in the largest unit that it exceeds: exactly 1024 bytes are still bytes. A negative size stays in bytes.
ScaledSize ScaleByteSize(double bytes);
