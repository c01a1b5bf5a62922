#include "helpers/ParseText.h"

#include <gtest/gtest.h>

TEST(SplitDotted, ReplacesWhatTheListHeld) {
    CStringList pieces;
    pieces.AddTail(L"old");
    EXPECT_EQ(SplitDotted(L"1..2.", pieces), 4);
    CString joined;
    for (POSITION place = pieces.GetHeadPosition(); place;) joined += L"[" + pieces.GetNext(place) + L"]";
    EXPECT_EQ(joined, L"[1][][2][]");
    EXPECT_EQ(SplitDotted(L"", pieces), 1);
}

TEST(ParseIntInRange, CrossedBoundsAreAFaultUnlessThereIsNoText) {
    EXPECT_TRUE(ParseIntInRange(L"5", 5, 5));
    EXPECT_FALSE(ParseIntInRange(L"6", 5, 5));
    EXPECT_FALSE(ParseIntInRange(L"", 2, 1));
    EXPECT_THROW(ParseIntInRange(L"1", 2, 1), CInvalidArgException*);
}
