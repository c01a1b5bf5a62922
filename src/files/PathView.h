// Between the string class and the views that path decisions work on.
#pragma once

#include <afx.h>

#include <string_view>

#include "files/PathPieces.h"

inline std::wstring_view ViewOf(const CString& text) {
    return {text.GetString(), static_cast<std::size_t>(text.GetLength())};
}

// A null pointer is an empty text.
inline std::wstring_view ViewOf(LPCWSTR text) {
    return text == nullptr ? std::wstring_view() : std::wstring_view(text);
}

inline CString TextOf(std::wstring_view view) {
    return CString(view.data(), static_cast<int>(view.size()));
}

inline CString TextOf(const PathPieces& pieces) {
    CString text;
    pieces.CopyTo(text.GetBufferSetLength(static_cast<int>(pieces.size())));
    return text;
}
