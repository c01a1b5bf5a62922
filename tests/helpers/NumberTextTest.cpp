#include "helpers/NumberText.h"

#include <gtest/gtest.h>
#include <string>

TEST(IsIntInRange, TakesOneWholeNumberWithinTheBounds) {
    for (const wchar_t* text : {L"1", L"100", L" 12", L"\t+12", L"012"}) {
        EXPECT_TRUE(IsIntInRange(text, 1, 100)) << testing::PrintToString(text);
    }
    for (const wchar_t* text : {L"", L" ", L"0", L"101", L"12x", L"12 ", L"x12", L"-12", L"0x10", L"+", L"1.0", L"- 12",
                                L"4294967297", L"99999999999999999999", L"18446744073709551617"}) {
        EXPECT_FALSE(IsIntInRange(text, 1, 100)) << testing::PrintToString(text);
    }
    EXPECT_FALSE(IsIntInRange(nullptr, 1, 100));
    EXPECT_TRUE(IsIntInRange(L"2147483647", INT32_MIN, INT32_MAX));
    EXPECT_FALSE(IsIntInRange(L"2147483648", INT32_MIN, INT32_MAX));
}

TEST(GroupingNumber, FollowsTheLocaleText) {
    // Without the ending the text runs out: each number, the last too, moves the ones before it up. What cannot be read
    // counts 0, and one character is passed over.
    const std::pair<std::wstring_view, std::uint32_t> cases[] = {
        {L"3;0", 3},   {L"3;2;0", 32}, {L"0;0", 0},   {L"4;0", 4},    {L"3;2;1;0", 321}, {L"3", 30},
        {L"3;2", 320}, {L"3;", 30},    {L"", 0},      {L"0", 0},      {L";", 0},         {L";0", 0},
        {L"x;0", 0},   {L"3x;0", 30},  {L"3;;0", 30}, {L"3;0 ", 300},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(GroupingNumber(text), expected) << testing::PrintToString(std::wstring(text));
    }
}
