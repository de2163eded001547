#pragma once

#include <algorithm>

#include "base/Point.h"

// A rectangle in logical pixels that includes its right and bottom pixel: (0, 0, 0, 0) covers one
// pixel, and the width of (0, 0, 9, 9) is 9 although it covers ten columns. One whose right is less
// than its left, or bottom less than its top, covers nothing and is not valid.
class BRect {
public:
    BRect() = default;
    BRect(float left_, float top_, float right_, float bottom_)
        : left(left_)
        , top(top_)
        , right(right_)
        , bottom(bottom_) {}
    BRect(BPoint leftTop, BPoint rightBottom)
        : BRect(leftTop.x, leftTop.y, rightBottom.x, rightBottom.y) {}

    bool IsValid() const { return left <= right && top <= bottom; }
    float Width() const { return right - left; }
    float Height() const { return bottom - top; }

    BPoint LeftTop() const { return {left, top}; }
    BPoint RightTop() const { return {right, top}; }
    BPoint LeftBottom() const { return {left, bottom}; }
    BPoint RightBottom() const { return {right, bottom}; }

    bool Contains(BPoint point) const {
        return point.x >= left && point.x <= right && point.y >= top && point.y <= bottom;
    }
    bool Intersects(BRect other) const {
        return IsValid() && other.IsValid() && (*this & other).IsValid();
    }

    void OffsetBy(float x, float y) { *this = OffsetByCopy(x, y); }
    void OffsetBy(BPoint by) { OffsetBy(by.x, by.y); }
    BRect OffsetByCopy(float x, float y) const {
        return {left + x, top + y, right + x, bottom + y};
    }
    BRect OffsetByCopy(BPoint by) const { return OffsetByCopy(by.x, by.y); }
    BRect OffsetToCopy(BPoint leftTop) const { return OffsetByCopy(leftTop - LeftTop()); }

    void InsetBy(float x, float y) { *this = InsetByCopy(x, y); }
    BRect InsetByCopy(float x, float y) const { return {left + x, top + y, right - x, bottom - y}; }

    // The part that both cover; not valid if there is none.
    BRect operator&(BRect other) const {
        return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
                std::min(bottom, other.bottom)};
    }
    // The smallest rectangle that covers both.
    BRect operator|(BRect other) const {
        return {std::min(left, other.left), std::min(top, other.top), std::max(right, other.right),
                std::max(bottom, other.bottom)};
    }
    bool operator==(const BRect&) const = default;

    float left = 0;
    float top = 0;
    float right = -1;
    float bottom = -1;
};
