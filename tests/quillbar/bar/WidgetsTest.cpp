#include "kits/app/AppDefs.h"
#include "kits/interface/Font.h"
#include "quillbar/bar/widgets/Bar.h"
#include "quillbar/bar/widgets/Bevel.h"
#include "quillbar/bar/widgets/TitleItem.h"
#include "tests/quillbar/bar/BarWindow.h"

namespace {

constexpr rgb_color kFill{216, 216, 216, 255};
constexpr rgb_color kLight{255, 255, 255, 255};
constexpr rgb_color kDark{136, 136, 136, 255};

rgb_color Dimmed(rgb_color color) {
    return tint_color(color, B_DARKEN_1_TINT);
}
rgb_color Pressed(rgb_color color) {
    return tint_color(color, B_DARKEN_2_TINT);
}

TEST(Bevel, StepsBothWaysWithinTheRange) {
    const BevelPair pair = BevelOf({174, 175, 80, 7});
    EXPECT_EQ(pair.light, (rgb_color{254, 255, 160, 7}));
    EXPECT_EQ(pair.dark, (rgb_color{94, 95, 0, 7}));
    EXPECT_EQ(BevelOf({81, 0, 255, 0}).dark, (rgb_color{1, 0, 175, 0}));
}

TEST(TitleItem, IsAsHighAsItsTallestGlyph) {
    QBTitleItem none("", nullptr, 0, 0);
    EXPECT_EQ(none.FindTallest(), 0);
    QBTitleItem low("a", nullptr, 0, 0);
    QBTitleItem high("ap\xc3\x84l", nullptr, 0, 0);
    EXPECT_GT(low.FindTallest(), 0);
    EXPECT_GT(high.FindTallest(), low.FindTallest());
    QBTitleItem broken("a\xff\xfe", nullptr, 0, 0);
    EXPECT_GE(broken.FindTallest(), low.FindTallest());
}

class WidgetsTest : public BarTest {
protected:
    void SetUp() override {
        BarTest::SetUp();
        Show();
    }
    static std::vector<uint32> FolderCodes() { return {QBFolder, QBFolder + 10}; }
};

TEST_F(WidgetsTest, ActiveBarIsRaised) {
    Activate();
    EXPECT_TRUE(PixelBecomes(0, 0, kLight));
    EXPECT_TRUE(PixelBecomes(21, 0, kLight));
    EXPECT_TRUE(PixelBecomes(0, 13, kLight));
    EXPECT_TRUE(PixelBecomes(21, 13, kDark));
    EXPECT_TRUE(PixelBecomes(10, 13, kDark));
    EXPECT_TRUE(PixelBecomes(15, 6, kFill));
    // The close box is sunken outside and raised inside.
    EXPECT_TRUE(PixelBecomes(2, 2, kDark));
    EXPECT_TRUE(PixelBecomes(10, 10, kLight));
    EXPECT_TRUE(PixelBecomes(3, 3, kLight));
    EXPECT_TRUE(PixelBecomes(9, 9, kDark));
    EXPECT_TRUE(PixelBecomes(6, 6, kFill));
    // A folder button, and the main view beside it.
    EXPECT_TRUE(PixelBecomes(1, 14, kLight));
    EXPECT_TRUE(PixelBecomes(21, 14, kDark));
    EXPECT_TRUE(PixelBecomes(1, 34, kDark));
    EXPECT_TRUE(PixelBecomes(3, 16, kFill));
    EXPECT_TRUE(PixelBecomes(0, 100, kFill));
}

TEST_F(WidgetsTest, InactiveBarIsDimmed) {
    Activate();
    Deactivate();
    EXPECT_TRUE(PixelBecomes(0, 0, Dimmed(kLight)));
    EXPECT_TRUE(PixelBecomes(10, 13, Dimmed(kDark)));
    EXPECT_TRUE(PixelBecomes(15, 6, Dimmed(kFill)));
    // The close box's outer frame stays.
    EXPECT_TRUE(PixelBecomes(2, 2, kDark));
    EXPECT_TRUE(PixelBecomes(3, 3, Dimmed(kLight)));
    EXPECT_TRUE(PixelBecomes(6, 6, Dimmed(kFill)));
    EXPECT_TRUE(PixelBecomes(1, 14, Dimmed(kLight)));
    EXPECT_TRUE(PixelBecomes(3, 16, Dimmed(kFill)));
    EXPECT_TRUE(PixelBecomes(0, 100, kFill));
}

TEST_F(WidgetsTest, ButtonSendsItsCodeOnceWhenReleasedInside) {
    Hold(FolderCodes());
    Activate();
    fRobot.MoveTo(X(10), Y(30));
    fRobot.Press();
    EXPECT_TRUE(PixelBecomes(3, 16, Pressed(kFill)));
    EXPECT_TRUE(PixelBecomes(1, 14, Pressed(kLight)));
    fRobot.MoveTo(X(60), Y(30));
    EXPECT_TRUE(PixelBecomes(3, 16, kFill));
    fRobot.MoveTo(X(10), Y(28));
    EXPECT_TRUE(PixelBecomes(3, 16, Pressed(kFill)));
    EXPECT_TRUE(fHeld.Codes().empty());
    fRobot.Release();
    EXPECT_TRUE(PixelBecomes(3, 16, kFill));
    Settle();
    EXPECT_EQ(fHeld.Codes(), std::vector<uint32>{QBFolder[0]});
}

TEST_F(WidgetsTest, ButtonReleasedOutsideSendsNothing) {
    Hold(FolderCodes());
    Activate();
    fRobot.MoveTo(X(10), Y(55));
    fRobot.Press();
    EXPECT_TRUE(PixelBecomes(3, 41, Pressed(kFill)));
    // Over another button, which was not pressed.
    fRobot.MoveTo(X(10), Y(80));
    EXPECT_TRUE(PixelBecomes(3, 41, kFill));
    EXPECT_TRUE(PixelBecomes(3, 66, kFill));
    fRobot.Release();
    fRobot.Click(X(10), Y(130));
    ASSERT_TRUE(test::WaitUntil([&] { return !fHeld.Codes().empty(); }));
    EXPECT_EQ(fHeld.Codes(), std::vector<uint32>{QBFolder[4]});
}

TEST_F(WidgetsTest, FirstClickOnAButtonCounts) {
    Hold(FolderCodes());
    Activate();
    Deactivate();
    fRobot.Click(X(10), Y(30));
    EXPECT_TRUE(test::WaitUntil([&] { return fHeld.Count(QBFolder[0]) == 1; }));
    EXPECT_TRUE(test::WaitUntil([&] { return AppMessages().Count(kQBWindowActive) > 0; }));
}

TEST_F(WidgetsTest, SecondaryClickOnTheBarAsksForSettings) {
    Hold({kQBShowSettings});
    Activate();
    fRobot.Click(X(16), Y(6), 1);
    fRobot.Click(X(16), Y(6), 2);
    fRobot.MoveTo(X(16), Y(6));
    fRobot.Press(3);
    fRobot.MoveTo(X(300), Y(200));
    fRobot.Release(3);
    ASSERT_TRUE(test::WaitUntil([&] { return !fHeld.Codes().empty(); }));
    Settle();
    EXPECT_EQ(fHeld.Count(kQBShowSettings), 1);
}

TEST_F(WidgetsTest, DragKeepsTheGrabbedPointUnderThePointer) {
    Activate();
    const test::Box before = WindowBox();
    fRobot.Drag(before.x + 16, before.y + 6, before.x + 139, before.y + 83);
    EXPECT_TRUE(test::WaitUntil([&] {
        return WindowBox() == test::Box{before.x + 123, before.y + 77, before.width, before.height};
    })) << WindowBox().x - before.x
        << " " << WindowBox().y - before.y;
    fRobot.MoveTo(50, 50);
    Settle();
    EXPECT_EQ(WindowBox().x, before.x + 123);
    Locked([&] { EXPECT_EQ(fWindow->Frame().LeftTop(), BPoint(323, 227)); });
}

TEST_F(WidgetsTest, DoubleClickMinimisesAndDoesNotDrag) {
    Activate();
    fRobot.DoubleClick(X(16), Y(6));
    EXPECT_TRUE(test::WaitUntil([&] {
        bool minimized = false;
        Locked([&] { minimized = fWindow->IsMinimized(); });
        return minimized;
    }));
}

TEST_F(WidgetsTest, CloseBoxQuitsOnlyFromAnActiveBar) {
    Activate();
    Deactivate();
    AppMessages().Clear();
    fRobot.Click(X(6), Y(6));
    ASSERT_TRUE(test::WaitUntil([&] { return AppMessages().Count(kQBWindowActive) > 0; }));
    Settle();
    EXPECT_EQ(AppMessages().Count(B_QUIT_REQUESTED), 0);

    fRobot.MoveTo(X(6), Y(6));
    fRobot.Press();
    EXPECT_TRUE(PixelBecomes(6, 6, Dimmed(kFill)));
    EXPECT_TRUE(PixelBecomes(3, 3, kDark));
    fRobot.MoveTo(X(40), Y(40));
    EXPECT_TRUE(PixelBecomes(6, 6, kFill));
    fRobot.Release();
    Settle();
    EXPECT_EQ(AppMessages().Count(B_QUIT_REQUESTED), 0);

    fRobot.Click(X(6), Y(6));
    EXPECT_TRUE(test::WaitUntil([&] { return AppMessages().Count(B_QUIT_REQUESTED) == 1; }));
}

TEST_F(WidgetsTest, BarFollowsTheWindowsSize) {
    Locked([&] {
        auto* bar = dynamic_cast<QBBar*>(View("qb_bar"));
        fWindow->ResizeTo(50, 40);
        bar->SetAlign(kQBAlignHorizontal);
        EXPECT_EQ(bar->Bounds(), BRect(0, 0, 13, 40));
        fWindow->ResizeTo(300, 40);
        bar->SetAlign(kQBAlignVertical);
        EXPECT_EQ(bar->Bounds(), BRect(0, 0, 300, 13));
        EXPECT_EQ(bar->FindView("qb_close_button")->Frame(), BRect(2, 2, 10, 10));
    });
}

} // namespace
