#include "dialog/DialogGeometry.h"

#include <algorithm>

#include "resources/resource.h"

namespace geometry {

bool Contains(const Box& box, int x, int y) {
    return x >= box.left && x < box.right && y >= box.top && y < box.bottom;
}

Box MovedToTop(const Box& box, int top) {
    return {box.left, top, box.right, top + box.bottom - box.top};
}

int MinFrameHeight(int spacing, int fontHeight) {
    return (spacing + fontHeight) * 2;
}

int LabelOffset(int spacing, int fontHeight) {
    return fontHeight / 2 + spacing * 2;
}

HeaderCell FitHeaderCell(const HeaderCell& cell, int textHeight, int minFrameHeight, int labelOffset) {
    HeaderCell fitted = cell;
    fitted.frame.bottom = std::max(fitted.frame.bottom, fitted.frame.top + minFrameHeight);
    fitted.label = MovedToTop(fitted.label, fitted.frame.top + labelOffset);
    fitted.label.bottom = std::max(fitted.label.bottom, fitted.label.top + textHeight);
    return fitted;
}

Box SplitterBox(const Box& tree, const Box& list) {
    const auto [left, right] = std::minmax(tree.right, list.left);
    const auto [top, bottom] = std::minmax(tree.top, tree.bottom);
    return {left, top, right, bottom};
}

std::span<const SplitterFollower> SplitterFollowers() {
    // The Type head travels with the gap, the Key head takes up the change, the Value head stays. The order is the
    // order of repainting.
    static constexpr SplitterFollower followers[] = {
        {IDC_REGISTRY_TREE, false, true}, {IDC_RULE_LIST, true, false}, {IDC_NEW_TYPE, true, true},
        {IDC_TYPE_LABEL, true, true},     {IDC_TYPE_FRAME, true, true}, {IDC_NEW_KEY, true, false},
        {IDC_KEY_LABEL, true, false},     {IDC_KEY_FRAME, true, false},
    };
    return followers;
}

Box Follow(const SplitterFollower& follower, const Box& box, int delta) {
    Box moved = box;
    if (follower.leftMoves) moved.left -= delta;
    if (follower.rightMoves) moved.right -= delta;
    return moved;
}

}  // namespace geometry
