// Between the framework's text and the standard library's, which the decisions work on.
#pragma once

#include <afx.h>

#include <string_view>

// Good as long as the text lives and does not change.
inline std::wstring_view ViewOf(const CString& text) {
    return {text.GetString(), static_cast<std::size_t>(text.GetLength())};
}

// A null pointer is an empty text.
inline std::wstring_view ViewOf(LPCWSTR text) {
    return text == nullptr ? std::wstring_view() : std::wstring_view(text);
}

inline CString TextOf(std::wstring_view text) {
    return {text.data(), static_cast<int>(text.size())};
}
