#include <X11/keysym.h>

#include <gmock/gmock.h>
#include <xcb/xinput.h>

#include "tests/host/x11/EventLog.h"
#include "tests/support/Peer.h"

namespace host {
namespace {

using test::Desk;
using test::Peer;
using test::PlainWindow;
using test::WaitUntil;

constexpr KeyStates kNothing{};

// The server's numbers of keys, which are places on the keyboard.
struct Place {
    uint8 number;
    uint32 code;
};
constexpr Place kDigit1{10, 0x12};
constexpr Place kTopLeftLetter{24, 0x27};
constexpr Place kKeypad3{89, 0x5a};
constexpr Place kLeftWindows{133, 0x66};

// Another program has the focus.
class RawKeyTest : public testing::Test {
protected:
    RawKeyTest() {
        fOther.Activate();
        fDisplay->WatchSessionKeys(true);
    }
    ~RawKeyTest() override { SetLayout({"us"}); }

    void Press(const Place& place) { fPeer.PressKey(place.number); }
    void Release(const Place& place) { fPeer.ReleaseKey(place.number); }

    // What was told until now.
    std::vector<SessionKey> Told() {
        fDisplay.AwaitEvents();
        return fDisplay.Sink().TakeKeys();
    }
    KeyStates LastStates() {
        auto told = Told();
        return told.empty() ? kNothing : told.back().states;
    }

    Desk& fDesk = Desk::Shared();
    TestDisplay fDisplay{fDesk};
    PlainWindow fOther{fDesk, {600, 300, 200, 100}};
    Peer fPeer{fDesk};
};

TEST_F(RawKeyTest, LayoutSwitchedWhileAKeyIsDownLeavesNothingHeld) {
    Press(kTopLeftLetter);
    SetLayout({"fr"});
    Press(kKeypad3);
    SetLayout({"ru"});
    Release(kTopLeftLetter);
    Release(kKeypad3);
    EXPECT_EQ(LastStates(), kNothing);
}

TEST_F(RawKeyTest, RepeatingKeysStayOnePress) {
    TestWindow window = fDisplay.CreateShown(NormalSpec({100, 100, 300, 300}));
    window->Activate();
    ASSERT_TRUE(WaitUntil([&] { return window.events->Last<FocusChanged>().active; }));
    Press(kKeypad3);
    ASSERT_TRUE(window.events->Await<KeyChanged>(3));
    EXPECT_TRUE(window.events->Last<KeyChanged>().repeated);
    EXPECT_TRUE(IsHeld(window.events->Last<KeyChanged>().states, kKeypad3.code));
    Release(kKeypad3);
    int presses = 0;
    auto told = Told();
    for (const SessionKey& key : told)
        presses += key.down && !IsHeld(key.before, key.key);
    EXPECT_EQ(presses, 1);
    EXPECT_EQ(told.back().states, kNothing);
}

TEST_F(RawKeyTest, GrabsHideNothing) {
    ASSERT_TRUE(fPeer.GrabKeyboard());
    Press(kKeypad3);
    Release(kKeypad3);
    EXPECT_EQ(Told().size(), 2u);
    fPeer.Ungrab();
    EXPECT_TRUE(Peer(fDesk).GrabKeyboard()) << "watching takes hold of nothing";
    // The program's own.
    TestWindow menu = fDisplay.CreateShown(MenuSpec({150, 150, 250, 350}));
    Press(kDigit1);
    ASSERT_EQ(menu->GrabInput(300'000), B_OK);
    Release(kDigit1);
    Press(kKeypad3);
    ASSERT_TRUE(menu.events->Await<KeyChanged>(2));
    EXPECT_FALSE(IsHeld(menu.events->Last<KeyChanged>().states, kDigit1.code));
    EXPECT_TRUE(IsHeld(menu.events->Last<KeyChanged>().states, kKeypad3.code));
    menu->ReleaseInput();
    fDisplay->Sync();
    Release(kKeypad3);
    auto told = Told();
    EXPECT_EQ(told.size(), 4u);
    EXPECT_EQ(told.back().states, kNothing);
}

TEST_F(RawKeyTest, AreWatchedFromOneCallToTheOther) {
    fDisplay->WatchSessionKeys(false);
    Press(kLeftWindows);
    EXPECT_TRUE(Told().empty());
    fDisplay->WatchSessionKeys(true);
    Press(kKeypad3);
    auto told = Told();
    ASSERT_EQ(told.size(), 1u);
    EXPECT_TRUE(IsHeld(told[0].before, kLeftWindows.code)) << "it was held when the watch began";
    Release(kKeypad3);
    Release(kLeftWindows);
    EXPECT_EQ(LastStates(), kNothing);
    fDisplay->WatchSessionKeys(false);
    Press(kDigit1);
    Release(kDigit1);
    EXPECT_TRUE(Told().empty());
}

TEST_F(RawKeyTest, AReleaseThatNeverCameIsMadeUpForWhenKeyboardsChange) {
    DisplayLog sink;
    RawKeys keys(fDisplay->Server(), &sink);
    keys.Watch(true, "barprogram");
    xcb_input_raw_key_press_event_t event{};
    event.response_type = XCB_GE_GENERIC;
    event.extension = xcb_get_extension_data(fDisplay->Server(), &xcb_input_id)->major_opcode;
    event.event_type = XCB_INPUT_RAW_KEY_PRESS;
    event.detail = kLeftWindows.number;
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    keys.HandleEvent(generic);
    ASSERT_TRUE(IsHeld(*keys.States(), kLeftWindows.code));
    event.event_type = XCB_INPUT_HIERARCHY;
    keys.HandleEvent(generic);
    EXPECT_EQ(*keys.States(), kNothing);
    EXPECT_EQ(sink.TakeKeys().back().states, kNothing);
}

TEST_F(RawKeyTest, AnOldServerIsToldOfInOneLine) {
    TestDisplay old(fDesk);
    // The server keeps to the version that a program named first.
    Reply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        old->Server(), xcb_input_xi_query_version(old->Server(), 2, 0), nullptr));
    ASSERT_TRUE(version);
    testing::internal::CaptureStderr();
    old->WatchSessionKeys(true);
    old->WatchSessionKeys(false);
    old->WatchSessionKeys(true);
    std::string line = testing::internal::GetCapturedStderr();
    EXPECT_THAT(line, testing::HasSubstr("the hot key will not work"));
    EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1);
    Press(kKeypad3);
    Release(kKeypad3);
    old.AwaitEvents();
    EXPECT_TRUE(old.Sink().TakeKeys().empty());
}

} // namespace
} // namespace host
