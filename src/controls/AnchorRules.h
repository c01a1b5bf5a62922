// How a control follows the size of the window that it lies in, one axis at a time. Near means left or top, far means
// right or bottom; all numbers are pixels.
#pragma once

#include <cstdint>

// Flags of one axis; an edge that none of them holds moves in proportion to the window's size.
inline constexpr std::uint32_t kAnchorKeepSize = 1;
inline constexpr std::uint32_t kAnchorNear = 2;  // the near edge stays where it was
inline constexpr std::uint32_t kAnchorFar = 4;   // the far edge stays as far from the window's far edge as it was
// With kAnchorKeepSize and kAnchorFar both edges move with the window's far edge.

// A control's edges along one axis.
struct AnchoredSpan {
    int start = 0;
    int end = 0;
    bool operator==(const AnchoredSpan&) const = default;
};

// The edges in a window of size `newSize`, for a control that had `original` at `oldSize`, which is not 0. Proportions
// are cut towards 0. The end may come to lie before the start.
AnchoredSpan FollowSize(const AnchoredSpan& original, std::uint32_t flags, int oldSize, int newSize);
