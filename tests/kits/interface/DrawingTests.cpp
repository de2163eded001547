// Places and pixels: clipping, bitmaps, views in their parents, windows on the screen.

#include <unistd.h>

#include "kits/interface/drawing/ClipRegion.h"
#include "kits/interface/window/Bitmap.h"
#include "tests/kits/interface/InterfaceTest.h"

namespace {

constexpr rgb_color kRed{255, 0, 0, 255};
constexpr rgb_color kGreen{0, 255, 0, 255};
constexpr rgb_color kBlue{0, 0, 255, 255};

TEST(ClipRegion, ExcludesIncludesWithoutOverlapIntersectsAndStaysSmall) {
    // Every pixel of a small square, against the rule itself.
    const auto expectPixels = [](const ClipRegion& region, bool (*rule)(float x, float y)) {
        for (float y = 0; y < 12; y++)
            for (float x = 0; x < 12; x++)
                EXPECT_EQ(std::ranges::count_if(
                              region.Rects(),
                              [=](const BRect& rect) { return rect.Contains(BPoint(x, y)); }),
                          rule(x, y))
                    << x << ", " << y;
    };
    ClipRegion region(BRect(1, 1, 10, 10));
    region.Exclude({4, 4, 6, 6});
    region.Exclude({9, 0, 11, 3});
    expectPixels(region, [](float x, float y) {
        const bool isHole = x >= 4 && x <= 6 && y >= 4 && y <= 6;
        return x >= 1 && x <= 10 && y >= 1 && y <= 10 && !isHole && !(x >= 9 && y <= 3);
    });
    region = ClipRegion(BRect(0, 0, 5, 5));
    region.Include({3, 3, 9, 9});
    region.Include({20, 20, 10, 10}); // not valid: covers nothing
    region.IntersectWith(ClipRegion(BRect(4, 0, 11, 11)));
    expectPixels(region, [](float x, float y) {
        return x >= 4 && ((x <= 5 && y <= 5) || (x <= 9 && y >= 3 && y <= 9));
    });
    for (float x = 0; x < 300; x += 3)
        for (float y = 0; y < 30; y += 3)
            region.Include(BRect(0, 0, 1, 1).OffsetByCopy(x, y));
    EXPECT_LE(region.Rects().size(), 40u);
    EXPECT_EQ(region.Frame(), BRect(0, 0, 298, 28));
}

TEST(Bitmap, IsDrawnIntoByItsViewsAtHalfOpacity) {
    BBitmap icon(BRect(0, 0, 1, 0), B_CMAP8);
    icon.Bits()[0] = 5 * 36; // red; the other pixel is transparent
    BBitmap image(BRect(0, 0, 9, 4), B_RGBA32, true);
    ASSERT_TRUE(image.Lock());
    auto* view = new BView(BRect(2, 1, 9, 4), "drag", B_FOLLOW_NONE, 0);
    image.AddChild(view);
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

    const host::Image picture = image.Picture();
    const std::tuple<int, int, uint32> samples[] = {
        {1, 1, 0}, {2, 1, 0x80000080}, {4, 1, 0x80800000}, {5, 1, 0},
        {3, 2, 0}, {3, 3, 0xff000000}, {7, 3, 0xff000080}};
    for (const auto& [x, y, color] : samples) {
        const uint8* pixel = picture.pixels + std::ptrdiff_t(y) * picture.stride + x * 4;
        for (int i = 0; i < 4; i++)
            EXPECT_NEAR(pixel[i], color >> 8 * i & 0xff, 2) << x << ", " << y;
    }
}

using ViewTest = InterfaceTest;

TEST_F(ViewTest, IsClippedToItsParentsAndDrawnOnlyWhereThatIsNeeded) {
    class StripedView : public RecordingView {
    public:
        using RecordingView::RecordingView;
        void Draw(BRect) override {
            SetHighColor(kBlue);
            FillRect({-100, 20, 100, 100});
        }
    };
    auto* window = new RecordingWindow(BRect(20, 20, 119, 119));
    auto* parent = new StripedView(BRect(10, 10, 49, 49), kGreen);
    auto* child = new RecordingView(BRect(30, 30, 69, 69), kRed);
    auto* other = new RecordingView(BRect(60, 0, 99, 99));
    parent->AddChild(child);
    window->AddChild(parent);
    window->AddChild(other);
    Show(window);
    const auto expectPixels = [&](const std::vector<std::pair<BPoint, uint32_t>>& pixels) {
        for (const auto& [place, color] : pixels)
            EXPECT_TRUE(WaitForPixel(parent, place, color)) << place.x << ", " << place.y;
    };
    const uint32_t red = 0xff0000, green = 0x00ff00, blue = 0x0000ff, white = 0xffffff;
    expectPixels({{{39, 39}, red}, {{29, 29}, blue}, {{0, 19}, green}});
    expectPixels({{{0, 20}, blue}, {{-1, 25}, white}, {{40, 40}, white}});
    WithLock(window, [&] { child->MoveTo(5, 5); });
    window->Settle();
    expectPixels({{{10, 10}, red}, {{39, 39}, red}});
    WithLock(window, [&] {
        child->Hide();
        other->SetViewColor(kRed);
        other->draws.clear();
        other->Invalidate({10, 10, 19, 19});
        other->Invalidate({15, 15, 24, 29});
    });
    window->Settle();
    expectPixels({{{10, 10}, green}, {{39, 39}, blue}, {{74, 19}, red}});
    expectPixels({{{59, 0}, white}, {{60, 15}, white}, {{74, -1}, white}});
    EXPECT_EQ(other->draws, std::vector{BRect(10, 10, 24, 29)});
}

// In a process of its own: a process has one display and one scale.
void RestorePlaces() {
    const test::Desk desk({.dpi = 120});
    EXPECT_EQ(connect_display(), B_OK);
    for (int at = 100; at < 140; at += 7) {
        // What a settings file keeps of a window at this pixel.
        const float stored = static_cast<float>(at / 1.25);
        auto* window = new RecordingWindow(BRect(stored, stored, stored + 232, stored + 24));
        window->Show();
        EXPECT_TRUE(test::WaitUntil([&] {
            const auto shown = desk.Windows(
                [](const auto& info) { return info.viewable && info.pid == getpid(); });
            return shown.size() == 1 && shown[0].frame.x == at - 1; // its border
        })) << at;
        EXPECT_TRUE(window->Lock());
        EXPECT_EQ(window->Frame().left, stored);
        EXPECT_EQ(window->Bounds(), BRect(0, 0, 232, 24));
        window->Quit();
    }
    _exit(testing::Test::HasFailure() ? 1 : 0);
}

TEST(Window, ItsStoredPlaceIsTheSamePixelAtAFractionalScale) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(RestorePlaces(), ::testing::ExitedWithCode(0), "");
}

} // namespace
