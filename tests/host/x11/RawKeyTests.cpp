#include <X11/keysym.h>
#include <xcb/xinput.h>

#include "tests/host/x11/X11Test.h"

namespace host {
namespace {

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
        return display.Sink().TakeKeys();
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
    EXPECT_EQ(sink.TakeKeys().back().states, kNothing);
}

} // namespace
} // namespace host
