#include "kits/interface/drawing/ClipRegion.h"

#include <algorithm>

namespace {

// Beyond this many a region costs more than drawing a little too much.
constexpr size_t kMaxRects = 32;

void AddIfValid(std::vector<BRect>& rects, BRect rect) {
    if (rect.IsValid())
        rects.push_back(rect);
}

} // namespace

void ClipRegion::Include(BRect rect) {
    const auto covers = [&](const BRect& known) { return (known & rect) == rect; };
    if (!rect.IsValid() || std::ranges::any_of(fRects, covers))
        return;
    Exclude(rect);
    fRects.push_back(rect);
    if (fRects.size() > kMaxRects)
        fRects = {Frame()};
}

// The rest of a rectangle lies above, below, left and right of the hole.
void ClipRegion::Exclude(BRect hole) {
    std::vector<BRect> left;
    for (const BRect& rect : fRects) {
        BRect cut = rect & hole;
        if (!cut.IsValid()) {
            left.push_back(rect);
            continue;
        }
        AddIfValid(left, {rect.left, rect.top, rect.right, cut.top - 1});
        AddIfValid(left, {rect.left, cut.bottom + 1, rect.right, rect.bottom});
        AddIfValid(left, {rect.left, cut.top, cut.left - 1, cut.bottom});
        AddIfValid(left, {cut.right + 1, cut.top, rect.right, cut.bottom});
    }
    fRects = std::move(left);
}

void ClipRegion::IntersectWith(BRect rect) {
    IntersectWith(ClipRegion(rect));
}

void ClipRegion::IntersectWith(const ClipRegion& other) {
    std::vector<BRect> common;
    for (const BRect& own : fRects) {
        for (const BRect& rect : other.fRects)
            AddIfValid(common, own & rect);
    }
    fRects = std::move(common);
}

bool ClipRegion::Contains(BPoint point) const {
    return std::any_of(fRects.begin(), fRects.end(),
                       [&](const BRect& rect) { return rect.Contains(point); });
}

BRect ClipRegion::Frame() const {
    if (fRects.empty())
        return {};
    BRect frame = fRects.front();
    for (const BRect& rect : fRects)
        frame = frame | rect;
    return frame;
}
