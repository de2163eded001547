#include <X11/keysym.h>
#include <chrono>
#include <thread>

#include "tests/kits/interface/MenuDesktop.h"

using test::Box;
using test::WaitUntil;

namespace {

using MenuPointer = MenuTest;

TEST_F(MenuPointer, ClicksOnWhatCannotBeChosenLeaveTheMenuOpen) {
    AddThree();
    menu.AddSeparatorItem();
    menu.ItemAt(0)->SetEnabled(false);
    Open();
    Click(menu.ItemAt(0));
    Click(menu.ItemAt(3));
    Click(menu.ItemAt(1), 2); // nor does the tertiary button choose
    EXPECT_FALSE(IsHighlighted(menu.ItemAt(0)));
    Click(menu.ItemAt(2), 3);
    EXPECT_EQ(Answer(), menu.ItemAt(2));
    EXPECT_TRUE(IsInputFree());
    // Dragged out of the menu it is cancelled.
    Open();
    PointAt(menu.ItemAt(1));
    robot.Press();
    robot.MoveTo(700, 700);
    robot.Release();
    EXPECT_EQ(Answer(), nullptr);
}

TEST_F(MenuPointer, TheChosenItemSaysWhereItCameFromAfterTheMenuClosed) {
    AddThree();
    menu.ItemAt(1)->Message()->AddInt32("folder", 4);
    MessageCatcher* catcher = MessageCatcher::Start();
    menu.SetTargetForItems(BMessenger(catcher));
    Open(100, 100, true);
    Click(menu.ItemAt(1));
    const std::vector<BMessage> caught = catcher->WaitFor(1);
    EXPECT_TRUE(Menus().empty());
    ASSERT_EQ(caught.size(), 1u);
    void* source = nullptr;
    EXPECT_EQ(caught[0].FindPointer("source", &source), B_OK);
    EXPECT_EQ(static_cast<BMenuItem*>(source), menu.ItemAt(1));
    EXPECT_EQ(caught[0].GetInt32("index", -1), 1);
    EXPECT_EQ(caught[0].GetInt32("folder", -1), 4);
    EXPECT_GT(caught[0].GetInt64("when", 0), 0);
    EXPECT_FALSE(menu.ItemAt(1)->Message()->HasPointer("source"));
    EXPECT_EQ(Answer(), menu.ItemAt(1));
    catcher->Lock();
    catcher->Quit();
}

// Sub-menus.

TEST_F(MenuPointer, ASubmenuStaysWhileThePointerTravelsTowardsIt) {
    BMenu* submenu = AddSubmenu("Sub", 8);
    AddThree();
    Open();
    PointAt(menu.ItemAt(0));
    ASSERT_TRUE(WaitForMenus(2));
    const Box from = Place(menu.ItemAt(0));
    const Box to = Place(submenu->ItemAt(3));
    const int goalX = to.x + 10;
    constexpr int kSteps = 40;
    for (int i = 1; i <= kSteps; i++) {
        robot.MoveTo(from.CenterX() + (goalX - from.CenterX()) * i / kSteps,
                     from.CenterY() + (to.CenterY() - from.CenterY()) * i / kSteps);
        // A hand's pace, so that every place is seen.
        std::this_thread::sleep_for(std::chrono::milliseconds(4));
    }
    EXPECT_TRUE(WaitForHighlight(submenu->ItemAt(3)));
    EXPECT_TRUE(IsHighlighted(menu.ItemAt(0)));
    robot.Press();
    robot.Release();
    EXPECT_EQ(Answer(), submenu->ItemAt(3));
}

TEST_F(MenuPointer, APointerThatStopsOnItsWayGetsWhatItIsOn) {
    AddSubmenu("Sub", 8);
    AddThree();
    Open();
    const Box first = Place(menu.ItemAt(0));
    robot.MoveTo(first.x + 10, first.CenterY());
    ASSERT_TRUE(WaitForMenus(2));
    const Box second = Place(menu.ItemAt(1));
    robot.MoveTo(second.x + second.width - 10, second.CenterY());
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(1)));
    EXPECT_TRUE(WaitForMenus(1));
}

// Tall menus.

TEST_F(MenuPointer, ATallMenuScrollsByTheWheelAtItsEndsAndByKeys) {
    for (int i = 0; i < 200; i++)
        Add("Item " + std::to_string(i));
    Open(desktop.Frame().width / 2, desktop.Frame().height / 2);
    const Box frame = Menus().at(0).frame;
    EXPECT_TRUE(desktop.Frame().Contains(frame));
    EXPECT_EQ(frame.height, desktop.Frame().height);

    robot.MoveTo(frame.CenterX(), frame.CenterY());
    const int top = Place(menu.ItemAt(0)).y;
    robot.Press(5);
    robot.Release(5);
    EXPECT_TRUE(WaitUntil([&] { return Place(menu.ItemAt(0)).y < top; }));
    robot.Press(4);
    robot.Release(4);
    EXPECT_TRUE(WaitUntil([&] { return Place(menu.ItemAt(0)).y == top; }));

    robot.MoveTo(frame.CenterX(), frame.y + frame.height - 5);
    EXPECT_TRUE(WaitUntil([&] { return Place(menu.ItemAt(0)).y < top - 300; }));
    robot.MoveTo(frame.CenterX(), frame.y + 5);
    EXPECT_TRUE(WaitUntil([&] { return Place(menu.ItemAt(0)).y == top; }));

    robot.Key(XK_End);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(199)));
    EXPECT_TRUE(frame.Contains(Place(menu.ItemAt(199))));
    robot.Key(XK_Page_Up);
    robot.Key(XK_Page_Up);
    EXPECT_TRUE(WaitUntil([&] { return frame.Contains(Place(menu.ItemAt(130))); }));
    robot.Key(XK_Home);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(0)));
    Click(menu.ItemAt(3));
    EXPECT_EQ(Answer(), menu.ItemAt(3));
}

} // namespace
