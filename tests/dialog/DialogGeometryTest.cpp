#include "dialog/DialogGeometry.h"

#include <gtest/gtest.h>

#include "resources/resource.h"

using geometry::Box;

namespace geometry {
void PrintTo(const Box& box, std::ostream* out) {
    *out << box.left << "," << box.top << " - " << box.right << "," << box.bottom;
}
}  // namespace geometry

TEST(DialogGeometry, RightAndBottomAreOutsideABox) {
    const Box box{10, 20, 30, 40};
    EXPECT_TRUE(geometry::Contains(box, 10, 20));
    EXPECT_TRUE(geometry::Contains(box, 29, 39));
    EXPECT_FALSE(geometry::Contains(box, 30, 39));
    EXPECT_FALSE(geometry::Contains(box, 29, 40));
    EXPECT_FALSE(geometry::Contains(box, 9, 20));
}

TEST(DialogGeometry, AHeadGrowsWithTheFontAndNeverShrinks) {
    const Box frame{100, 50, 170, 76};
    const Box label{105, 54, 145, 70};
    const struct {
        int spacing, fontHeight;
        Box frame, label;
    } cases[] = {
        {0, 13, {100, 50, 170, 76}, {105, 56, 145, 72}},   // high enough already: only the label moves
        {2, 13, {100, 50, 170, 80}, {105, 60, 145, 76}},   // 30 high; label at 6 + 4
        {2, 24, {100, 50, 170, 102}, {105, 66, 145, 90}},  // the label becomes as high as its text
        {3, 9, {100, 50, 170, 76}, {105, 60, 145, 76}},    // half of 9 is 4
    };
    for (const auto& c : cases) {
        const auto fitted =
            geometry::FitHeaderCell({frame, label}, c.fontHeight, geometry::MinFrameHeight(c.spacing, c.fontHeight),
                                    geometry::LabelOffset(c.spacing, c.fontHeight));
        EXPECT_EQ(fitted.frame, c.frame) << c.spacing << " " << c.fontHeight;
        EXPECT_EQ(fitted.label, c.label) << c.spacing << " " << c.fontHeight;
    }
}

TEST(DialogGeometry, TheGapLiesBetweenTreeAndListAlsoWhenTheyOverlap) {
    EXPECT_EQ(geometry::SplitterBox({10, 40, 100, 300}, {108, 60, 500, 300}), (Box{100, 40, 108, 300}));
    EXPECT_EQ(geometry::SplitterBox({10, 300, 100, 40}, {90, 60, 500, 300}), (Box{90, 40, 100, 300}));
}
