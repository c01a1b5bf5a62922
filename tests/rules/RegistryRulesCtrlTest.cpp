#include "rules/RegistryRulesCtrl.h"

#include <cstring>
#include <gtest/gtest.h>
#include <limits>

namespace {

struct KeyRule {
    CString key = L"untouched";
    int isBranch = 99;
    long position = 99;
    int result = -1;
};

KeyRule ReadKeyRule(CRegistryRulesCtrl& editor, long index) {
    KeyRule rule;
    rule.result = editor.GetKeyRule(index, rule.key, &rule.isBranch, &rule.position);
    return rule;
}

struct ValueRule {
    CString key = L"untouched";
    CString value = L"untouched";
    long position = 99;
    int result = -1;
};

ValueRule ReadValueRule(CRegistryRulesCtrl& editor, long index) {
    ValueRule rule;
    rule.result = editor.GetValueRule(index, rule.key, rule.value, &rule.position);
    return rule;
}

template <class Call>
bool RaisesInvalidArgument(Call call) {
    try {
        call();
    } catch (CInvalidArgException* problem) {
        problem->Delete();
        return true;
    }
    return false;
}

TEST(RegistryRulesCtrl, WhatWasAddedComesBackUnchangedBeforeTheDialogRuns) {
    CRegistryRulesCtrl editor;
    const CString longText(L'x', 32000);
    EXPECT_EQ(editor.AddKeyRule(L"HKCU\\Software", -7, 32767), 1);
    EXPECT_EQ(editor.AddValueRule(L"no hive\\\\", longText, -32768), 1);
    EXPECT_EQ(editor.AddKeyRule(longText, 0, -1), 1);
    EXPECT_EQ(editor.AddKeyRule(nullptr, 1, 5), 1);
    EXPECT_EQ(editor.AddKeyRule(nullptr, 1, 5), 1) << "a duplicate";
    EXPECT_EQ(editor.GetKeyRuleCount(), 4);
    EXPECT_EQ(editor.GetValueRuleCount(), 1);

    const KeyRule first = ReadKeyRule(editor, 0);
    EXPECT_EQ(first.result, 1);
    EXPECT_STREQ(first.key, L"HKCU\\Software");
    EXPECT_EQ(first.isBranch, -7);
    EXPECT_EQ(first.position, 32767);
    const KeyRule second = ReadKeyRule(editor, 1);
    EXPECT_EQ(second.key, longText);
    EXPECT_EQ(second.isBranch, 0);
    EXPECT_EQ(second.position, -1);
    EXPECT_TRUE(ReadKeyRule(editor, 2).key.IsEmpty());
    EXPECT_TRUE(ReadKeyRule(editor, 3).key.IsEmpty());
    const ValueRule value = ReadValueRule(editor, 0);
    EXPECT_EQ(value.result, 1);
    EXPECT_STREQ(value.key, L"no hive\\\\");
    EXPECT_EQ(value.value, longText);
    EXPECT_EQ(value.position, -32768);
}

TEST(RegistryRulesCtrl, TheDefaultValueComesBackWithAnEmptyNameHoweverItWasWritten) {
    CRegistryRulesCtrl editor;
    for (const wchar_t* name : {L"", L"(Default)", L"(DEFAULT)", L"(default)"})
        editor.AddValueRule(L"HKCU\\a", name, 0);
    editor.AddValueRule(L"HKCU\\a", nullptr, 0);
    editor.AddValueRule(nullptr, L"Default", 0);
    editor.AddValueRule(L"HKCU\\a", L" (Default)", 0);
    for (long index = 0; index < 5; ++index) EXPECT_TRUE(ReadValueRule(editor, index).value.IsEmpty()) << index;
    EXPECT_STREQ(ReadValueRule(editor, 5).value, L"Default");
    EXPECT_TRUE(ReadValueRule(editor, 5).key.IsEmpty());
    EXPECT_STREQ(ReadValueRule(editor, 6).value, L" (Default)");
}

TEST(RegistryRulesCtrl, AnIndexPastTheEndGivesZeroAndTouchesNothing) {
    CRegistryRulesCtrl editor;
    for (const long end : {0, 1}) {
        for (const long index : {end, end + 1, end + 2, std::numeric_limits<long>::max()}) {
            SCOPED_TRACE(testing::Message() << index << " of " << end);
            const KeyRule key = ReadKeyRule(editor, index);
            EXPECT_EQ(key.result, 0);
            EXPECT_STREQ(key.key, L"untouched");
            EXPECT_EQ(key.isBranch + key.position, 2 * 99);
            const ValueRule value = ReadValueRule(editor, index);
            EXPECT_EQ(value.result, 0);
            EXPECT_STREQ(value.key + value.value, L"untoucheduntouched");
            EXPECT_EQ(value.position, 99);
        }
        editor.AddKeyRule(L"HKCU\\a", 1, 0);
        editor.AddValueRule(L"HKCU\\a", L"b", 0);
    }
}

TEST(RegistryRulesCtrl, ANegativeIndexRaisesOnlyWhereThereAreRules) {
    CRegistryRulesCtrl editor;
    EXPECT_EQ(ReadKeyRule(editor, -1).result, 0);
    EXPECT_EQ(ReadValueRule(editor, -1).result, 0);
    editor.AddKeyRule(L"HKCU\\a", 1, 0);
    editor.AddValueRule(L"HKCU\\a", L"b", 0);
    for (const long index : {-1L, std::numeric_limits<long>::min()}) {
        EXPECT_TRUE(RaisesInvalidArgument([&] { ReadKeyRule(editor, index); })) << index;
        EXPECT_TRUE(RaisesInvalidArgument([&] { ReadValueRule(editor, index); })) << index;
    }
    EXPECT_EQ(ReadKeyRule(editor, 0).result, 1);
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
