// Trimming by the system's own notions of a blank.
#pragma once

#include <string_view>

// Without the blanks (U+0020 only; tabs stay) at both ends. The result is a view into `text`.
std::wstring_view TrimBlanks(std::wstring_view text);
