// Points, sizes and rectangles, in whatever unit their source has: pixels, mostly.
#pragma once

#include "framework/Api.h"

class CSize : public SIZE {
public:
    CSize() : SIZE{} {}
    CSize(int width, int height) : SIZE{width, height} {}
    CSize(SIZE size) : SIZE(size) {}  // NOLINT(google-explicit-constructor)

    friend bool operator==(CSize left, CSize right) { return left.cx == right.cx && left.cy == right.cy; }
};

class CPoint : public POINT {
public:
    CPoint() : POINT{} {}
    CPoint(int left, int top) : POINT{left, top} {}
    CPoint(POINT point) : POINT(point) {}  // NOLINT(google-explicit-constructor)
    // The low and the high half of a message's parameter, each with its sign.
    explicit CPoint(LPARAM packed) : POINT{static_cast<short>(LOWORD(packed)), static_cast<short>(HIWORD(packed))} {}

    friend bool operator==(CPoint left, CPoint right) { return left.x == right.x && left.y == right.y; }
};

// The right and bottom edges do not belong to it.
class CRect : public RECT {
public:
    CRect() : RECT{} {}
    CRect(int l, int t, int r, int b) : RECT{l, t, r, b} {}
    CRect(const RECT& rect) : RECT(rect) {}  // NOLINT(google-explicit-constructor)
    CRect(POINT topLeft, SIZE size) : RECT{topLeft.x, topLeft.y, topLeft.x + size.cx, topLeft.y + size.cy} {}

    operator LPRECT() { return this; }         // NOLINT(google-explicit-constructor)
    operator LPCRECT() const { return this; }  // NOLINT(google-explicit-constructor)

    // Negative when the edges stand crosswise.
    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    CPoint TopLeft() const { return {left, top}; }

    BOOL PtInRect(POINT point) const { return ::PtInRect(this, point); }
    void DeflateRect(int x, int y) { ::InflateRect(this, -x, -y); }
    friend bool operator==(const CRect& first, const CRect& second) { return ::EqualRect(&first, &second); }
};
