#include <gtest/gtest.h>

#include "kits/interface/window/Bitmap.h"
#include "kits/interface/window/View.h"

namespace {

uint32 PixelAt(const BBitmap& bitmap, int x, int y) {
    const host::Image picture = bitmap.Picture();
    const auto* row = reinterpret_cast<const uint32*>(picture.pixels + y * picture.stride);
    return row[x];
}

bool IsNear(uint32 pixel, uint32 wanted) {
    for (int shift = 0; shift < 32; shift += 8) {
        if (std::abs(static_cast<int>(pixel >> shift & 0xff) -
                     static_cast<int>(wanted >> shift & 0xff)) > 2)
            return false;
    }
    return true;
}

TEST(Bitmap, IsDrawnIntoByItsViewsAtHalfOpacity) {
    BBitmap icon(BRect(0, 0, 1, 0), B_CMAP8);
    icon.Bits()[0] = 5 * 36; // red; the other pixel stays none
    BBitmap image(BRect(0, 0, 9, 4), B_RGBA32, true);
    ASSERT_TRUE(image.Lock());
    auto* view = new BView(BRect(2, 1, 9, 4), "drag", B_FOLLOW_NONE, 0);
    image.AddChild(view);
    EXPECT_EQ(view->Parent(), nullptr);
    view->SetHighColor(0, 0, 0);
    view->FillRect(view->Bounds());
    view->SetHighColor(B_TRANSPARENT_COLOR);
    view->FillRect(BRect(0, 0, 20, 1)); // ends at the view's edge
    view->SetDrawingMode(B_OP_ALPHA);
    view->SetHighColor(0, 0, 255, 128);
    view->SetBlendingMode(B_CONSTANT_ALPHA, B_ALPHA_COMPOSITE);
    view->FillRect(BRect(0, 0, 0, 0));
    view->DrawBitmap(&icon, BPoint(2, 0));
    view->FillRect(BRect(5, 2, 5, 2));
    image.Unlock();

    EXPECT_EQ(PixelAt(image, 1, 1), 0u);
    EXPECT_TRUE(IsNear(PixelAt(image, 2, 1), 0x80000080));
    EXPECT_TRUE(IsNear(PixelAt(image, 4, 1), 0x80800000));
    EXPECT_EQ(PixelAt(image, 5, 1), 0u);
    EXPECT_EQ(PixelAt(image, 3, 2), 0u);
    EXPECT_EQ(PixelAt(image, 3, 3), 0xff000000u);
    EXPECT_TRUE(IsNear(PixelAt(image, 7, 3), 0xff000080));
}

} // namespace
