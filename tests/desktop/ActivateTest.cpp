// The running bar is brought up from outside: by `quillbarctl activate` and `quillbarctl menu`.

#include <csignal>
#include <functional>
#include <xcb/xinput.h>

#include "tests/desktop/DesktopTest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Peer.h"

using namespace test;

namespace {

class ActivateTest : public DesktopTest {
protected:
    static int Control(std::vector<std::string> arguments,
                       const Program::Variables& variables = {}) {
        arguments.insert(arguments.begin(), CONTROL_BINARY);
        return ChildProcess({.arguments = arguments, .environment = variables}).Wait().value_or(-1);
    }
    bool BarGetsKeyboard() {
        return WaitUntil(
            [&] { return fProgram.Bar().viewable && fDesk.HasKeyboard(fProgram.Bar().id); });
    }
    // Whether one menu is open, beside that folder's button.
    bool MenuIsAt(int digit) {
        return WaitUntil([&] {
            const auto menus = fProgram.Menus();
            return menus.size() == 1 && menus[0].frame.y == fProgram.Button(digit).y;
        });
    }
    static std::string Text(const std::vector<uint32_t>& words) {
        std::string text(reinterpret_cast<const char*>(words.data()), words.size() * 4);
        return text.substr(0, text.find('\0'));
    }
};

TEST_F(ActivateTest, BringsTheBarUpAsASecondStartAndTheTaskBarDo) {
    fProgram.Start();
    PlainWindow other(fDesk, {0, 0, 600, 400});
    other.Activate();
    EXPECT_EQ(Control({"activate"}), 0);
    EXPECT_TRUE(BarGetsKeyboard());
    const std::function<int()> ways[] = {[&] { return Control({"activate"}); },
                                         [&] { return fProgram.StartAgain(); },
                                         [&] {
                                             fDesk.Activate(fProgram.Bar().id); // the task bar
                                             return 0;
                                         }};
    // Elsewhere each time: in the same place it might count as a third click.
    int aside = 18;
    for (const auto& wake : ways) {
        const Box bar = fProgram.DragBar();
        fDesk.DoubleClick(bar.x + aside, bar.y + 12);
        ASSERT_TRUE(
            WaitUntil([&] { return fDesk.HasState(fProgram.Bar().id, "_NET_WM_STATE_HIDDEN"); }));
        aside -= 7;
        EXPECT_EQ(wake(), 0);
        EXPECT_TRUE(BarGetsKeyboard());
        EXPECT_EQ(fDesk.Stacking().back(), fProgram.Bar().id);
        EXPECT_EQ(fProgram.Content(), (Box{30, 30, 22, 264}));
    }
    fProgram.Signal(SIGSTOP);
    EXPECT_EQ(fProgram.StartAgain(), 1) << "beside one that does not answer";
    fProgram.Signal(SIGCONT);
}

TEST_F(ActivateTest, OpensAMenuBesideItsButtonInPlaceOfAnother) {
    AddBookmark(3, "5 - Site", "http://five.example/");
    fProgram.Start();
    PlainWindow other(fDesk, {400, 300, 200, 100});
    other.Activate();
    EXPECT_EQ(Control({"menu", "3"}), 0);
    ASSERT_TRUE(MenuIsAt(3));
    EXPECT_TRUE(BarGetsKeyboard());
    fDesk.Key(XK_KP_5);
    ASSERT_TRUE(MenusBecome(0));
    EXPECT_EQ(LastUrl(1), "http://five.example/");

    Click(fProgram.Button(8));
    ASSERT_TRUE(MenuIsAt(8));
    EXPECT_EQ(Control({"menu", "0"}), 0);
    EXPECT_TRUE(MenuIsAt(0));
    EXPECT_EQ(Control({"activate"}), 0);
    EXPECT_TRUE(MenusBecome(0));

    const Box window = OpenAddWindow();
    fDesk.Key(XK_F10);
    ASSERT_TRUE(WaitUntil([&] { return fProgram.Menus().size() == 1; }));
    EXPECT_NE(fProgram.Menus()[0].frame.y, fProgram.Button(4).y);
    EXPECT_EQ(Control({"menu", "4"}), 0);
    EXPECT_TRUE(MenuIsAt(4));
    CloseMenus();
    EXPECT_EQ(fProgram.AddWindows().at(0).frame, window);
}

TEST_F(ActivateTest, AnAlertIsBroughtUpInstead) {
    std::filesystem::remove_all(fHome.Data() / "applications"); // no browser: an alert says so
    fProgram.Launch();
    ASSERT_TRUE(AlertOpens());
    PlainWindow other(fDesk, {400, 300, 200, 100});
    other.Activate();
    const WindowInfo alert = fProgram.Alerts().at(0);
    EXPECT_EQ(Control({"menu", "3"}), 0);
    EXPECT_TRUE(WaitUntil([&] { return fDesk.HasKeyboard(alert.id); }));
    fDesk.Key(XK_Return);
    ASSERT_TRUE(fProgram.WaitForBar());
    ExpectButtonWorks(); // and no menu was to be opened before
}

TEST_F(ActivateTest, TheDesktopsNameForTheKeyIsHandedOn) {
    fProgram.Start();
    Peer desktop(fDesk);
    desktop.Watch(fDesk.Root(), XCB_EVENT_MASK_PROPERTY_CHANGE |
                                    XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY |
                                    XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    const auto expectStart = [&](const std::string& first, const std::string& second) {
        const auto begin = desktop.AwaitMessage("_NET_STARTUP_INFO_BEGIN");
        ASSERT_TRUE(begin);
        EXPECT_EQ(Text(*begin), first);
        const auto rest = desktop.AwaitMessage("_NET_STARTUP_INFO");
        ASSERT_TRUE(rest);
        EXPECT_EQ(Text(*rest), second);
    };
    // For a program of X11 its own name goes before the other.
    EXPECT_EQ(Control({"activate"}, {{"DESKTOP_STARTUP_ID", "a\"b-1-host_TIME12345"},
                                     {"XDG_ACTIVATION_TOKEN", "other"}}),
              0);
    const auto activation = desktop.AwaitMessage("_NET_ACTIVE_WINDOW");
    ASSERT_TRUE(activation);
    EXPECT_EQ(activation->at(1), 12345u);
    expectStart("remove: ID=\"a\\\"b-1-h", "ost_TIME12345\"");
    EXPECT_EQ(Control({"menu", "1"}, {{"XDG_ACTIVATION_TOKEN", "token-of-wayland"}}), 0);
    expectStart("remove: ID=\"token-of", "-wayland\"");
    EXPECT_TRUE(MenuIsAt(1));
    CloseMenus();
}

// As under Wayland, where a press in another program's window reaches no grab.
class AwayTest : public OwnDesktopTest {
protected:
    AwayTest()
        : OwnDesktopTest({.windowManager = false}) {}
};

TEST_F(AwayTest, AMenuClosesWhenNobodyHasTheKeyboardOrThePointerStaysOutside) {
    // Devices whose names tell that the server is a Wayland compositor's client.
    constexpr char kName[] = "xwayland-test";
    constexpr uint16_t kWords = (8 + sizeof kName - 1 + 3) / 4;
    struct {
        xcb_input_add_master_t head;
        char name[kWords * 4 - sizeof(xcb_input_add_master_t)];
    } change = {};
    static_assert(sizeof change == kWords * 4);
    change.head = {XCB_INPUT_HIERARCHY_CHANGE_TYPE_ADD_MASTER, kWords, sizeof kName - 1, 1, 1};
    std::copy_n(kName, sizeof kName - 1, change.name);
    xcb_input_xi_change_hierarchy(fDesk.Connection(), 1,
                                  reinterpret_cast<const xcb_input_hierarchy_change_t*>(&change));
    fDesk.Sync();
    fProgram.Start();

    Click(fProgram.Button(3));
    ASSERT_TRUE(MenusBecome(1));
    xcb_set_input_focus(fDesk.Connection(), XCB_INPUT_FOCUS_NONE, XCB_WINDOW_NONE,
                        XCB_CURRENT_TIME);
    fDesk.Sync();
    EXPECT_TRUE(MenusBecome(0));
    Click(fProgram.Button(3));
    ASSERT_TRUE(MenusBecome(1));
    fDesk.MoveTo(900, 800);
    EXPECT_TRUE(MenusBecome(0));
    Click(fProgram.Button(4));
    ASSERT_TRUE(MenusBecome(1));
    const Box menu = fProgram.Menus()[0].frame;
    fDesk.MoveTo(900, 800);
    PointAt(menu);
    EXPECT_FALSE(MenusBecome(0, std::chrono::milliseconds(1500))) << "only strayed";
}

} // namespace
