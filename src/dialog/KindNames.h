// The texts of the three kinds, which the string table holds and a row's Type cell shows.
#pragma once

#include <afx.h>

#include <string_view>

#include "dialog/RowRules.h"
#include "helpers/ResourceString.h"
#include "resources/resource.h"

// Good as long as the text lives and does not change.
inline std::wstring_view View(const CString& text) {
    return {text.GetString(), static_cast<std::size_t>(text.GetLength())};
}

inline CString ToCString(std::wstring_view text) {
    return {text.data(), static_cast<int>(text.size())};
}

struct KindNames {
    CString branch = LoadResourceString(IDS_KIND_BRANCH);
    CString key = LoadResourceString(IDS_KIND_KEY);
    CString value = LoadResourceString(IDS_KIND_VALUE);

    KindTexts Texts() const { return {View(branch), View(key), View(value)}; }
};
