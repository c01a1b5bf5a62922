#include "dialog/LoadedRows.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

// Every code unit, alone and behind a plain letter: folded texts are equal exactly when the comparison says so.
TEST(FoldCase, AgreesWithTheComparisonOverAllCharacters) {
    std::vector<CString> folded;
    for (unsigned c = 1; c < 0x10000; ++c) {
        const CString text = CString(L"a") + static_cast<wchar_t>(c);
        std::wstring upperText;
        FoldCase(text.GetString(), upperText);
        const CString upper(upperText.c_str());
        ASSERT_EQ(upper.GetLength(), 2) << c;
        ASSERT_EQ(upper.CompareNoCase(text), 0) << c;
        folded.push_back(upper);
    }
    // Texts that fold differently must compare as different: sorted by the comparison, equal ones would be neighbours.
    const auto isLess = [](const CString& a, const CString& b) { return a.CompareNoCase(b) < 0; };
    std::sort(folded.begin(), folded.end(), isLess);
    for (std::size_t i = 1; i < folded.size(); ++i) {
        const bool equal = folded[i - 1].CompareNoCase(folded[i]) == 0;
        ASSERT_EQ(equal, folded[i - 1].Compare(folded[i]) == 0) << static_cast<int>(folded[i].GetAt(1));
    }
}

TEST(LoadedRows, TheLastOfEqualRulesStandsWhereItWasAskedFor) {
    const CString branch(L"Branch");
    const CString key(L"Key");
    LoadedRows rows(5);
    rows.Add(branch, L"HKCU\\\u00C4pfel", L"", 0);
    rows.Add(branch, L"HKCU\\b", L"", 1);
    rows.Add(key, L"HKCU\\\u00E4pfel", L"", 2);
    rows.Add(branch, L"hkcu\\\u00E4PFEL", L"", 3);
    rows.Add(branch, L"HKCU\\b", L"n", 0);
    std::wstring order;
    for (const LoadedRows::Row* row : rows.InFinalOrder())
        order +=
            std::wstring(row->kind->GetString()) + L" " + row->key.GetString() + L" " + row->value.GetString() + L";";
    EXPECT_EQ(order, L"Branch HKCU\\b n;Branch HKCU\\b ;Key HKCU\\\u00E4pfel ;Branch hkcu\\\u00E4PFEL ;");
}
