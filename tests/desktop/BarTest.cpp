// The bar's own widgets: the drag bar, the close box, the two looks.

#include "tests/desktop/DesktopTest.h"

using namespace test;

namespace {

constexpr uint32_t kActive = 0xd8d8d8;
constexpr uint32_t kInactive = 0xb8b8b8; // B_DARKEN_1_TINT
constexpr uint32_t kPressed = 0x989898;  // B_DARKEN_2_TINT

class BarTest : public DesktopTest {
protected:
    void SetUp() override {
        DesktopTest::SetUp();
        fProgram.Start();
    }
    bool ButtonTurns(uint32_t colour) {
        const Box button = fProgram.Button(0);
        return WaitUntil([&] { return fDesk.Pixel(button.x + 2, button.y + 2) == colour; });
    }
    void ReleaseOverTheMenuOfAKey() {
        fDesk.Key(XK_KP_3);
        ASSERT_TRUE(MenusBecome(1));
        fDesk.Release();
        fDesk.Key(XK_Escape);
        ASSERT_TRUE(MenusBecome(0));
    }
};

TEST_F(BarTest, ADragEndsWhenAMenuTakesThePointerOrTheBarIsMinimised) {
    const auto expectNobodyDrags = [&](int place) {
        fDesk.MoveTo(400, 400);
        fDesk.MoveTo(place + 15, place + 7);
        fDesk.MoveTo(place + 10, place + 9);
        ExpectButtonWorks();
        EXPECT_EQ(fProgram.Content(), (Box{place, place, 22, 264}));
    };
    ActivateBar();
    fDesk.MoveTo(30 + 15, 30 + 7);
    fDesk.Press();
    ReleaseOverTheMenuOfAKey();
    expectNobodyDrags(30);

    const xcb_window_t bar = fProgram.Bar().id;
    fDesk.MoveTo(30 + 15, 30 + 7);
    fDesk.Press();
    fDesk.MoveTo(130 + 15, 130 + 7);
    ASSERT_TRUE(WaitUntil([&] { return fProgram.Content().x == 130; }));
    fDesk.SendToRoot(bar, "WM_CHANGE_STATE", {3});
    ASSERT_TRUE(WaitUntil([&] { return !fDesk.IsViewable(bar); }));
    fDesk.Release();
    fDesk.Activate(bar);
    ASSERT_TRUE(WaitUntil([&] { return fDesk.IsViewable(bar); }));
    expectNobodyDrags(130);
}

TEST_F(BarTest, AButtonIsDrawnPressedWhileThePointerIsInItUntilAMenuTakesIt) {
    ActivateBar();
    const Box button = fProgram.Button(0);
    PointAt(button);
    fDesk.Press();
    EXPECT_TRUE(ButtonTurns(kPressed));
    fDesk.MoveTo(600, 600);
    EXPECT_TRUE(ButtonTurns(kActive));
    PointAt(button);
    EXPECT_TRUE(ButtonTurns(kPressed));
    ReleaseOverTheMenuOfAKey();
    EXPECT_TRUE(ButtonTurns(kActive));
    fDesk.Press();
    fDesk.MoveTo(600, 600);
    fDesk.Release();
    EXPECT_TRUE(ButtonTurns(kActive));
    ExpectButtonWorks();
}

TEST_F(BarTest, ADragFromAButtonEndsOverTheStripWithoutTheSettings) {
    OpenSettings();
    CloseMenus();
    const Box button = fProgram.Button(0);
    PointAt(button);
    fDesk.Press();
    fDesk.MoveTo(30 + 15, 30 + 7);
    fDesk.Release();
    ExpectButtonWorks();
}

TEST_F(BarTest, TheFirstClickOnTheCloseBoxOnlyActivates) {
    PlainWindow other(fDesk, {400, 300, 200, 100});
    other.Activate();
    ASSERT_TRUE(ButtonTurns(kInactive));
    const Box box = fProgram.CloseBox();
    Click(box);
    ASSERT_TRUE(ButtonTurns(kActive));

    // Pressed, moved out and released: nothing; released inside: the end.
    const auto middle = [&] { return fDesk.Pixel(box.CenterX(), box.CenterY()); };
    PointAt(box);
    fDesk.Press();
    EXPECT_TRUE(WaitUntil([&] { return middle() == kInactive; }));
    fDesk.MoveTo(600, 600);
    EXPECT_TRUE(WaitUntil([&] { return middle() == kActive; }));
    fDesk.Release();
    ExpectButtonWorks(3);
    Click(box);
    EXPECT_EQ(fProgram.WaitForEnd(), 0);
    EXPECT_EQ(fProgram.Settings().GetPoint("pos", BPoint(0, 0)), BPoint(30, 30));
}

} // namespace
