#include <X11/keysym.h>
#include <atomic>
#include <filesystem>
#include <thread>
#include <unistd.h>

#include "host/x11/Display.h"
#include "kits/app/AppDefs.h"
#include "kits/interface/menus/MenuWindow.h"
#include "kits/interface/window/WindowRoster.h"
#include "tests/kits/interface/MenuDesktop.h"

using test::Box;
using test::WaitUntil;

namespace {

using MenuClosing = MenuTest;

size_t CountThreads() {
    size_t count = 0;
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator("/proc/self/task"))
        count++;
    return count;
}

TEST_F(MenuClosing, AnOutsideClickClosesItAndReachesNobody) {
    AddThree();
    auto* window = new RecordingWindow(BRect(300, 300, 399, 399));
    auto* view = new RecordingView(BRect(0, 0, 99, 99), "view");
    window->AddChild(view);
    Show(window);

    Open();
    robot.MoveTo(350, 350);
    robot.Press();
    ASSERT_TRUE(WaitForMenus(0));
    robot.Release();
    EXPECT_EQ(Answer(), nullptr);
    EXPECT_TRUE(IsInputFree());
    // The next click is the window's again, and the only one it gets.
    robot.Click(350, 350);
    EXPECT_TRUE(WaitFor(window, [&] { return view->CountOf("up") == 1; }));
    EXPECT_EQ(view->CountOf("down"), 1);
}

TEST_F(MenuClosing, AMenuThatWasGivenAwayDeletesItself) {
    static std::atomic<int> deleted;
    class GivenMenu : public BPopUpMenu {
    public:
        GivenMenu()
            : BPopUpMenu("given", false, false) {
            SetAsyncAutoDestruct(true);
        }
        ~GivenMenu() override { deleted++; }
    };
    const auto isDeleted = [](int count) {
        return WaitUntil([count] { return deleted == count; });
    };
    deleted = 0;
    MessageCatcher* catcher = MessageCatcher::Start();
    auto* chosen = new GivenMenu;
    chosen->AddItem(new BMenuItem("One", new BMessage('one ')));
    chosen->SetTargetForItems(BMessenger(catcher));
    EXPECT_EQ(chosen->Go(BPoint(200, 200), true, true, true), nullptr);
    ASSERT_TRUE(WaitForMenus(1));
    // Another cannot open meanwhile, and is gone at once.
    auto* refused = new GivenMenu;
    refused->AddItem(new BMenuItem("Two", nullptr));
    refused->Go(BPoint(300, 300), true, true, true);
    EXPECT_EQ(deleted, 1);
    robot.Key(XK_Down);
    robot.Key(XK_Return);
    EXPECT_TRUE(isDeleted(2));
    EXPECT_EQ(catcher->WaitFor(1).at(0).what, static_cast<uint32>('one '));
    BMessenger(catcher).SendMessage(B_QUIT_REQUESTED);

    (new GivenMenu)->Go(BPoint(), true, true, true);
    EXPECT_EQ(deleted, 3);
}

TEST_F(MenuClosing, AChangeOfTheMonitorsClosesIt) {
    AddThree();
    Open();
    desktop.SetMonitors({{0, 0, 640, 900}, {640, 0, 640, 900}});
    EXPECT_EQ(Answer(), nullptr);
    EXPECT_TRUE(IsInputFree());
    desktop.SetMonitors({desktop.Frame()});
    EXPECT_TRUE(WaitUntil([&] { return host::Display::Shared()->Monitors().size() == 1; }));
}

TEST_F(MenuClosing, DismissalFromAnotherThreadClosesAllLevels) {
    AddSubmenu("Sub", 3);
    Open();
    Click(menu.ItemAt(0));
    ASSERT_TRUE(WaitForMenus(2));
    std::thread([] { WindowRoster::Shared().CancelMenu(); }).join();
    EXPECT_EQ(Answer(), nullptr);
    EXPECT_TRUE(Menus().empty());
    EXPECT_TRUE(IsInputFree());
}

// Another program that holds the keyboard is a case of the whole program's tests.
TEST_F(MenuClosing, NoneOpensWhileItMayNotOrAnotherHasTheInput) {
    AddThree();
    WindowRoster::Shared().Dismiss();
    EXPECT_EQ(menu.Go(BPoint(100, 100), false, true), nullptr);
    WindowRoster::Shared().Allow();
    EXPECT_EQ(menu.Go(BPoint(100, 100)), nullptr) << "for a press, with no button down";
    xcb_grab_pointer_unchecked(desktop.Connection(), 0, desktop.Root(), 0, XCB_GRAB_MODE_ASYNC,
                               XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
    desktop.Sync();
    EXPECT_EQ(menu.Go(BPoint(100, 100), false, true), nullptr);
    xcb_ungrab_pointer(desktop.Connection(), XCB_CURRENT_TIME);
    EXPECT_TRUE(IsInputFree());
    Open();
    BPopUpMenu other("other", false, false);
    other.AddItem(new BMenuItem("Other", nullptr));
    EXPECT_EQ(other.Go(BPoint(300, 300), false, true), nullptr);
    EXPECT_EQ(Menus().size(), 1u);
    Click(menu.ItemAt(0));
    EXPECT_EQ(Answer(), menu.ItemAt(0));
}

TEST_F(MenuClosing, ItemsMayBeRelabelledWhileItIsOpen) {
    for (int i = 0; i < 20; i++)
        Add("Item");
    Open();
    const int width = Menus().at(0).frame.width;
    for (int round = 0; round < 50; round++) {
        ASSERT_TRUE(BMessenger(&menu).LockTarget());
        for (int i = 0; i < 20; i++)
            menu.ItemAt(i)->SetLabel(
                std::string(static_cast<size_t>(i * round % 260), 'x').c_str());
        menu.Window()->Unlock();
        robot.Key(XK_Down);
    }
    ASSERT_TRUE(BMessenger(&menu).LockTarget());
    menu.ItemAt(0)->SetLabel("A label that is longer than it was before");
    for (int i = 1; i < 20; i++)
        menu.ItemAt(i)->SetLabel("Item");
    menu.Window()->Unlock();
    EXPECT_TRUE(WaitUntil([&] {
        const int now = Menus().at(0).frame.width;
        return now > width && now < 600;
    }));
    Click(menu.ItemAt(7));
    EXPECT_EQ(Answer(), menu.ItemAt(7));
}

TEST_F(MenuClosing, ManyOpeningsLeaveNothingBehind) {
    AddThree();
    AddSubmenu("Sub", 3);
    auto openAndClose = [&](int round) {
        Open();
        robot.Key(XK_End);
        robot.Key(XK_Right);
        ASSERT_TRUE(WaitForMenus(2));
        if (round % 3 == 0)
            robot.Click(700, 700);
        else if (round % 3 == 1)
            robot.Key(XK_Return);
        else
            WindowRoster::Shared().CancelMenu();
        Answer();
    };
    auto countWindows = [&] {
        return screen.Windows([](const auto& window) { return window.pid == getpid(); }).size();
    };
    openAndClose(0);
    const size_t threads = CountThreads();
    const size_t windows = countWindows();
    for (int round = 0; round < 60; round++)
        openAndClose(round);
    EXPECT_TRUE(Menus().empty());
    EXPECT_TRUE(IsInputFree());
    EXPECT_TRUE(WaitUntil([&] { return CountThreads() <= threads; }));
    EXPECT_EQ(countWindows(), windows);

    BMenuWindow::DeleteKept();
    EXPECT_EQ(countWindows(), windows - 2);
}

} // namespace
