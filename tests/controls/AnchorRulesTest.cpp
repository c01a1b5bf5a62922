#include "controls/AnchorRules.h"

#include <gtest/gtest.h>

TEST(FollowSize, EachSetOfFlagsInALargerAndASmallerWindow) {
    // A control from 10 to 35 in a window of 100.
    struct Case {
        std::uint32_t flags;
        AnchoredSpan at150;
        AnchoredSpan at33;
    };
    const Case cases[] = {
        {0, {15, 52}, {3, 11}},
        {kAnchorKeepSize, {15, 40}, {3, 28}},
        {kAnchorNear, {10, 52}, {10, 11}},
        {kAnchorNear | kAnchorKeepSize, {10, 35}, {10, 35}},
        {kAnchorFar, {15, 85}, {3, -32}},
        {kAnchorFar | kAnchorKeepSize, {60, 85}, {-57, -32}},
        {kAnchorFar | kAnchorNear, {10, 85}, {10, -32}},
        {kAnchorFar | kAnchorNear | kAnchorKeepSize, {10, 85}, {10, -32}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.flags);
        EXPECT_EQ(FollowSize({10, 35}, c.flags, 100, 150), c.at150);
        EXPECT_EQ(FollowSize({10, 35}, c.flags, 100, 33), c.at33);
        EXPECT_EQ(FollowSize({10, 35}, c.flags, 100, 100), (AnchoredSpan{10, 35}));
    }
    EXPECT_EQ(FollowSize({-15, 35}, 0, 100, 50), (AnchoredSpan{-7, 17})) << "cut towards 0";
}
