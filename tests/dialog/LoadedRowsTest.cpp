#include "dialog/LoadedRows.h"

#include <algorithm>
#include <gtest/gtest.h>

// Every code unit behind a plain letter: folded texts are equal exactly when the comparison says so.
TEST(LoadedRows, FoldAsTheComparisonComparesOverAllCharacters) {
    std::vector<CString> folded;
    for (unsigned c = 1; c < 0x10000; ++c) {
        const CString text = CString(L"a") + static_cast<wchar_t>(c);
        std::wstring upperText;
        FoldCase(text.GetString(), upperText);
        folded.emplace_back(upperText.c_str());
        ASSERT_EQ(folded.back().CompareNoCase(text), 0) << c;
    }
    // Texts that fold differently must compare as different: sorted by the comparison, equal ones would be neighbours.
    std::ranges::sort(folded, [](const CString& a, const CString& b) { return a.CompareNoCase(b) < 0; });
    for (std::size_t i = 1; i < folded.size(); ++i)
        ASSERT_EQ(folded[i - 1].CompareNoCase(folded[i]) == 0, folded[i - 1] == folded[i]) << i;
}
