// The bar's keyboard shortcuts.

#include "tests/desktop/DesktopTest.h"

using namespace test;

namespace {

class KeyboardTest : public DesktopTest {
protected:
    void SetUp() override {
        DesktopTest::SetUp();
        AddBookmark(7, "7 - Site", "http://seven.example/");
        fProgram.Start();
        ActivateBar();
    }
};

TEST_F(KeyboardTest, DigitsOfBothRowsOpenTheirFolderAndBTheSettings) {
    for (const uint32_t key : {XK_a, XK_space, XK_F1, XK_Return, XK_Tab})
        fDesk.Key(key); // nothing to the bar
    const std::pair<uint32_t, int> keys[] = {{XK_1, 1},    {XK_7, 7},    {XK_0, 0},   {XK_KP_0, 0},
                                             {XK_KP_1, 1}, {XK_KP_5, 5}, {XK_KP_8, 8}};
    for (const auto& [key, digit] : keys) {
        fDesk.Key(key);
        ASSERT_TRUE(MenusBecome(1)) << digit;
        EXPECT_NEAR(fProgram.Menus()[0].frame.y, fProgram.Button(digit).y, 2) << digit;
        CloseMenus();
    }
    fDesk.Key(XK_b);
    ASSERT_TRUE(MenusBecome(1));
    const Box bar = fProgram.DragBar();
    const Box menu = fProgram.Menus()[0].frame;
    EXPECT_NEAR(menu.x, bar.x + bar.width - 1, 2);
    EXPECT_NEAR(menu.y, bar.y, 2);
    CloseMenus();
}

TEST_F(KeyboardTest, AHeldKeyOpensItsMenuOnceAndChoosesNothing) {
    fDesk.KeyDown(XK_KP_7);
    ASSERT_TRUE(MenusBecome(1));
    // The server repeats the key after two thirds of a second.
    EXPECT_FALSE(MenusBecome(0, std::chrono::milliseconds(1000)));
    const Box corner = fDesk.Frame();
    fDesk.Click(corner.width - 2, corner.height - 2);
    ASSERT_TRUE(MenusBecome(0));
    EXPECT_FALSE(
        WaitUntil([&] { return !fProgram.Menus().empty(); }, std::chrono::milliseconds(200)));
    fDesk.KeyUp(XK_KP_7);
    fDesk.Key(XK_7);
    ASSERT_TRUE(MenusBecome(1));
    fDesk.Key(XK_KP_7);
    EXPECT_EQ(LastUrl(1), "http://seven.example/");
}

// The release goes to the menu, or would type nothing: the bar sees it all the same.
TEST_F(KeyboardTest, AKeyThatIsLetGoOverItsMenuIsNotHeld) {
    const auto expectAnotherOpens = [&] {
        CloseMenus();
        fDesk.Key(XK_3);
        EXPECT_TRUE(MenusBecome(1));
        CloseMenus();
    };
    fDesk.KeyDown(XK_7);
    ASSERT_TRUE(MenusBecome(1));
    EXPECT_FALSE(MenusBecome(0, std::chrono::milliseconds(1000))) << "the key repeats meanwhile";
    fDesk.KeyUp(XK_7);
    expectAnotherOpens();

    fDesk.Key(XK_Num_Lock);
    fDesk.KeyDown(XK_KP_5);
    ASSERT_TRUE(MenusBecome(1));
    fDesk.KeyDown(XK_Shift_L);
    fDesk.KeyUp(XK_KP_5);
    fDesk.KeyUp(XK_Shift_L);
    fDesk.Key(XK_Num_Lock);
    expectAnotherOpens();
}

} // namespace
