// The decisions of the controls, on numbers and texts alone.
#include <gtest/gtest.h>
#include <vector>

#include "controls/AnchorRules.h"
#include "controls/CellGeometry.h"
#include "controls/TreeOrder.h"

TEST(FollowSize, EachSetOfFlagsInALargerAndASmallerWindow) {
    const struct {
        std::uint32_t flags = 0;
        AnchoredSpan at150, at33;
    } cases[] = {
        {0, {15, 52}, {3, 11}},
        {kAnchorKeepSize, {15, 40}, {3, 28}},
        {kAnchorNear, {10, 52}, {10, 11}},
        {kAnchorNear | kAnchorKeepSize, {10, 35}, {10, 35}},
        {kAnchorFar, {15, 85}, {3, -32}},
        {kAnchorFar | kAnchorKeepSize, {60, 85}, {-57, -32}},
        {kAnchorFar | kAnchorNear, {10, 85}, {10, -32}},
        {kAnchorFar | kAnchorNear | kAnchorKeepSize, {10, 85}, {10, -32}},
    };
    for (const auto& [flags, at150, at33] : cases) {  // a control from 10 to 35 in a window of 100
        EXPECT_EQ(FollowSize({10, 35}, flags, 100, 150), at150) << flags;
        EXPECT_EQ(FollowSize({10, 35}, flags, 100, 33), at33) << flags;
        EXPECT_EQ(FollowSize({10, 35}, flags, 100, 100), (AnchoredSpan{10, 35})) << flags;
    }
    EXPECT_EQ(FollowSize({-15, 35}, 0, 100, 50), (AnchoredSpan{-7, 17})) << "cut towards 0";
}

TEST(CellGeometry, HitsTheColumnLeftOfADividerAndScrollsAsFarAsACellNeeds) {
    const std::vector<int> widths{61, 373, 95};  // the rules list's own: dividers at 61, 434 and 529
    const struct {
        int left, x, column;
    } hits[] = {{0, -1, -1},    {0, 0, 0},      {0, 61, 0},     {0, 62, 1},    {0, 434, 1},
                {0, 435, 2},    {0, 529, 2},    {0, 530, -1},   {-100, -1, 1}, {-100, -39, 0},
                {-100, -38, 1}, {-100, 429, 2}, {-100, 430, -1}};
    for (const auto& [left, x, column] : hits) EXPECT_EQ(ColumnAt(widths, left, x), column) << left << ", " << x;
    EXPECT_EQ(ColumnAt(std::vector{10, 0, 20}, 0, 10), 0);
    EXPECT_EQ(ColumnAt(std::vector{10, 0, 20}, 0, 11), 2) << "a column of no width is passed over";
    EXPECT_EQ(ColumnAt(std::vector{0, 20}, 0, 0), 0) << "but holds its one point at the very left";
    EXPECT_EQ(ColumnAt({}, 0, 0), -1);

    const struct {
        int column, rowLeft, clientRight, scroll, left, right;
        const char* why;
    } places[] = {{0, 0, 529, 0, 0, 61, "in view"},
                  {2, 0, 529, 0, 434, 529, "in view, its right edge just on the client's"},
                  {2, 0, 528, 1, 433, 528, "one pixel short on the right"},
                  {1, 0, 61, 373, -312, 61, "begins on the right edge, which is inside: the right edge is brought in"},
                  {1, 0, 60, 61, 0, 373, "begins beyond the right edge: goes to the left edge"},
                  {0, -100, 400, -100, 0, 61, "scrolled away to the left: comes back"},
                  {1, -100, 400, -39, 0, 373, "partly away to the left: comes back"},
                  {1, -61, 200, 173, -173, 200, "wider than the client area: the right edge wins"}};
    for (const auto& place : places) {
        const CellPlacement placed = PlaceCell(widths, place.column, place.rowLeft, 0, place.clientRight);
        EXPECT_EQ(placed.scroll, place.scroll) << place.why;
        EXPECT_EQ(placed.left, place.left) << place.why;
        EXPECT_EQ(placed.right, place.right) << place.why;
    }
    for (const auto& [items, rows] : {std::pair{0, 10}, {3, 13}, {9, 19}, {10, 11}, {20, 11}})
        EXPECT_EQ(DropDownRows(items), rows) << items;
}

TEST(CompareSiblings, PutsKeysAboveValuesAndCapitalsAboveSmallLetters) {
    constexpr auto key = TreeItemKind::Key;
    constexpr auto value = TreeItemKind::Value;
    const struct {
        TreeItemKind kind;
        const wchar_t* text;
    } ordered[] = {{key, L""},       {key, L"Apple"},  {key, L"Zebra"}, {key, L"a"},   {key, L"a b"},
                   {key, L"a10"},    {key, L"a2"},     {key, L"a_b"},   {key, L"z"},   {key, L"\u00e4"},
                   {key, L"\u7fff"}, {key, L"\uff21"}, {value, L""},    {value, L"A"}, {value, L"a"}};
    for (const auto& a : ordered) {
        for (const auto& b : ordered) {
            const int order = CompareSiblings(a.kind, a.text, b.kind, b.text);
            EXPECT_EQ((order > 0) - (order < 0), (&a > &b) - (&a < &b)) << &a - ordered << ", " << &b - ordered;
        }
    }
}
