#include "dialog/LoadedRows.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "dialog/InsertByWalk.h"

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

// The rows come up by a plan that reads no row; they must be those of inserting one rule after the other.
TEST(LoadedRows, RandomRulesStandAsIfInsertedOneByOne) {
    const CString kinds[] = {L"Branch", L"Key", L"Value"};
    const wchar_t* const keys[] = {L"HKCU\\\u00C4pfel", L"HKCU\\\u00E4PFEL", L"HKCU\\\u0436",
                                   L"HKCU\\\u0416",     L"hkcu\\\u00E4pfel", L"HKLM\\a",
                                   L"HKLM\\b",          L"HKU\\stra\u00DFe", L"HKU\\STRASSE"};
    const wchar_t* const values[] = {L"\u03C3", L"\u03A3", L"(Default)", L""};
    const auto isSame = [](const LoadedRows::Row& a, const LoadedRows::Row& b) {
        return a.kind == b.kind && a.key.CompareNoCase(b.key) == 0 && a.value.CompareNoCase(b.value) == 0;
    };
    std::mt19937 random(11);
    for (int round = 0; round < 100; ++round) {
        LoadedRows loaded(60);
        std::vector<LoadedRows::Row> expected;
        for (int i = 0; i < 60; ++i) {
            const LoadedRows::Row row{&kinds[random() % std::size(kinds)], keys[random() % std::size(keys)],
                                      values[random() % std::size(values)], static_cast<int>(random() % 90) - 20};
            loaded.Add(*row.kind, row.key, row.value, row.position);
            InsertByWalk(expected, row.position, row, isSame);
        }
        const auto isIdentical = [](const LoadedRows::Row* a, const LoadedRows::Row& b) {
            return a->kind == b.kind && a->key == b.key && a->value == b.value && a->position == b.position;
        };
        ASSERT_TRUE(std::ranges::equal(loaded.InFinalOrder(), expected, isIdentical)) << "round " << round;
    }
}
