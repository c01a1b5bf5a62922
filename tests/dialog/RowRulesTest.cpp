#include "dialog/RowRules.h"

#include <gtest/gtest.h>

namespace {
constexpr KindTexts texts{L"Branch", L"Key", L"Value"};
}

TEST(RowRules, ACellChangeKeepsTypeAndValueInStep) {
    const struct {
        int column;
        const wchar_t* type;
        const wchar_t* value;
        int writtenColumn;
        const wchar_t* text;
        bool edit;
    } cases[] = {
        {0, L"Branch", L"name", 2, L"", false},      {0, L"Key", L"", 2, L"", false},
        {0, L"Value", L"", 2, L"(Default)", true},   {0, L"Value", L"name", -1, L"", false},
        {0, L"Value", L" ", -1, L"", false},         {0, L"odd", L"", 2, L"(Default)", true},
        {2, L"Branch", L"name", 0, L"Value", false}, {2, L"Value", L"", 0, L"Branch", false},
        {2, L"Key", L"", 0, L"Branch", false},       {2, L"Value", L"   ", 0, L"Branch", false},
        {2, L"Branch", L"\t", 0, L"Value", false},   {1, L"Value", L"", -1, L"", false},
        {3, L"Value", L"", -1, L"", false},
    };
    for (const auto& c : cases) {
        const CellFollowUp followUp = FollowCellChange(c.column, c.type, c.value, texts, L"(Default)");
        EXPECT_EQ(followUp.column, c.writtenColumn) << c.column << c.type << c.value;
        EXPECT_EQ(followUp.text, c.text);
        EXPECT_EQ(followUp.edit, c.edit);
    }
}

TEST(RowRules, AKindIsKnownByItsExactTextAlone) {
    EXPECT_EQ(KindOfCell(L"Key", texts), RuleKind::Key);
    for (const wchar_t* text : {L"key", L"BRANCH", L"Value ", L""})
        EXPECT_EQ(KindOfCell(text, texts), RuleKind::Unknown) << text;
}
