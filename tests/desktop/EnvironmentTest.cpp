// Desktops unlike the usual one.

#include "tests/desktop/DesktopTest.h"

using namespace test;

namespace {

class ScaledDesktopTest : public OwnDesktopTest {
protected:
    ScaledDesktopTest()
        : OwnDesktopTest({.dpi = 192}) {}
};

TEST_F(ScaledDesktopTest, EverythingIsTwiceAsLargeAndAnotherScaleIsFollowedInPlace) {
    AddBookmark(3, "5 - Site", "http://five.example/");
    fProgram.Start();
    EXPECT_EQ(fProgram.Content(), (Box{60, 60, 44, 528}));
    ActivateBar();
    const Box whole = fProgram.Bar().frame;
    // It is drawn darker while it is not active.
    EXPECT_TRUE(WaitUntil([&] { return fDesk.Pixel(whole.x + 16, whole.y + 12) == 0xd8d8d8; }));
    const Picture asStarted = fDesk.Settled(whole);
    const FolderMenu menu = OpenFolder(3);
    const Box button = fProgram.Button(3);
    EXPECT_NEAR(menu.Frame().x, button.x + 2 * 20, 4);
    EXPECT_NEAR(menu.Frame().y, button.y, 4);
    EXPECT_GE(menu.Slot(0).height, 24);
    CloseMenus();
    fDesk.MoveTo(button.CenterX() + 1, button.CenterY());
    ASSERT_TRUE(WaitUntil([&] { return !fDesk.Shown("TOOLTIP").empty(); }));
    EXPECT_NEAR(fDesk.Shown("TOOLTIP")[0].frame.y, button.CenterY() + 2 * 20, 4);

    fDesk.SetDpi(96);
    EXPECT_TRUE(WaitUntil([&] { return fProgram.Content() == Box{60, 60, 22, 264}; }));
    ChooseSlot(3, 5);
    EXPECT_EQ(LastUrl(1), "http://five.example/");
    fDesk.SetDpi(192);
    EXPECT_TRUE(WaitUntil([&] { return fProgram.Bar().frame == whole; }));
    fDesk.MoveTo(1000, 800);
    ActivateBar();
    EXPECT_TRUE(WaitUntil([&] { return fDesk.Grab(whole) == asStarted; })) << "border and content";
    EXPECT_EQ(fProgram.Stop(), 0);
    EXPECT_EQ(fProgram.Settings().GetPoint("pos", BPoint(0, 0)), BPoint(30, 30));
}

class TwoMonitorsTest : public OwnDesktopTest {
protected:
    static constexpr Box kLeft = {0, 0, 700, 900};
    static constexpr Box kRight = {700, 0, 700, 700};

    // Nobody else keeps windows on the screen.
    TwoMonitorsTest()
        : OwnDesktopTest(
              {.width = 1400, .height = 900, .windowManager = false, .monitors = {kLeft, kRight}}) {
    }
    void StartAt(float x, float y) {
        BMessage settings;
        settings.AddPoint("pos", BPoint(x, y));
        fProgram.WriteSettings(settings);
        fProgram.Start();
    }
};

TEST_F(TwoMonitorsTest, MenusAndTheBarAreOnAMonitorAlsoWhenOneGoes) {
    AddBookmark(9, "1 - Site", "http://one.example/");
    StartAt(670, 630);
    EXPECT_TRUE(kLeft.Contains(OpenFolder(9).Frame()));
    CloseMenus();
    // The bubble's ground ends with the monitor, and where it would reach its last three rows it is
    // above the pointer.
    const Box button = fProgram.Button(9);
    PointAt(button);
    ASSERT_TRUE(WaitUntil([&] { return !fDesk.Shown("TOOLTIP").empty(); }));
    const Box bubble = fDesk.Shown("TOOLTIP")[0].frame;
    EXPECT_EQ(bubble.x + bubble.width, kLeft.width + 1);
    EXPECT_EQ(bubble.y + bubble.height, button.CenterY() - 2);
    fProgram.Stop();
    StartAt(1000, 850); // below the right one
    EXPECT_TRUE(kRight.Contains(fProgram.Content()));
    fDesk.SetMonitors({kLeft});
    EXPECT_TRUE(WaitUntil([&] { return kLeft.Contains(fProgram.Content()); }));
}

TEST_F(TwoMonitorsTest, ABarComesBackWhenLessThanHalfOfItsStripIsSeen) {
    StartAt(-11, 893); // half of the strip's width, half of its height
    EXPECT_TRUE(kLeft.Contains(fProgram.Content()));
    fProgram.Stop();
    StartAt(-11, 400);
    EXPECT_EQ(fProgram.Content().x, -11);
    fProgram.Stop();
    StartAt(-12, 400);
    EXPECT_TRUE(kLeft.Contains(fProgram.Content()));
    // So it does when a person leaves it there.
    const Box strip = fProgram.DragBar();
    fDesk.MoveTo(strip.x + strip.width - 2, strip.y + 7);
    fDesk.Press();
    fDesk.MoveTo(3, 400);
    EXPECT_TRUE(WaitUntil([&] { return fProgram.Content().x < -15; }));
    fDesk.Release();
    EXPECT_TRUE(WaitUntil([&] { return kLeft.Contains(fProgram.Content()); }));
}

TEST_F(TwoMonitorsTest, TheBarWorksAndADragWhoseMonitorGoesEndsOnAnother) {
    AddBookmark(3, "5 - Site", "http://five.example/");
    StartAt(1000, 300);
    EXPECT_EQ(fProgram.Content(), (Box{1000, 300, 22, 264}));
    ChooseSlot(3, 5);
    EXPECT_EQ(LastUrl(1), "http://five.example/");
    // Nobody could bring it back if it went.
    fDesk.DoubleClick(1015, 312);
    OpenFolder(3);
    CloseMenus();

    fDesk.MoveTo(1015, 307);
    fDesk.Press();
    fDesk.MoveTo(1115, 307);
    ASSERT_TRUE(WaitUntil([&] { return fProgram.Content().x == 1100; }));
    fDesk.SetMonitors({kLeft});
    ASSERT_TRUE(WaitUntil([&] { return kLeft.Contains(fProgram.Content()); }));
    fDesk.MoveTo(1215, 407);
    ASSERT_TRUE(WaitUntil([&] { return fProgram.Content().x == 1200; }));
    fDesk.Release();
    EXPECT_TRUE(WaitUntil([&] { return kLeft.Contains(fProgram.Content()); }));
}

} // namespace
