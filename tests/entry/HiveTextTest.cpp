#include "entry/HiveText.h"

#include <gtest/gtest.h>

#include "entry/Hives.h"

TEST(HiveText, TheTableIsFilledFromTheStringTable) {
    for (std::size_t row = 0; row < Hives().size(); ++row) {
        EXPECT_EQ(Hives()[row].rootKey, ShippedHives()[row].rootKey);
        EXPECT_EQ(Hives()[row].fullName, ShippedHives()[row].fullName);
        EXPECT_EQ(Hives()[row].abbreviation, ShippedHives()[row].abbreviation);
    }
}
