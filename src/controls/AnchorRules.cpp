#include "controls/AnchorRules.h"

AnchoredSpan FollowSize(const AnchoredSpan& original, std::uint32_t flags, int oldSize, int newSize) {
    const double scale = static_cast<double>(newSize) / oldSize;
    const int growth = newSize - oldSize;
    const bool keepsSize = (flags & kAnchorKeepSize) != 0;
    const bool holdsFar = (flags & kAnchorFar) != 0;

    AnchoredSpan span;
    if ((flags & kAnchorNear) != 0) {
        span.start = original.start;
    } else if (keepsSize && holdsFar) {
        span.start = original.start + growth;
    } else {
        span.start = static_cast<int>(original.start * scale);
    }
    if (holdsFar) {
        span.end = original.end + growth;
    } else if (keepsSize) {
        span.end = span.start + (original.end - original.start);
    } else {
        span.end = static_cast<int>(original.end * scale);
    }
    return span;
}
