// The bar under other window managers than the desk's own: MANAGERS names them.

#include <algorithm>
#include <fstream>

#include "tests/desktop/DesktopTest.h"
#include "tests/support/ChildProcess.h"

using namespace test;

namespace {

// A manager and what it does not offer, see docs/WINDOW_MANAGERS.md.
struct Manager {
    std::string name;
    std::vector<std::string> command;
    std::string settings = {}; // the text of a file whose name ends the command
    bool stacks = true;        // Always On Top means something: else the used window is above
    bool placesExactly = true;
};

const Manager& FindManager(const std::string& name) {
    static const Manager managers[] = {
        {"xfwm4", {"xfwm4", "--compositor=off"}},
        {"kwin", {"kwin_x11"}},
        {"mutter", {"mutter", "--x11", "--sm-disable"}},
        {"marco", {"marco", "--no-composite", "--sm-disable"}},
        {"icewm", {"icewm"}},
        {"fluxbox", {"fluxbox"}},
        {"jwm", {"jwm"}},
        {"awesome", {"awesome"}},
        {"bspwm", {"bspwm", "-c"}, "#!/bin/sh\nbspc monitor -d 1 2\n"},
        {"fvwm3",
         {"fvwm3", "-f"},
         "Style * ClickToFocus, GrabFocus, MwmDecor, EWMHUseStackingOrderHints\n"},
        {"i3", {"i3", "-c"}, "font pango:monospace 8\n", false},
    };
    return *std::ranges::find(managers, name, &Manager::name);
}

constexpr Box kPlace = {30, 30, 22, 264};

class ManagersTest : public OwnDesktopTest, public testing::WithParamInterface<const char*> {
protected:
    ManagersTest()
        : OwnDesktopTest({.windowManager = false}) {}

    void SetUp() override {
        DesktopTest::SetUp();
        StartBus();
        StartManager();
    }

