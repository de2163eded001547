#include <X11/keysym.h>
#include <future>
#include <thread>

#include "host/x11/keys/ClickCounter.h"
#include "tests/host/x11/X11Test.h"

namespace host {
namespace {

class InputTest : public X11Test {
protected:
    const WindowSpec menuSpec = MenuSpec({150, 150, 250, 350});
};

TEST(ClickCounter, CountsPressesThatAreSoonNearAndAlike) {
    ClickCounter counter;
    counter.SetLimits(400'000, 5);
    // time, place, button, window, count
    const std::tuple<uint32, int16, uint8, uint32, int32> presses[] = {
        {0xffffffc0, 10, 1, 1, 1}, {100, 15, 1, 1, 2}, {100, 15, 1, 1, 3},
        {100, 15, 3, 1, 1},        {100, 21, 3, 1, 1}, {100, 21, 3, 1, 2},
        {100, 21, 3, 2, 1},        {500, 21, 3, 2, 2}, {901, 21, 3, 2, 1}};
    for (const auto& [time, x, button, window, count] : presses) {
        xcb_button_press_event_t event{};
        event.time = time;
        event.root_x = x;
        event.detail = button;
        event.event = window;
        EXPECT_EQ(counter.Count(event), count) << time << ", " << x;
    }
}

TEST_F(InputTest, AKeyThatWasReleasedElsewhereDoesNotRepeat) {
    TestWindow window = display.CreateActive();
    desk.KeyDown(XK_b);
    EXPECT_TRUE(window.events->Await<KeyChanged>());
    PlainWindow elsewhere(desk, {600, 300, 200, 100});
    elsewhere.Activate();
    EXPECT_TRUE(window.BecomesActive(false));
    desk.KeyUp(XK_b);
    window->Activate();
    EXPECT_TRUE(window.BecomesActive());
    window.events->Forget();
    desk.Key(XK_b);
    ASSERT_TRUE(window.events->Await<KeyChanged>());
    EXPECT_FALSE(window.events->All<KeyChanged>()[0].repeated);
}

TEST_F(InputTest, ThePointerIsNotOverAWindowWhileAnotherProgramHasIt) {
    desk.MoveTo(150, 90);
    TestWindow window = display.CreateShown({.frame = {100, 80, 340, 112}});
    const auto becomes = [&](bool over) {
        return WaitUntil([&] { return window.events->Last<PointerOver>().over == over; });
    };
    EXPECT_TRUE(becomes(true)) << "mapped under the pointer";
    ASSERT_TRUE(peer.GrabPointer());
    EXPECT_TRUE(becomes(false));
    desk.MoveTo(700, 700);
    peer.Ungrab();
    display.AwaitEvents();
    EXPECT_FALSE(window.events->Last<PointerOver>().over);
}

TEST_F(InputTest, ReleaseEndsAGrabThatIsStillBeingTakenOnAnotherThread) {
    TestWindow menu = display.CreateShown(menuSpec);
    ASSERT_TRUE(peer.GrabKeyboard());
    auto taking = std::async(std::launch::async, [&] { return menu->GrabInput(10'000'000); });
    ASSERT_TRUE(WaitUntil([&] { return display->Grab().IsHeld(); }));
    menu->ReleaseInput();
    peer.Ungrab();
    EXPECT_EQ(taking.get(), B_CANCELED);
    for (int i = 0; i < 300; i++) {
        taking = std::async(std::launch::async, [&] { return menu->GrabInput(0); });
        menu->ReleaseInput();
        taking.wait();
        menu->ReleaseInput();
        display->Sync();
        ASSERT_TRUE(peer.GrabKeyboard() && peer.GrabPointer()) << "round " << i;
        peer.Ungrab();
    }
}

TEST_F(InputTest, ARefusedGrabLeavesThePressItsRelease) {
    TestWindow menu = display.CreateShown(menuSpec);
    desk.MoveTo(160, 160);
    desk.Press();
    ASSERT_TRUE(menu.events->Await<ButtonPressed>());
    ASSERT_TRUE(peer.GrabKeyboard());
    EXPECT_EQ(menu->GrabInput(50'000), B_TIMED_OUT);
    desk.MoveTo(700, 700);
    desk.Release();
    EXPECT_TRUE(menu.events->Await<ButtonReleased>());
    peer.Ungrab();
    EXPECT_EQ(menu->GrabInput(0), B_OK);
}

TEST_F(InputTest, AClickThatActivatesAndOpensAMenuIsNoLossOfTheFocus) {
    TestWindow bar = display.CreateShown(BarSpec({100, 80, 340, 112}));
    PlainWindow elsewhere(desk, {600, 300, 200, 100});
    TestWindow menu = display.Create(menuSpec);
    for (int x : {110, 130, 150}) {
        elsewhere.Activate();
        display.AwaitEvents();
        const int before = display.Sink().focusLosses;
        bar.events->Forget();
        desk.MoveTo(x, 90);
        desk.Press();
        ASSERT_TRUE(bar.events->Await<ButtonPressed>());
        ASSERT_EQ(menu->GrabInput(300'000), B_OK) << "not shown before it has the input";
        menu->Show();
        desk.Release();
        ASSERT_TRUE(bar.BecomesActive());
        // Longer than a loss is doubted.
        std::this_thread::sleep_for(std::chrono::milliseconds(250));
        display.AwaitEvents();
        EXPECT_EQ(display.Sink().focusLosses, before);
        menu->ReleaseInput();
        menu->Hide();
    }
}

TEST_F(InputTest, AScreenLockerThatTakesTheFocusClosesMenus) {
    TestWindow window = display.CreateActive();
    TestWindow menu = display.CreateShown(menuSpec);
    ASSERT_EQ(menu->GrabInput(300'000), B_OK);
    const int before = display.Sink().focusLosses;
    // It is not managed, so the window manager reports it to nobody.
    Peer locker(desk, {0, 0, 50, 50});
    xcb_set_input_focus(desk.Connection(), XCB_INPUT_FOCUS_PARENT, locker.Window(),
                        XCB_CURRENT_TIME);
    desk.Sync();
    EXPECT_TRUE(WaitUntil([&] { return display.Sink().focusLosses > before; }));
}

} // namespace
} // namespace host
