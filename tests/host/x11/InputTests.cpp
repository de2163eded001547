#include <future>
#include <thread>

#include "host/x11/keys/ClickCounter.h"
#include "tests/host/x11/X11Test.h"

namespace host {
namespace {

using InputTest = X11Test;

const WindowSpec kMenu = MenuSpec({150, 150, 250, 350});

TEST(ClickCounter, CountsPressesThatAreSoonNearAndAlike) {
    ClickCounter counter;
    counter.SetLimits(400'000, 5);
    // time, button, window, count; places are a case of text fields
    const std::tuple<uint32, uint8, uint32, int32> presses[] = {
        {0xffffffc0, 1, 1, 1}, {100, 1, 1, 2}, {100, 3, 1, 1},
        {100, 3, 2, 1},        {500, 3, 2, 2}, {901, 3, 2, 1}};
    for (const auto& [time, button, window, count] : presses) {
        xcb_button_press_event_t event{};
        event.time = time;
        event.detail = button;
        event.event = window;
        EXPECT_EQ(counter.Count(event), count) << time;
    }
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
    TestWindow menu = display.CreateShown(kMenu);
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
    TestWindow menu = display.CreateShown(kMenu);
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
    TestWindow menu = display.Create(kMenu);
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

} // namespace
} // namespace host
