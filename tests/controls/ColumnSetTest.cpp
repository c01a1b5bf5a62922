#include "controls/ColumnSet.h"

#include <gtest/gtest.h>

TEST(ColumnSet, HoldsAColumnOnce) {
    ColumnSet columns;
    EXPECT_FALSE(columns.Contains(0));
    columns.Set(0, true);
    columns.Set(0, true);
    columns.Set(2, true);
    EXPECT_TRUE(columns.Contains(0));
    EXPECT_FALSE(columns.Contains(1));

    columns.Set(0, false);
    EXPECT_FALSE(columns.Contains(0)) << "a second entry of the column was left behind";
    EXPECT_TRUE(columns.Contains(2));
    columns.Set(1, false);
    EXPECT_FALSE(columns.Contains(1));
}
