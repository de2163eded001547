#include "tests/kits/interface/InterfaceTest.h"

namespace {

constexpr rgb_color kRed{255, 0, 0, 255};
constexpr rgb_color kGreen{0, 255, 0, 255};
constexpr rgb_color kBlue{0, 0, 255, 255};

class ViewTest : public InterfaceTest {};

} // namespace

TEST_F(ViewTest, FollowsItsParentsSize) {
    BView parent(BRect(0, 0, 99, 99), "parent", B_FOLLOW_NONE, 0);
    auto add = [&](uint32 mode) {
        auto* child = new BView(BRect(10, 10, 29, 29), "child", mode, 0);
        parent.AddChild(child);
        return child;
    };
    BView* stays = add(B_FOLLOW_NONE);
    BView* corner = add(B_FOLLOW_RIGHT | B_FOLLOW_BOTTOM);
    BView* sides = add(B_FOLLOW_ALL_SIDES);
    BView* center = add(B_FOLLOW_H_CENTER | B_FOLLOW_TOP);
    parent.ResizeTo(119, 109);
    EXPECT_EQ(stays->Frame(), BRect(10, 10, 29, 29));
    EXPECT_EQ(corner->Frame(), BRect(30, 20, 49, 39));
    EXPECT_EQ(sides->Frame(), BRect(10, 10, 49, 39));
    EXPECT_EQ(center->Frame(), BRect(20, 10, 39, 29));
}

TEST_F(ViewTest, IsClippedToItsParentsAndUncoversThemWhenItGoes) {
    auto* window = new RecordingWindow(BRect(20, 20, 119, 119));
    auto* parent = new RecordingView(BRect(10, 10, 49, 49), "parent", kGreen);
    auto* child = new RecordingView(BRect(30, 30, 69, 69), "child", kRed);
    parent->onDraw = [](BView& view) {
        view.SetHighColor(kBlue);
        view.FillRect({-100, 20, 100, 100});
    };
    parent->AddChild(child);
    window->AddChild(parent);
    Show(window);
    EXPECT_TRUE(WaitForPixel(parent, BPoint(35, 35), 0xff0000));
    EXPECT_EQ(PixelAt(parent, BPoint(29, 29)), 0x0000ffu);
    EXPECT_EQ(PixelAt(parent, BPoint(39, 39)), 0xff0000u);
    EXPECT_EQ(PixelAt(parent, BPoint(0, 19)), 0x00ff00u);
    EXPECT_EQ(PixelAt(parent, BPoint(0, 20)), 0x0000ffu);
    EXPECT_EQ(PixelAt(parent, BPoint(-1, 25)), 0xffffffu);
    EXPECT_EQ(PixelAt(parent, BPoint(40, 40)), 0xffffffu);
    WithLock(window, [&] {
        child->MoveTo(5, 5);
        window->UpdateIfNeeded();
    });
    EXPECT_TRUE(WaitForPixel(parent, BPoint(10, 10), 0xff0000));
    EXPECT_TRUE(WaitForPixel(parent, BPoint(39, 39), 0xff0000));
    WithLock(window, [&] {
        child->Hide();
        window->UpdateIfNeeded();
    });
    EXPECT_TRUE(WaitForPixel(parent, BPoint(10, 10), 0x00ff00));
    EXPECT_TRUE(WaitForPixel(parent, BPoint(39, 39), 0x0000ff));
}

TEST_F(ViewTest, IsDrawnOnlyWhereItWasInvalidated) {
    auto* window = new RecordingWindow(BRect(20, 20, 119, 119));
    auto* left = new RecordingView(BRect(0, 0, 39, 99), "left");
    auto* right = new RecordingView(BRect(50, 0, 99, 99), "right");
    window->AddChild(left);
    window->AddChild(right);
    Show(window);
    WithLock(window, [&] {
        left->draws.clear();
        right->draws.clear();
        right->SetViewColor(kRed);
        right->Invalidate({10, 10, 19, 19});
        right->Invalidate({15, 15, 24, 29});
    });
    ASSERT_TRUE(Settle(window));
    EXPECT_TRUE(WaitForPixel(right, BPoint(24, 29), 0xff0000));
    EXPECT_EQ(PixelAt(right, BPoint(9, 10)), 0xffffffu);
    EXPECT_EQ(PixelAt(right, BPoint(10, 25)), 0xffffffu);
    EXPECT_EQ(PixelAt(right, BPoint(24, 10)), 0xffffffu);
    WithLock(window, [&] {
        EXPECT_TRUE(left->draws.empty());
        ASSERT_EQ(right->draws.size(), 1u);
        EXPECT_EQ(right->draws[0], BRect(10, 10, 24, 29));
    });
}
