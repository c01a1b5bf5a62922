// Case, blanks, digits and numbers in text.
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "helpers/AsciiCase.h"
#include "helpers/HexText.h"
#include "helpers/NumberText.h"
#include "helpers/Trim.h"

namespace {

std::vector<int> Read(std::wstring_view text) {
    std::vector<std::uint8_t> bytes(text.size() / 2);
    ReadHexPairs(text, bytes);
    return {bytes.begin(), bytes.end()};
}

}  // namespace

TEST(AsciiCase, OnlyLatinLettersHaveTwoCases) {
    EXPECT_TRUE(EqualIgnoringAsciiCase(L"Hkey_Az@[`{", L"HKEY_aZ@[`{"));
    // A text that goes on, a long s, and the neighbours of the letters.
    for (const auto& [a, b] : {std::pair{L"HKEY_USER", L"HKEY_USERS"}, {L"\u017FY", L"SY"}, {L"[", L"{"}, {L"@", L"`"}})
        EXPECT_FALSE(EqualIgnoringAsciiCase(a, b)) << a;
    EXPECT_TRUE(StartsWithIgnoringAsciiCase(L"softwareX", L"SOFTWARE"));
    EXPECT_FALSE(StartsWithIgnoringAsciiCase(L"soft", L"SOFTWARE"));
    EXPECT_EQ(FindIgnoringAsciiCase(L"a\\CurrentControlSet", L"currentcontrolset"), 2U);
    EXPECT_EQ(FindIgnoringAsciiCase(L"currentcontrolse", L"currentcontrolset"), std::wstring_view::npos);
    EXPECT_EQ(FindIgnoringAsciiCase(L"", L""), 0U);
}

TEST(TrimBlanks, TakesBlanksOffBothEndsAndNothingElse) {
    for (const auto& [text, trimmed] :
         {std::pair{L"", L""}, {L"   ", L""}, {L"  a b ", L"a b"}, {L" \ta\t ", L"\ta\t"}}) {
        EXPECT_EQ(TrimBlanks(text), trimmed);
    }
}

TEST(HexText, APairThatIsNoNumberReadsAsFarAsItGoes) {
    const std::uint8_t bytes[] = {0x00, 0x09, 0x0a, 0x10, 0x7f, 0x80, 0xde, 0xff};
    std::wstring digits(16, L'?');
    WriteHexDigits(bytes, digits);
    EXPECT_EQ(digits, L"00090a107f80deff");
    EXPECT_EQ(Read(digits + L"DEFF"), (std::vector{0x00, 0x09, 0x0a, 0x10, 0x7f, 0x80, 0xde, 0xff, 0xde, 0xff}));
    EXPECT_EQ(Read(L"zzz11zg0/:@G"), (std::vector{0, 0, 1, 0, 0, 0}));
    EXPECT_EQ(Read(L" 1-1+f0x"), (std::vector{0x01, 0xff, 0x0f, 0x00}));
    EXPECT_EQ(Read({L"\0001\x4E2D\xD831\x80\x80", 6}), (std::vector{0, 0, 0}));
}

TEST(NumberText, TakesOneWholeNumberWithinTheBounds) {
    for (const wchar_t* text : {L"1", L"100", L" 12", L"\t+12", L"012"})
        EXPECT_TRUE(IsIntInRange(text, 1, 100)) << text;
    for (const wchar_t* text : {L"", L" ", L"0", L"101", L"12x", L"12 ", L"x12", L"-12", L"0x10", L"+", L"1.0", L"- 12",
                                L"4294967297", L"99999999999999999999", L"18446744073709551617"}) {
        EXPECT_FALSE(IsIntInRange(text, 1, 100)) << text;
    }
    EXPECT_FALSE(IsIntInRange(nullptr, 1, 100));
    EXPECT_TRUE(IsIntInRange(L"2147483647", INT32_MIN, INT32_MAX));
    EXPECT_FALSE(IsIntInRange(L"2147483648", INT32_MIN, INT32_MAX));
    EXPECT_FALSE(IsIntInRange(L"-2147483649", INT32_MIN, INT32_MAX));
}

TEST(NumberText, GroupingFollowsTheLocaleText) {
    // Without the ending the text runs out: each number, the last too, moves the ones before it up. What cannot be read
    // counts 0, and one character is passed over.
    const std::pair<const wchar_t*, std::uint32_t> cases[] = {
        {L"3;0", 3}, {L"3;2;0", 32}, {L"0;0", 0}, {L"3;2;1;0", 321}, {L"3", 30},    {L"3;2", 320}, {L"3;", 30},
        {L"", 0},    {L";", 0},      {L";0", 0},  {L"x;0", 0},       {L"3x;0", 30}, {L"3;;0", 30}, {L"3;0 ", 300}};
    for (const auto& [text, expected] : cases) EXPECT_EQ(GroupingNumber(text), expected) << text;
}
