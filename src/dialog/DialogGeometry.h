// The arithmetic of the strip's layout and of the splitter. All rectangles are in the dialog's client pixels; right and
// bottom are just outside.
#pragma once

#include <span>

namespace geometry {

struct Box {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    bool operator==(const Box&) const = default;
};

bool Contains(const Box& box, int x, int y);
Box MovedToTop(const Box& box, int top);

// The heads over the strip, from the height of the dialog's font and the height of the control spacing.
int MinFrameHeight(int spacing, int fontHeight);
int LabelOffset(int spacing, int fontHeight);

// One head: a label centred in its frame.
struct HeaderCell {
    Box frame;
    Box label;
};
HeaderCell FitHeaderCell(const HeaderCell& cell, int textHeight, int minFrameHeight, int labelOffset);

// The gap between tree and list, which takes the mouse; swapped edges are put right.
Box SplitterBox(const Box& tree, const Box& list);

// How a control follows the splitter: which of its edges move with the gap.
struct SplitterFollower {
    int controlId;
    bool leftMoves;
    bool rightMoves;
};
std::span<const SplitterFollower> SplitterFollowers();
// `delta` counts to the left.
Box Follow(const SplitterFollower& follower, const Box& box, int delta);

}  // namespace geometry
