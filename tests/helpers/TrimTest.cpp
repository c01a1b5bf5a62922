#include "helpers/Trim.h"

#include <gtest/gtest.h>

TEST(TrimBlanks, TakesBlanksOffBothEndsAndNothingElse) {
    EXPECT_EQ(TrimBlanks(L""), L"");
    EXPECT_EQ(TrimBlanks(L"   "), L"");
    EXPECT_EQ(TrimBlanks(L"  a b "), L"a b");
    EXPECT_EQ(TrimBlanks(L" \ta\t "), L"\ta\t");
}
