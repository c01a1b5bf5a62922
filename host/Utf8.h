// Between the UTF-16 of Windows and the UTF-8 of files and messages.
#pragma once

#include <string>
#include <string_view>

// Throws std::runtime_error, which says what is wrong, when the text is no valid Unicode: a lone surrogate.
std::string ToUtf8(std::wstring_view text);
// The same, but puts U+FFFD in the place of what is not valid: for messages.
std::string ToReadableUtf8(std::wstring_view text);
// `text` must be valid UTF-8.
std::wstring FromUtf8(std::string_view text);
