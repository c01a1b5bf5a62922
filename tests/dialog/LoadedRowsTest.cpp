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