    // Some managers do not start without one. It must end with the test: each takes one of the
    // user's inotify instances.
    void StartBus() {
        fBus = std::make_unique<ChildProcess>(ChildProcess::Options{
            .arguments = {"dbus-daemon", "--session", "--nofork", "--nopidfile",
                          "--address=unix:path=" + BusSocket().string()},
            .environment = Environment(),
            .output = "/dev/null",
            .errors = "/dev/null"});
        ASSERT_TRUE(WaitUntil([this] { return exists(BusSocket()); }));
    }
    // No home: what ends late must not write into one that is removed.
    std::map<std::string, std::string> Environment() const {
        std::map<std::string, std::string> variables = {
            {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + BusSocket().string()},
            {"GSETTINGS_BACKEND", "memory"},
            {"NO_AT_BRIDGE", "1"}, // else toolkits start a bus of their own
            {"XDG_CONFIG_DIRS", "/etc/xdg"},
            {"XDG_DATA_DIRS", "/usr/local/share:/usr/share"}};
        for (const char* folder : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
            variables[folder] = "/dev/null";
        return variables;
    }
    std::filesystem::path BusSocket() const { return fHome.Path() / "bus"; }

    void StartManager() {
        ChildProcess::Options options;
        options.arguments = fKind.command;
        if (!fKind.settings.empty()) {
            const std::filesystem::path settings = fHome.Path() / "manager";
            std::ofstream(settings) << fKind.settings;
            permissions(settings, std::filesystem::perms::owner_all);
            options.arguments.push_back(settings);
        }
        options.environment = Environment();
        options.output = options.errors = "/dev/null";
        options.endsBy = SIGTERM;
        fManager = std::make_unique<ChildProcess>(options);
        ASSERT_TRUE(WaitUntil([this] { return Manages(); })) << "it does not take windows";
    }

    // Each time with a new window: one that is mapped before the manager listens is forgotten by
    // some.
    bool Manages() {
        const xcb_window_t window = xcb_generate_id(fDesk.Connection());
        xcb_create_window(fDesk.Connection(), XCB_COPY_FROM_PARENT, window, fDesk.Root(), 900, 700,
                          9, 9, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_map_window(fDesk.Connection(), window);
        const bool isManaged =
            WaitUntil([&] { return !fDesk.Cardinals(window, "WM_STATE").empty(); },
                      std::chrono::milliseconds(300));
        xcb_destroy_window(fDesk.Connection(), window);
        return isManaged;
    }

    // A manager may animate a new window, and the bar looks whether it stands where it asked to.
    static void Settle() { std::this_thread::sleep_for(std::chrono::milliseconds(600)); }
    void StartBar() {
        fProgram.Start();
        Settle();
    }

    bool HasFocus(xcb_window_t window) const {
        const auto focus = Ask<xcb_get_input_focus, xcb_get_input_focus_reply>(fDesk.Connection());
        return focus && focus->focus == window;
    }
    bool GetsFocus(xcb_window_t window) const {
        return WaitUntil([&] { return HasFocus(window); });
    }
    bool ContentBecomes(const Box& place) const {
        return WaitUntil([&] { return fProgram.Content() == place; }, std::chrono::seconds(3));
    }
    void ClickStrip() {
        const Box strip = fProgram.DragBar();
        fDesk.Click(strip.x + 17, strip.y + 8);
    }
    void ActivateByClick() {
        ClickStrip();
        ASSERT_TRUE(GetsFocus(fProgram.Bar().id));
    }
    WindowInfo OpenAddWindow() {
        ActivateByClick();
        fDesk.Key(XK_minus);
        EXPECT_TRUE(WaitUntil([&] { return fProgram.AddWindows().size() == 1; }));
        Settle();
        return fProgram.AddWindows().at(0);
    }

    const Manager& fKind = FindManager(GetParam());
    std::unique_ptr<ChildProcess> fBus;
    std::unique_ptr<ChildProcess> fManager;
};

TEST_P(ManagersTest, TheBarStandsWhereItWasAndTakesNoFocus) {
    PlainWindow other(fDesk, {400, 300, 200, 100});
    fDesk.Activate(other.Id());
    ASSERT_TRUE(GetsFocus(other.Id()));
    StartBar();
    EXPECT_TRUE(ContentBecomes(kPlace));
    EXPECT_FALSE(HasFocus(fProgram.Bar().id));
    EXPECT_FALSE(fDesk.HasState(fProgram.Bar().id, "_NET_WM_STATE_SKIP_TASKBAR"));
    const auto desktops = fDesk.Cardinals(fDesk.Root(), "_NET_NUMBER_OF_DESKTOPS");
    if (!desktops.empty() && desktops[0] > 1) {
        fDesk.SendToRoot(fDesk.Root(), "_NET_CURRENT_DESKTOP", {1});
        ASSERT_TRUE(WaitUntil([&] {
            return fDesk.Cardinals(fDesk.Root(), "_NET_CURRENT_DESKTOP") ==
                   std::vector<uint32_t>{1};
        }));
        Settle();
        EXPECT_TRUE(fProgram.Bar().viewable) << "on every desktop";
    }

    // Some make it wider than it asked to be: it is the bar's there, too.
    const Box bar = fProgram.Bar().frame;
    const bool hasSpareRoom = bar.x + bar.width > kPlace.x + 60;
    const int grip = kPlace.x + (hasSpareRoom ? 50 : 15);
    if (hasSpareRoom) {
        EXPECT_EQ(fDesk.Pixel(grip, kPlace.y + 200), 0xd8d8d8u);
    }
    fDesk.Drag(grip, kPlace.y + 10, grip + 417, kPlace.y + 10 + 123);
    const Box moved = {447, 153, 22, 264};
    EXPECT_TRUE(ContentBecomes(moved)) << "dragged";
    EXPECT_EQ(fProgram.Stop(), 0);
    EXPECT_EQ(fProgram.Settings().GetPoint("pos", BPoint()), BPoint(447, 153));
    StartBar();
    EXPECT_TRUE(ContentBecomes(moved)) << "started again";
    fManager.reset();
    StartManager();
    Settle();
    EXPECT_TRUE(ContentBecomes(moved)) << "manager replaced";
    EXPECT_TRUE(fProgram.Bar().viewable);
}

TEST_P(ManagersTest, AClickOpensMenusActivatesAndMinimises) {
    AddBookmark(3, "5 - Site", "http://five.example/");
    StartBar();
    ChooseSlot(3, 5);
    EXPECT_EQ(LastUrl(1), "http://five.example/");
    EXPECT_TRUE(GetsFocus(fProgram.Bar().id)) << "a click activates";

    const Box strip = fProgram.DragBar();
    fDesk.DoubleClick(strip.x + 17, strip.y + 10);
    Settle(); // minimised, where the manager offers that
    EXPECT_EQ(fProgram.StartAgain(), 0);
    EXPECT_TRUE(WaitUntil([&] { return fProgram.Bar().viewable; }));
    EXPECT_TRUE(GetsFocus(fProgram.Bar().id));
    EXPECT_TRUE(ContentBecomes(kPlace));

    PlainWindow other(fDesk, {10, 100, 300, 300});
    const uint32_t place[] = {10, 100}; // where a manager may have seen the bar and spared it
    xcb_configure_window(fDesk.Connection(), other.Id(), XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                         place);
    const auto isCovered = [&] {
        fDesk.Activate(other.Id());
        Settle();
        return fDesk.Pixel(kPlace.x + 10, kPlace.y + 120) == 0xffffff;
    };
    ClickStrip();
    ChooseSetting(setting::kAlwaysOnTop);
    Settle();
    EXPECT_EQ(isCovered(), !fKind.stacks);
    ClickStrip();
    ChooseSetting(setting::kAlwaysOnTop);
    Settle();
    EXPECT_TRUE(isCovered());

    ActivateByClick(); // else it does not quit
    ChooseSetting(setting::kQuit);
    EXPECT_EQ(fProgram.WaitForEnd(), 0);
}

TEST_P(ManagersTest, DialogsAreSeenTypedIntoAndClosed) {
    PlainWindow other(fDesk, {700, 600, 200, 100});
    fDesk.Activate(other.Id());
    ASSERT_TRUE(GetsFocus(other.Id()));
    std::filesystem::remove_all(fHome.Data() / "applications"); // no browser: an alert says so
    fProgram.Launch();
    ASSERT_TRUE(AlertOpens());
    Settle();
    const WindowInfo alert = fProgram.Alerts().at(0);
    fDesk.Click(alert.frame.CenterX(), alert.frame.y + 3);
    EXPECT_TRUE(GetsFocus(alert.id));
    fDesk.Key(XK_Return);
    EXPECT_TRUE(fProgram.WaitForBar());
    Settle();
    EXPECT_FALSE(HasFocus(fProgram.Bar().id));

    WindowInfo window = OpenAddWindow();
    EXPECT_TRUE(GetsFocus(window.id));
    const Picture before = fDesk.Settled(window.frame);
    fDesk.Type("abc");
    EXPECT_TRUE(WaitUntil([&] { return fDesk.Grab(window.frame) != before; }));

    fDesk.Close(window.id);
    ASSERT_TRUE(WaitUntil([&] { return fProgram.AddWindows().empty(); }));

    window = OpenAddWindow();
    fManager.reset();
    StartManager();
    const auto isBack = [&] {
        const auto windows = fProgram.AddWindows();
        return windows.size() == 1 && windows[0].frame == window.frame;
    };
    EXPECT_TRUE(WaitUntil(isBack)) << "manager replaced";
}

INSTANTIATE_TEST_SUITE_P(Managed, ManagersTest, testing::Values(MANAGERS),
                         [](const auto& manager) { return std::string(manager.param); });

} // namespace
