#pragma once

#include <vector>

#include "base/Rect.h"

// A set of logical pixels, as rectangles that do not overlap.
class ClipRegion {
public:
    ClipRegion() = default;
    explicit ClipRegion(BRect rect) { Include(rect); }

    void Include(BRect rect);
    void Exclude(BRect rect);
    void IntersectWith(BRect rect);
    void IntersectWith(const ClipRegion& other);

    bool Contains(BPoint point) const;
    bool IsEmpty() const { return fRects.empty(); }
    // The smallest rectangle around it; not valid if it is empty.
    BRect Frame() const;
    const std::vector<BRect>& Rects() const { return fRects; }

private:
    std::vector<BRect> fRects;
};
