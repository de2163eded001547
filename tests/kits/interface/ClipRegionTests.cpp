#include <gtest/gtest.h>

#include "kits/interface/drawing/ClipRegion.h"

namespace {

bool Holds(const ClipRegion& region, float x, float y) {
    int count = 0;
    for (const BRect& rect : region.Rects())
        count += rect.Contains(BPoint(x, y));
    EXPECT_LE(count, 1) << "rectangles overlap at " << x << ", " << y;
    return count == 1;
}

// Every pixel of a small square, against the rule itself.
void ExpectPixels(const ClipRegion& region, bool (*rule)(float x, float y)) {
    for (float y = 0; y < 12; y++) {
        for (float x = 0; x < 12; x++)
            EXPECT_EQ(Holds(region, x, y), rule(x, y)) << x << ", " << y;
    }
}

} // namespace

TEST(ClipRegion, ExcludesHolesIncludesWithoutOverlapAndIntersects) {
    ClipRegion region(BRect(1, 1, 10, 10));
    region.Exclude({4, 4, 6, 6});
    region.Exclude({9, 0, 11, 3});
    ExpectPixels(region, [](float x, float y) {
        bool inside = x >= 1 && x <= 10 && y >= 1 && y <= 10;
        bool hole = x >= 4 && x <= 6 && y >= 4 && y <= 6;
        return inside && !hole && !(x >= 9 && y <= 3);
    });
    region = ClipRegion(BRect(0, 0, 5, 5));
    region.Include({3, 3, 9, 9});
    region.Include({20, 20, 10, 10}); // not valid: covers nothing
    EXPECT_EQ(region.Frame(), BRect(0, 0, 9, 9));
    region.IntersectWith(ClipRegion(BRect(4, 0, 11, 11)));
    ExpectPixels(region, [](float x, float y) {
        bool either = (x <= 5 && y <= 5) || (x >= 3 && x <= 9 && y >= 3 && y <= 9);
        return either && x >= 4;
    });
}

TEST(ClipRegion, StaysSmallWhateverIsIncluded) {
    ClipRegion region;
    for (int i = 0; i < 1000; i++)
        region.Include(
            BRect(0, 0, 1, 1).OffsetByCopy(static_cast<float>(i % 100) * 3, i / 100 * 3));
    EXPECT_LE(region.Rects().size(), 40u);
    EXPECT_EQ(region.Frame(), BRect(0, 0, 298, 28));
}
