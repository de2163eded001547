#include <X11/keysym.h>
#include <future>
#include <xcb/xinput.h>

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

constexpr KeyStates kNothing{};

constexpr uint32 kLeftWindows = 0x66;

// Another program has the focus.
class RawKeyTest : public X11Test {
protected:
    RawKeyTest() {
        other.Activate();
        display->WatchSessionKeys(true);
    }

    // What was reported since the last call.
    std::vector<SessionKey> Reported() {
        display.AwaitEvents();
        return display.Sink().keys.Take();
    }
    // The last of so many reports leaves no key held.
    void ExpectNothingHeldAfter(std::size_t count) {
        const auto reported = Reported();
        ASSERT_EQ(reported.size(), count);
        EXPECT_EQ(reported.back().states, kNothing);
    }

    PlainWindow other{desk, {600, 300, 200, 100}};
};

TEST_F(RawKeyTest, GrabsHideNothing) {
    ASSERT_TRUE(peer.GrabKeyboard());
    desk.Key(XK_KP_3);
    ExpectNothingHeldAfter(2);
    peer.Ungrab();
    EXPECT_TRUE(Peer(desk).GrabKeyboard()) << "watching takes hold of nothing";
}

TEST_F(RawKeyTest, AKeyThatIsHeldWhenTheWatchBeginsIsKnown) {
    display->WatchSessionKeys(false);
    desk.KeyDown(XK_Super_L);
    EXPECT_TRUE(Reported().empty());
    display->WatchSessionKeys(true);
    desk.KeyDown(XK_KP_3);
    const auto reported = Reported();
    ASSERT_EQ(reported.size(), 1u);
    EXPECT_TRUE(IsHeld(reported[0].before, kLeftWindows));
    desk.KeyUp(XK_KP_3);
    desk.KeyUp(XK_Super_L);
    ExpectNothingHeldAfter(2);
}

TEST_F(RawKeyTest, AReleaseThatNeverCameIsMadeUpForWhenKeyboardsChange) {
    DisplayLog sink;
    RawKeys keys(display->Server(), &sink);
    keys.Watch(true, "program");
    xcb_input_raw_key_press_event_t event{};
    event.response_type = XCB_GE_GENERIC;
    event.extension = xcb_get_extension_data(display->Server(), &xcb_input_id)->major_opcode;
    event.event_type = XCB_INPUT_RAW_KEY_PRESS;
    event.detail = 133; // the left Windows key
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    keys.HandleEvent(generic);
    ASSERT_TRUE(IsHeld(*keys.States(), kLeftWindows));
    event.event_type = XCB_INPUT_HIERARCHY;
    keys.HandleEvent(generic);
    EXPECT_EQ(*keys.States(), kNothing);
    EXPECT_EQ(sink.keys.Take().back().states, kNothing);
}

} // namespace
} // namespace host
