// Comparing and searching with the case of A to Z ignored; every other character must be the same.
#pragma once

#include <string_view>

bool EqualIgnoringAsciiCase(std::wstring_view a, std::wstring_view b);
bool StartsWithIgnoringAsciiCase(std::wstring_view text, std::wstring_view prefix);

// Index of the first occurrence of `needle`, or npos.
std::size_t FindIgnoringAsciiCase(std::wstring_view text, std::wstring_view needle);
