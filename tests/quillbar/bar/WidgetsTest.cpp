#include "kits/app/AppDefs.h"
#include "kits/interface/Font.h"
#include "quillbar/bar/widgets/Bar.h"
#include "quillbar/bar/widgets/Bevel.h"
#include "quillbar/bar/widgets/TitleItem.h"
#include "tests/quillbar/bar/BarWindow.h"

namespace {

constexpr rgb_color kFill{216, 216, 216, 255};

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
};

TEST_F(WidgetsTest, ButtonReleasedOutsideSendsNothing) {
    Hold({QBFolder, QBFolder + 10});
    Activate();
    fRobot.MoveTo(X(10), Y(55));
    fRobot.Press();
    EXPECT_TRUE(PixelBecomes(3, 41, tint_color(kFill, B_DARKEN_2_TINT)));
    // Over another button, which was not pressed.
    fRobot.MoveTo(X(10), Y(80));
    EXPECT_TRUE(PixelBecomes(3, 41, kFill));
    EXPECT_TRUE(PixelBecomes(3, 66, kFill));
    fRobot.Release();
    fRobot.Click(X(10), Y(130));
    ASSERT_TRUE(test::WaitUntil([&] { return !fHeld.Codes().empty(); }));
    EXPECT_EQ(fHeld.Codes(), std::vector<uint32>{QBFolder[4]});
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
