#include "kits/interface/menus/MenuPlacement.h"

#include <algorithm>

namespace {

// Neighbours share their border.
constexpr float kOverlap = 2;

// How far past the corners of a sub-menu a hand may aim.
constexpr float kSlack = 12;

// Positive if `point` is on the right of the way from `from` to `to`.
float Side(BPoint from, BPoint to, BPoint point) {
    const BPoint way = to - from;
    const BPoint other = point - from;
    return way.x * other.y - way.y * other.x;
}

} // namespace

BRect PlaceMenu(BPoint where, float width, float height, BRect monitor) {
    const float shownWidth = std::min(width, monitor.Width() + 1);
    const float shownHeight = std::min(height, monitor.Height() + 1);
    const float left = std::clamp(where.x, monitor.left, monitor.right + 1 - shownWidth);
    const float top = std::clamp(where.y, monitor.top, monitor.bottom + 1 - shownHeight);
    return {left, top, left + shownWidth - 1, top + shownHeight - 1};
}

BRect PlaceSubmenu(BRect menu, BRect item, float width, float height, BRect monitor) {
    const float onRight = menu.right + 1 - kOverlap;
    const float onLeft = menu.left + kOverlap - width;
    const bool fitsRight = onRight + width <= monitor.right + 1;
    const bool fitsLeft = onLeft >= monitor.left;
    const float roomRight = monitor.right - menu.right;
    const float roomLeft = menu.left - monitor.left;
    const bool right = fitsRight || (!fitsLeft && roomRight >= roomLeft);
    return PlaceMenu({right ? onRight : onLeft, item.top - kMenuInset}, width, height, monitor);
}

bool HeadsForSubmenu(BPoint apex, BPoint where, BRect submenu) {
    const bool right = submenu.left + submenu.right > 2 * apex.x;
    const float near = right ? submenu.left : submenu.right;
    const BPoint upper(near, submenu.top - kSlack);
    const BPoint lower(near, submenu.bottom + kSlack);
    const float sign = right ? 1 : -1;
    return sign * Side(apex, upper, where) >= 0 && sign * Side(apex, lower, where) <= 0;
}
