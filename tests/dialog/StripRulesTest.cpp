#include "dialog/StripRules.h"

#include <gtest/gtest.h>

namespace {
constexpr std::wstring_view watermark = L"Click here to create a new rule";
}

TEST(StripRules, OnlyTheExactWatermarkCountsAsRest) {
    EXPECT_TRUE(IsStripAtRest(L"", watermark));
    EXPECT_TRUE(IsStripAtRest(watermark, watermark));
    EXPECT_FALSE(IsStripAtRest(L"click here to create a new rule", watermark));
    EXPECT_FALSE(IsStripAtRest(L"HKCU\\a", watermark));
}

TEST(StripRules, AValueNameTurnsTheKindToValueAndBlanksGiveTheLastOneBack) {
    EXPECT_EQ(KindIndexForValue(L"name", 1), 2);
    EXPECT_EQ(KindIndexForValue(L"\t", 1), 2);
    EXPECT_EQ(KindIndexForValue(L"", 1), 1);
    EXPECT_EQ(KindIndexForValue(L"  ", 0), 0);
    EXPECT_TRUE(IsRememberedKind(0));
    EXPECT_TRUE(IsRememberedKind(1));
    EXPECT_FALSE(IsRememberedKind(2));
    EXPECT_FALSE(IsRememberedKind(-1));
}

TEST(StripRules, WhatReturnDoes) {
    const struct {
        StripFocus focus;
        std::wstring_view key;
        bool focusKeyBox, clearKeyBox, commit;
    } cases[] = {
        {StripFocus::KeyBox, L"", false, false, false},       {StripFocus::KeyBox, watermark, false, false, false},
        {StripFocus::KeyBox, L"HKCU\\a", false, false, true}, {StripFocus::ValueBox, L"", true, true, false},
        {StripFocus::ValueBox, watermark, true, true, false}, {StripFocus::ValueBox, L"HKCU\\a", true, false, true},
        {StripFocus::Elsewhere, L"", false, false, true},     {StripFocus::Elsewhere, L"HKCU\\a", false, false, true},
    };
    for (const auto& c : cases) {
        const StripReturn decided = DecideStripReturn(c.focus, c.key, watermark);
        EXPECT_EQ(decided.focusKeyBox, c.focusKeyBox);
        EXPECT_EQ(decided.clearKeyBox, c.clearKeyBox);
        EXPECT_EQ(decided.commit, c.commit);
    }
}
