#include <X11/keysym.h>

#include "tests/kits/interface/MenuDesktop.h"

using test::Box;
using test::WaitUntil;

namespace {

using MenuKeys = MenuTest;

TEST_F(MenuKeys, ArrowsPassOverWhatCannotBeChosenAndGoAround) {
    AddThree();
    menu.AddItem(new BMenuItem("Off", nullptr), 1);
    menu.ItemAt(1)->SetEnabled(false);
    menu.AddSeparatorItem();
    Open();
    robot.Key(XK_Down);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(0)));
    robot.Key(XK_Down);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(2)));
    robot.Key(XK_Up);
    robot.Key(XK_Up);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(3)));
    robot.Key(XK_Down);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(0)));
    robot.Key(XK_End);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(3)));
    robot.Key(XK_Home);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(0)));
    robot.Key(XK_KP_Enter);
    EXPECT_EQ(Answer(), menu.ItemAt(0));
}

TEST_F(MenuKeys, AResumedPointerTakesTheSelectionBack) {
    AddThree();
    Open();
    PointAt(menu.ItemAt(0));
    ASSERT_TRUE(WaitForHighlight(menu.ItemAt(0)));
    robot.Key(XK_End);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(2)));
    const Box place = Place(menu.ItemAt(1));
    robot.MoveTo(place.x + 3, place.CenterY());
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(1)));
}

TEST_F(MenuKeys, ALetterChoosesTheOnlyItemWithItOrSelectsSeveralInTurn) {
    AddThree();
    Open();
    robot.Type("o");
    EXPECT_EQ(Answer(), menu.ItemAt(0));
    Open();
    robot.Type("t");
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(1)));
    robot.Type("t");
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(2)));
    robot.Type("T");
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(1)));
    robot.Key(XK_Return);
    EXPECT_EQ(Answer(), menu.ItemAt(1));
}

TEST_F(MenuKeys, SubmenusOpenAndCloseByKeys) {
    AddThree();
    BMenu* submenu = AddSubmenu("Sub", 3);
    Open();
    robot.Key(XK_End);
    robot.Key(XK_Right);
    ASSERT_TRUE(WaitForMenus(2));
    EXPECT_TRUE(WaitForHighlight(submenu->ItemAt(0)));
    robot.Key(XK_Left);
    ASSERT_TRUE(WaitForMenus(1));
    robot.Key(XK_Return);
    ASSERT_TRUE(WaitForMenus(2));
    robot.Key(XK_Down);
    EXPECT_TRUE(WaitForHighlight(submenu->ItemAt(1)));
    robot.Key(XK_Return);
    EXPECT_EQ(Answer(), submenu->ItemAt(1));

    // Escape closes one menu at a time.
    Open();
    robot.Key(XK_Up);
    robot.Key(XK_Right);
    ASSERT_TRUE(WaitForMenus(2));
    robot.Key(XK_Escape);
    ASSERT_TRUE(WaitForMenus(1));
    robot.Key(XK_Escape);
    EXPECT_EQ(Answer(), nullptr);
    EXPECT_TRUE(Menus().empty());
    EXPECT_TRUE(IsInputFree());
}

} // namespace
