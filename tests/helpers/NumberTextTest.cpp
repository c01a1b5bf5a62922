#include "helpers/NumberText.h"

#include <gtest/gtest.h>
#include <limits>

TEST(IsIntInRange, TakesOneWholeNumberWithinTheBounds) {
    struct Case {
        const wchar_t* text;
        bool expected;  // for 1 to 100
    };
    const Case cases[] = {
        {nullptr, false},
        {L"", false},
        {L" ", false},
        {L"1", true},
        {L"100", true},
        {L"0", false},
        {L"101", false},
        {L"12x", false},
        {L"12 ", false},
        {L"x12", false},
        {L" 12", true},
        {L"\t+12", true},
        {L"-12", false},
        {L"0x10", false},
        {L"012", true},
        {L"+", false},
        {L"1.0", false},
        {L"- 12", false},
        {L"4294967297", false},
        {L"99999999999999999999", false},
        {L"18446744073709551617", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.text ? std::wstring(c.text) : L"(null)"));
        EXPECT_EQ(IsIntInRange(c.text, 1, 100), c.expected);
    }
}

TEST(GroupingNumber, FollowsTheLocaleText) {
    struct Case {
        std::wstring_view text;
        std::uint32_t expected;
    };
    const Case cases[] = {
        {L"3;0", 3},
        {L"3;2;0", 32},
        {L"0;0", 0},
        {L"4;0", 4},
        {L"3;2;1;0", 321},
        // Without the ending the text runs out: each number, the last too, moves the ones before it up.
        {L"3", 30},
        {L"3;2", 320},
        {L"3;", 30},
        {L"", 0},
        {L"0", 0},
        // Malformed: what cannot be read counts 0, and one character is passed over.
        {L";", 0},
        {L";0", 0},
        {L"x;0", 0},
        {L"3x;0", 30},
        {L"3;;0", 30},
        {L"3;0 ", 300},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.text)));
        EXPECT_EQ(GroupingNumber(c.text), c.expected);
    }
}
