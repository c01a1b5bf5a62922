#include "registry/VersionText.h"

#include <gtest/gtest.h>
#include <string>

TEST(VersionText, IsReadAsFourNumbersAtMost) {
    const struct {
        std::wstring_view text;
        VersionParts expected;
    } cases[] = {
        {L"", {}},
        {L"8.1.0.5", {8, 1, 0, 5}},
        {L"10", {10, 0, 0, 0}},
        {L"1.2.3.4.5", {1, 2, 3, 4}},
        {L"..3", {0, 0, 3, 0}},
        {L"a.2b. 3.x4", {0, 2, 3, 0}},
        {L"-1.99999999999", {0xFFFFFFFF, 0x7FFFFFFF, 0, 0}},
        {L"1,2,3", {1, 0, 0, 0}},
    };
    for (const auto& c : cases) EXPECT_EQ(ParseVersionParts(c.text), c.expected) << testing::PrintToString(c.text);
}

TEST(VersionText, IsComparedByAsManyPartsAsAskedAndKnownByItsBeginning) {
    const VersionParts longer{8, 1, 0, 5};
    const VersionParts shorter{8, 1, 0, 0};
    for (const int count : {-3, 0, 2, 3, 4, 100}) {
        EXPECT_TRUE(IsAtLeast(longer, shorter, count)) << count;
        EXPECT_EQ(IsAtLeast(shorter, longer, count), count < 4) << count;
        EXPECT_EQ(IsAtLeast({9, 9, 9, 9}, {10, 0, 0, 0}, count), count <= 0) << count;
    }
    EXPECT_TRUE(IsAtLeast({0xFFFFFFFF, 0, 0, 0}, {1, 0, 0, 0}, 1));
    for (const std::wstring_view known : {L"8.0", L"8.21", L"8.8", L"10.5.1.2", L"11.0"})
        EXPECT_TRUE(BeginsWithKnownProductVersion(known)) << testing::PrintToString(known);
    for (const std::wstring_view unknown : {L"", L"8", L"8.3", L"8.4.1", L"9.0", L"18.0", L"10.6", L"11.1", L"08.0"})
        EXPECT_FALSE(BeginsWithKnownProductVersion(unknown)) << testing::PrintToString(unknown);
}
