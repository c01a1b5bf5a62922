#include "rules/RegistryRulesCtrl.h"

#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "support/Throws.h"

namespace {

// The result of a read and what it left in its outputs: "1|HKCU\a|BRANCH|POSITION".
std::wstring KeyRule(CRegistryRulesCtrl& editor, long index) {
    CString key = L"untouched";
    int isBranch = 99;
    long position = 99;
    const int result = editor.GetKeyRule(index, key, &isBranch, &position);
    return std::to_wstring(result) + L"|" + key.GetString() + L"|" + std::to_wstring(isBranch) + L"|" +
           std::to_wstring(position);
}

// "1|HKCU\a|NAME|POSITION".
std::wstring ValueRule(CRegistryRulesCtrl& editor, long index) {
    CString key = L"untouched";
    CString value = L"untouched";
    long position = 99;
    const int result = editor.GetValueRule(index, key, value, &position);
    return std::to_wstring(result) + L"|" + key.GetString() + L"|" + value.GetString() + L"|" +
           std::to_wstring(position);
}

constexpr wchar_t NoKeyRule[] = L"0|untouched|99|99";
constexpr wchar_t NoValueRule[] = L"0|untouched|untouched|99";

TEST(RegistryRulesCtrl, WhatWasAddedComesBackUnchangedBeforeTheDialogRuns) {
    CRegistryRulesCtrl editor;
    const std::wstring longText(32000, L'x');
    EXPECT_EQ(editor.AddKeyRule(L"HKCU\\Software", -7, 32767), 1);
    EXPECT_EQ(editor.AddValueRule(L"no hive\\\\", longText.c_str(), -32768), 1);
    EXPECT_EQ(editor.AddKeyRule(longText.c_str(), 0, -1), 1);
    EXPECT_EQ(editor.AddKeyRule(nullptr, 1, 5), 1);
    EXPECT_EQ(editor.AddKeyRule(nullptr, 1, 5), 1) << "a duplicate";
    EXPECT_EQ(editor.GetKeyRuleCount(), 4);
    EXPECT_EQ(editor.GetValueRuleCount(), 1);
    EXPECT_EQ(KeyRule(editor, 0), L"1|HKCU\\Software|-7|32767");
    EXPECT_EQ(KeyRule(editor, 1), L"1|" + longText + L"|0|-1");
    EXPECT_EQ(KeyRule(editor, 2), L"1||1|5");
    EXPECT_EQ(KeyRule(editor, 3), L"1||1|5");
    EXPECT_EQ(ValueRule(editor, 0), L"1|no hive\\\\|" + longText + L"|-32768");
}

TEST(RegistryRulesCtrl, TheDefaultValueComesBackWithAnEmptyNameHoweverItWasWritten) {
    CRegistryRulesCtrl editor;
    const struct {
        const wchar_t* name;
        const wchar_t* readBack;
    } cases[] = {{nullptr, L""},
                 {L"", L""},
                 {L"(Default)", L""},
                 {L"(DEFAULT)", L""},
                 {L"(default)", L""},
                 {L"Default", L"Default"},
                 {L" (Default)", L" (Default)"}};
    for (const auto& c : cases) {
        editor.AddValueRule(nullptr, c.name, 0);
        EXPECT_EQ(ValueRule(editor, editor.GetValueRuleCount() - 1), std::wstring(L"1||") + c.readBack + L"|0");
    }
}

TEST(RegistryRulesCtrl, AnIndexPastTheEndGivesZeroAndTouchesNothing) {
    CRegistryRulesCtrl editor;
    for (const long end : {0, 1}) {
        for (const long index : {end, end + 1, end + 2, std::numeric_limits<long>::max()}) {
            EXPECT_EQ(KeyRule(editor, index), NoKeyRule) << index << " of " << end;
            EXPECT_EQ(ValueRule(editor, index), NoValueRule) << index << " of " << end;
        }
        editor.AddKeyRule(L"HKCU\\a", 1, 0);
        editor.AddValueRule(L"HKCU\\a", L"b", 0);
    }
}

TEST(RegistryRulesCtrl, ANegativeIndexRaisesOnlyWhereThereAreRules) {
    CRegistryRulesCtrl editor;
    EXPECT_EQ(KeyRule(editor, -1), NoKeyRule);
    EXPECT_EQ(ValueRule(editor, -1), NoValueRule);
    editor.AddKeyRule(L"HKCU\\a", 1, 0);
    editor.AddValueRule(L"HKCU\\a", L"b", 0);
    for (const long index : {-1L, std::numeric_limits<long>::min()}) {
        EXPECT_TRUE(Throws<CInvalidArgException>([&] { KeyRule(editor, index); })) << index;
        EXPECT_TRUE(Throws<CInvalidArgException>([&] { ValueRule(editor, index); })) << index;
    }
    EXPECT_EQ(KeyRule(editor, 0), L"1|HKCU\\a|1|0");
}

TEST(RegistryRulesCtrl, AssignmentSharesTheDialog) {
    CRegistryRulesCtrl source;
    // Never destroyed: it shares the dialog of `source`, which deletes it.
    auto* const target = new CRegistryRulesCtrl;
    EXPECT_EQ(&(*target = source), target);
    EXPECT_EQ(std::memcmp(target, &source, sizeof source), 0);
    static_assert(sizeof(CRegistryRulesCtrl) == sizeof(void*));
}

}  // namespace
