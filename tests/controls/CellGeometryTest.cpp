#include "controls/CellGeometry.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

// The rules list's own columns: dividers at 61, 434 and 529.
const std::vector<int> kWidths{61, 373, 95};

struct HitCase {
    int left;
    int x;
    int column;
};

TEST(ColumnAt, GivesADividerToTheColumnOnItsLeft) {
    const HitCase cases[] = {
        {0, -1, -1}, {0, 0, 0},    {0, 60, 0},    {0, 61, 0},     {0, 62, 1},     {0, 434, 1},    {0, 435, 2},
        {0, 529, 2}, {0, 530, -1}, {-100, -1, 1}, {-100, -39, 0}, {-100, -38, 1}, {-100, 429, 2}, {-100, 430, -1},
    };
    for (const HitCase& hit : cases) {
        EXPECT_EQ(ColumnAt(kWidths, hit.left, hit.x), hit.column) << "left " << hit.left << ", x " << hit.x;
    }
}

TEST(ColumnAt, SkipsAColumnOfNoWidth) {
    const std::vector<int> widths{10, 0, 20};
    EXPECT_EQ(ColumnAt(widths, 0, 10), 0);
    EXPECT_EQ(ColumnAt(widths, 0, 11), 2);
    // At the very left edge a column without width still holds its one point.
    EXPECT_EQ(ColumnAt(std::vector<int>{0, 20}, 0, 0), 0);
    EXPECT_EQ(ColumnAt({}, 0, 0), -1);
}

struct PlaceCase {
    int column;
    int rowLeft;
    int clientRight;
    CellPlacement expected;
};

TEST(PlaceCell, ScrollsAsFarAsTheCellNeeds) {
    const PlaceCase cases[] = {
        // Whole cell in view, its right edge just on the client's.
        {0, 0, 529, {0, 0, 61}},
        {2, 0, 529, {0, 434, 529}},
        // One pixel short on the right.
        {2, 0, 528, {1, 433, 528}},
        // Begins just on the right edge: counts as inside, so the right edge is brought in.
        {1, 0, 61, {373, -312, 61}},
        // Begins beyond the right edge: goes to the left edge.
        {1, 0, 60, {61, 0, 373}},
        // Scrolled away to the left: comes back to the left edge, by a negative amount.
        {0, -100, 400, {-100, 0, 61}},
        {1, -100, 400, {-39, 0, 373}},
        // Wider than the client area: the right edge wins, the left one is hidden.
        {1, -61, 200, {173, -173, 200}},
    };
    for (const PlaceCase& place : cases) {
        const CellPlacement placed = PlaceCell(kWidths, place.column, place.rowLeft, 0, place.clientRight);
        SCOPED_TRACE(testing::Message() << "column " << place.column << ", row at " << place.rowLeft << ", client to "
                                        << place.clientRight);
        EXPECT_EQ(placed.scroll, place.expected.scroll);
        EXPECT_EQ(placed.left, place.expected.left);
        EXPECT_EQ(placed.right, place.expected.right);
    }
}

TEST(DropDownRows, FallsBackToAFixedHeightFromTenEntriesOn) {
    EXPECT_EQ(DropDownRows(0), 10);
    EXPECT_EQ(DropDownRows(3), 13);
    EXPECT_EQ(DropDownRows(9), 19);
    EXPECT_EQ(DropDownRows(10), 11);
    EXPECT_EQ(DropDownRows(20), 11);
}

}  // namespace
