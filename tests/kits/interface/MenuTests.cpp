// Menus by themselves: how they are placed, followed, scrolled and closed.

#include <filesystem>
#include <thread>
#include <unistd.h>

#include "host/x11/Display.h"
#include "kits/interface/menus/MenuPlacement.h"
#include "kits/interface/menus/MenuWindow.h"
#include "tests/kits/interface/MenuTest.h"
#include "tests/support/Peer.h"

using test::Box;
using test::WaitUntil;

namespace {

TEST(MenuPlacement, ASubmenuIsOnTheLeftWhereTheRightHasNoRoom) {
    const BRect submenu =
        PlaceSubmenu({1700, 50, 1799, 249}, {1702, 100, 1797, 119}, 150, 80, {1000, 0, 1799, 599});
    EXPECT_NEAR(submenu.right, 1704, 5);
}

TEST_F(MenuTest, KeysSelectWhatCanBeChosen) {
    AddThree();
    menu.AddItem(new BMenuItem("Off", nullptr), 1);
    menu.ItemAt(1)->SetEnabled(false);
    menu.AddSeparatorItem();
    Open();
    const std::pair<uint32_t, int32> keys[] = {
        {XK_Down, 0}, {XK_Down, 2}, {XK_End, 3}, {XK_Down, 0}, {XK_Up, 3}, {XK_t, 2}, {XK_t, 3}};
    for (const auto& [key, index] : keys) {
        desk.Key(key);
        EXPECT_TRUE(WaitForHighlight(menu.ItemAt(index))) << key << ", " << index;
    }
    // A pointer that moves again takes the selection back.
    PointAt(menu.ItemAt(2));
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(2)));
    desk.Key(XK_o); // the letter of one that can be chosen
    EXPECT_EQ(Answer(), menu.ItemAt(0));
}

TEST_F(MenuTest, ASubmenuStaysWhileThePointerTravelsTowardsIt) {
    BMenu* submenu = AddSubmenu(8);
    AddThree();
    Open();
    // At a hand's pace, so that every place is seen. On a busy machine it may pause on its way.
    Box from;
    std::chrono::steady_clock::duration pause;
    do {
        PointAt(menu.ItemAt(0));
        ASSERT_TRUE(WaitForMenus(2));
        from = Place(menu.ItemAt(0));
        const Box to = Place(submenu->ItemAt(3));
        constexpr int kSteps = 40;
        pause = {};
        for (int i = 1; i <= kSteps; i++) {
            const auto start = std::chrono::steady_clock::now();
            desk.MoveTo(from.CenterX() + (to.x + 10 - from.CenterX()) * i / kSteps,
                        from.CenterY() + (to.CenterY() - from.CenterY()) * i / kSteps);
            std::this_thread::sleep_for(std::chrono::milliseconds(4));
            pause = std::max(pause, std::chrono::steady_clock::now() - start);
        }
    } while (pause > std::chrono::milliseconds(150));
    EXPECT_TRUE(WaitForHighlight(submenu->ItemAt(3)));
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(0)));
    // One that stops on its way gets what it is on.
    desk.MoveTo(from.x + 10, from.CenterY());
    const Box second = Place(menu.ItemAt(1));
    desk.MoveTo(second.x + second.width - 10, second.CenterY());
    EXPECT_TRUE(WaitForMenus(1));
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(1)));
}

TEST_F(MenuTest, ATallMenuScrollsByTheWheelAtItsEndsAndByKeys) {
    for (int i = 0; i < 200; i++)
        Add(menu, "Item " + std::to_string(i));
    Open(static_cast<float>(desk.Frame().CenterX()), static_cast<float>(desk.Frame().CenterY()));
    const Box frame = desk.Shown("POPUP_MENU").at(0).frame;
    EXPECT_TRUE(desk.Frame().Contains(frame));
    EXPECT_EQ(frame.height, desk.Frame().height);
    const int top = Place(menu.ItemAt(0)).y;
    const auto scrolls = [&](int from, int to) {
        return WaitUntil([&] {
            const int y = Place(menu.ItemAt(0)).y - top;
            return y >= from && y <= to;
        });
    };
    desk.Click(frame.CenterX(), frame.CenterY(), 5);
    EXPECT_TRUE(scrolls(-200, -1));
    desk.MoveTo(frame.CenterX(), frame.y + frame.height - 5);
    EXPECT_TRUE(scrolls(-100'000, -300));
    desk.MoveTo(frame.CenterX(), frame.y + 5);
    EXPECT_TRUE(scrolls(0, 0));
    desk.Key(XK_End);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(199)));
    desk.Key(XK_Page_Up);
    desk.Key(XK_Page_Up);
    EXPECT_TRUE(WaitUntil([&] { return frame.Contains(Place(menu.ItemAt(130))); }));
    Click(menu.ItemAt(130));
    EXPECT_EQ(Answer(), menu.ItemAt(130));
}

// Another program that holds the keyboard is a case of the whole program's tests.
TEST_F(MenuTest, NoneOpensWithoutThePointerAndAChangeOfTheMonitorsClosesIt) {
    AddThree();
    EXPECT_EQ(menu.Go(BPoint(100, 100)), nullptr) << "for a press, with no button down";
    test::Peer other(desk);
    EXPECT_TRUE(other.GrabPointer());
    EXPECT_EQ(menu.Go(BPoint(100, 100), false, true), nullptr);
    other.Ungrab();
    EXPECT_TRUE(desk.IsInputFree());

    Open();
    desk.SetMonitors({{0, 0, 640, 900}, {640, 0, 640, 900}});
    EXPECT_EQ(Answer(), nullptr);
    EXPECT_TRUE(desk.IsInputFree());
    desk.SetMonitors({desk.Frame()});
    EXPECT_TRUE(WaitUntil([&] { return host::Display::Shared()->Monitors().size() == 1; }));
}

TEST_F(MenuTest, ManyOpeningsLeaveNothingBehind) {
    AddThree();
    BMenu* submenu = AddSubmenu(3);
    const auto threads = [] {
        return std::ranges::distance(std::filesystem::directory_iterator("/proc/self/task"),
                                     std::filesystem::directory_iterator());
    };
    const auto windows = [&] {
        return desk.Windows([](const auto& window) { return window.pid == getpid(); }).size();
    };
    std::pair<long, size_t> before;
    for (int round = 0; round < 60 && !HasFailure(); round++) {
        Open();
        desk.Key(XK_End);
        desk.Key(XK_Right);
        ASSERT_TRUE(WaitForMenus(2));
        EXPECT_TRUE(WaitForHighlight(submenu->ItemAt(0)));
        if (round % 3 == 0) {
            desk.Click(700, 700);
        } else if (round % 3 == 1) {
            desk.Key(XK_Return);
        } else {
            desk.Key(XK_Left);
            ASSERT_TRUE(WaitForMenus(1));
            desk.Key(XK_Escape);
        }
        EXPECT_EQ(Answer(), round % 3 == 1 ? submenu->ItemAt(0) : nullptr);
        if (round == 0)
            before = {threads(), windows()};
    }
    EXPECT_TRUE(desk.IsInputFree());
    EXPECT_TRUE(WaitUntil([&] { return threads() <= before.first; }));
    EXPECT_EQ(windows(), before.second);
    BMenuWindow::DeleteKept();
    EXPECT_EQ(windows(), before.second - 2);
}

} // namespace
