#include <X11/keysym.h>
#include <future>
#include <thread>

#include <gmock/gmock.h>

#include "host/x11/server/Connection.h"
#include "tests/host/x11/EventLog.h"
#include "tests/support/Peer.h"

namespace host {
namespace {

using test::Desk;
using test::Peer;
using test::PlainWindow;
using test::WaitUntil;
using testing::ElementsAre;

class Input : public testing::Test {
protected:
    ~Input() override { SetLayout({"us"}); }

    // What the keys that are pressed and released one after the other type.
    std::vector<std::string> TextsOf(const TestWindow& window, std::vector<uint32_t> keys) {
        window.events->Forget();
        for (uint32_t key : keys)
            fDesk.Key(key);
        EXPECT_TRUE(window.events->Await<KeyChanged>(2 * keys.size()));
        std::vector<std::string> texts;
        for (const KeyChanged& change : window.events->All<KeyChanged>()) {
            if (change.down)
                texts.push_back(change.text);
        }
        return texts;
    }

    TestWindow CreateActive() {
        TestWindow window = fDisplay.CreateShown(NormalSpec({100, 100, 300, 300}));
        window->Activate();
        EXPECT_TRUE(WaitUntil([&] { return window.events->Last<FocusChanged>().active; }));
        return window;
    }

    Desk& fDesk = Desk::Shared();
    TestDisplay fDisplay{fDesk};
};

TEST_F(Input, CountsClicks) {
    TestWindow bar = fDisplay.CreateShown(BarSpec({100, 80, 340, 112}));
    TestWindow other = fDisplay.CreateShown(MenuSpec({100, 200, 200, 300}));
    auto clicksOf = [&](const TestWindow& window, int x, int y, int button) {
        std::size_t before = window.events->All<ButtonPressed>().size();
        fDesk.Click(x, y, button);
        EXPECT_TRUE(window.events->Await<ButtonPressed>(before + 1));
        return window.events->Last<ButtonPressed>().clicks;
    };
    EXPECT_EQ(clicksOf(bar, 110, 90, 1), 1);
    EXPECT_EQ(clicksOf(bar, 112, 91, 1), 2);
    EXPECT_EQ(clicksOf(bar, 112, 91, 1), 3);
    EXPECT_EQ(clicksOf(bar, 112, 91, 3), 1) << "another button";
    EXPECT_EQ(clicksOf(bar, 130, 91, 3), 1) << "too far away";
    EXPECT_EQ(clicksOf(bar, 130, 91, 3), 2);
    EXPECT_EQ(clicksOf(other, 130, 210, 3), 1) << "another window";
    EXPECT_EQ(clicksOf(other, 130, 210, 3), 2);
    bigtime_t pressed = Now();
    EXPECT_TRUE(WaitUntil([&] { return Now() > pressed + fDisplay->DoubleClickTime() + 50'000; }));
    EXPECT_EQ(clicksOf(other, 130, 210, 3), 1) << "too late";
}

TEST_F(Input, KeysHaveTheirPlaceAndTheirText) {
    TestWindow window = CreateActive();
    struct Key {
        uint32_t keysym;
        uint32 code;
        std::string text;
    };
    const Key keys[] = {
        {XK_Escape, 0x01, "\x1b"}, {XK_F12, 0x0d, "\x10"},     {XK_Print, 0x0e, "\x10"},
        {XK_grave, 0x11, "`"},     {XK_0, 0x1b, "0"},          {XK_BackSpace, 0x1e, "\x08"},
        {XK_Insert, 0x1f, "\x05"}, {XK_Prior, 0x21, "\x0b"},   {XK_KP_Divide, 0x23, "/"},
        {XK_Tab, 0x26, "\x09"},    {XK_q, 0x27, "q"},          {XK_backslash, 0x33, "\\"},
        {XK_Delete, 0x34, "\x7f"}, {XK_KP_Home, 0x37, "\x01"}, {XK_a, 0x3c, "a"},
        {XK_Return, 0x47, "\n"},   {XK_KP_Begin, 0x49, ""},    {XK_z, 0x4c, "z"},
        {XK_Shift_R, 0x56, ""},    {XK_Up, 0x57, "\x1e"},      {XK_KP_Enter, 0x5b, "\n"},
        {XK_space, 0x5e, " "},     {XK_Left, 0x61, "\x1c"},    {XK_KP_Delete, 0x65, "\x7f"},
        {XK_Super_L, 0x66, ""},    {XK_Menu, 0x68, ""}};
    for (const Key& key : keys) {
        window.events->Forget();
        fDesk.Key(key.keysym);
        ASSERT_TRUE(window.events->Await<KeyChanged>(2)) << key.code;
        auto changes = window.events->All<KeyChanged>();
        EXPECT_TRUE(changes[0].down && !changes[1].down);
        EXPECT_EQ(changes[0].key, key.code);
        EXPECT_EQ(changes[1].key, key.code);
        EXPECT_EQ(changes[0].text, key.text) << "key " << key.code;
        EXPECT_FALSE(changes[0].repeated);
    }
}

TEST_F(Input, FollowsTheLayout) {
    TestWindow window = CreateActive();
    EXPECT_THAT(TextsOf(window, {XK_a, XK_q}), ElementsAre("a", "q"));
    // Russian in the second group, chosen by Shift with Caps Lock.
    SetLayout({"us,ru", "-option", "grp:shift_caps_toggle"});
    EXPECT_THAT(TextsOf(window, {XK_a, XK_q}), ElementsAre("a", "q"));
    fDesk.KeyDown(XK_Shift_L);
    fDesk.Key(XK_Caps_Lock);
    fDesk.KeyUp(XK_Shift_L);
    EXPECT_TRUE(WaitUntil([&] {
        return TextsOf(window, {XK_a, XK_q}) == std::vector<std::string>{"\xd1\x84", "\xd0\xb9"};
    }));
    EXPECT_EQ(window.events->Last<KeyChanged>().key, 0x27u);
    EXPECT_THAT(TextsOf(window, {XK_Left}), ElementsAre("\x1c"));
    SetLayout({"de"});
    EXPECT_THAT(TextsOf(window, {XK_y}), ElementsAre("y"));
    EXPECT_EQ(window.events->Last<KeyChanged>().key, 0x4cu) << "where others have the Z";
}

TEST_F(Input, ComposesCharactersOfSeveralKeys) {
    TestWindow window = CreateActive();
    SetLayout({"us", "-variant", "intl", "-option", "compose:menu"});
    EXPECT_THAT(TextsOf(window, {XK_dead_acute, 'e', 'e'}), ElementsAre("", "\xc3\xa9", "e"));
    EXPECT_THAT(TextsOf(window, {XK_Multi_key, 's', 's'}), ElementsAre("", "", "\xc3\x9f"));
    // What goes into no sequence ends the one that was begun.
    EXPECT_THAT(TextsOf(window, {XK_dead_acute, 'q', XK_dead_acute, XK_BackSpace, 'e'}),
                ElementsAre("", "q", "", "", "e"));
}

TEST_F(Input, ModifiersMakeNoControlCharacters) {
    TestWindow window = CreateActive();
    const std::pair<uint32_t, uint32> modifiers[] = {{XK_Shift_L, kShiftKey},
                                                     {XK_Control_L, kControlKey},
                                                     {XK_Alt_L, kCommandKey},
                                                     {XK_Super_L, kOptionKey}};
    for (const auto& [key, bit] : modifiers) {
        window.events->Forget();
        fDesk.KeyWith(key, XK_c);
        ASSERT_TRUE(window.events->Await<KeyChanged>(4));
        const KeyChanged typed = window.events->All<KeyChanged>()[1];
        EXPECT_EQ(typed.text, bit == kShiftKey ? "C" : "c");
        EXPECT_EQ(typed.modifiers, bit);
    }
}

TEST_F(Input, AKeyThatWasReleasedElsewhereDoesNotRepeat) {
    TestWindow window = CreateActive();
    fDesk.KeyDown(XK_b);
    EXPECT_TRUE(window.events->Await<KeyChanged>());
    PlainWindow other(fDesk, {600, 300, 200, 100});
    other.Activate();
    fDesk.KeyUp(XK_b);
    window->Activate();
    EXPECT_TRUE(WaitUntil([&] { return window.events->Last<FocusChanged>().active; }));
    window.events->Forget();
    fDesk.Key(XK_b);
    ASSERT_TRUE(window.events->Await<KeyChanged>());
    EXPECT_FALSE(window.events->All<KeyChanged>()[0].repeated);
}

TEST_F(Input, ThePointerIsNotOverAWindowWhileAnotherProgramHasIt) {
    fDesk.MoveTo(150, 90);
    TestWindow window = fDisplay.CreateShown(NormalSpec({100, 80, 340, 112}));
    auto becomes = [&](bool over) {
        return WaitUntil([&] { return window.events->Last<PointerOver>().over == over; });
    };
    EXPECT_TRUE(becomes(true)) << "mapped under the pointer";
    Peer other(fDesk);
    ASSERT_TRUE(other.GrabPointer());
    EXPECT_TRUE(becomes(false));
    fDesk.MoveTo(700, 700);
    other.Ungrab();
    fDisplay.AwaitEvents();
    EXPECT_FALSE(window.events->Last<PointerOver>().over);
}

TEST_F(Input, ReleaseEndsAGrabThatIsStillBeingTakenOnAnotherThread) {
    TestWindow menu = fDisplay.CreateShown(MenuSpec({150, 150, 250, 350}));
    Peer other(fDesk);
    ASSERT_TRUE(other.GrabKeyboard());
    auto taking = std::async(std::launch::async, [&] { return menu->GrabInput(10'000'000); });
    ASSERT_TRUE(WaitUntil([&] { return fDisplay->Grab().IsHeld(); }));
    menu->ReleaseInput();
    other.Ungrab();
    EXPECT_EQ(taking.get(), B_CANCELED);
    for (int i = 0; i < 300; i++) {
        taking = std::async(std::launch::async, [&] { return menu->GrabInput(0); });
        menu->ReleaseInput();
        taking.wait();
        menu->ReleaseInput();
        fDisplay->Sync();
        ASSERT_TRUE(other.GrabKeyboard() && other.GrabPointer()) << "round " << i;
        other.Ungrab();
    }
}

TEST_F(Input, RefusedGrabLeavesThePressItsRelease) {
    TestWindow menu = fDisplay.CreateShown(MenuSpec({150, 150, 250, 350}));
    fDesk.MoveTo(160, 160);
    fDesk.Press();
    ASSERT_TRUE(menu.events->Await<ButtonPressed>());
    Peer other(fDesk);
    ASSERT_TRUE(other.GrabKeyboard());
    EXPECT_EQ(menu->GrabInput(50'000), B_TIMED_OUT);
    fDesk.MoveTo(700, 700);
    fDesk.Release();
    EXPECT_TRUE(menu.events->Await<ButtonReleased>());
    other.Ungrab();
    EXPECT_EQ(menu->GrabInput(0), B_OK);
    menu->ReleaseInput();
}

TEST_F(Input, ProgramLosesTheFocusToOthersOnly) {
    PlainWindow other(fDesk, {600, 300, 200, 100});
    TestWindow window = CreateActive();
    TestWindow second = fDisplay.CreateShown(NormalSpec({100, 400, 300, 500}));
    ASSERT_TRUE(WaitUntil([&] { return second.events->Last<FocusChanged>().active; }));
    window->Activate();
    ASSERT_TRUE(WaitUntil([&] { return window.events->Last<FocusChanged>().active; }));
    EXPECT_FALSE(second.events->Last<FocusChanged>().active);
    fDisplay.AwaitEvents();
    int before = fDisplay.Sink().focusLosses;

    TestWindow menu = fDisplay.CreateShown(MenuSpec({150, 150, 250, 350}));
    ASSERT_EQ(menu->GrabInput(300'000), B_OK);
    second->Activate();
    ASSERT_TRUE(WaitUntil([&] { return second.events->Last<FocusChanged>().active; }));
    ASSERT_TRUE(WaitUntil([&] { return fDisplay.IsActive(second); }));
    fDisplay.AwaitEvents();
    EXPECT_EQ(fDisplay.Sink().focusLosses, before) << "it went to the program's other window";
    other.Activate();
    EXPECT_TRUE(WaitUntil([&] { return fDisplay.Sink().focusLosses > before; }));
    EXPECT_TRUE(WaitUntil([&] { return !second.events->Last<FocusChanged>().active; }));
}

TEST_F(Input, ClickThatActivatesAndOpensAMenuIsNoLossOfTheFocus) {
    TestWindow bar = fDisplay.CreateShown(BarSpec({100, 80, 340, 112}));
    PlainWindow other(fDesk, {600, 300, 200, 100});
    TestWindow menu = fDisplay.Create(MenuSpec({100, 120, 200, 300}));
    for (int i = 0; i < 5; i++) {
        other.Activate();
        fDisplay.AwaitEvents();
        int before = fDisplay.Sink().focusLosses;
        bar.events->Forget();
        fDesk.MoveTo(110 + i * 20, 90);
        fDesk.Press();
        ASSERT_TRUE(bar.events->Await<ButtonPressed>());
        ASSERT_EQ(menu->GrabInput(300'000), B_OK) << "not shown before it has the input";
        menu->Show();
        fDesk.Release();
        ASSERT_TRUE(WaitUntil([&] { return bar.events->Last<FocusChanged>().active; }));
        ASSERT_TRUE(WaitUntil([&] { return fDisplay.IsActive(bar); }));
        // Longer than a loss is doubted.
        std::this_thread::sleep_for(std::chrono::milliseconds(250));
        fDisplay.AwaitEvents();
        EXPECT_EQ(fDisplay.Sink().focusLosses, before);
        menu->ReleaseInput();
        menu->Hide();
    }
}

TEST_F(Input, ScreenLockerThatTakesTheFocusClosesMenus) {
    TestWindow window = CreateActive();
    TestWindow menu = fDisplay.CreateShown(MenuSpec({150, 150, 250, 350}));
    ASSERT_EQ(menu->GrabInput(300'000), B_OK);
    int before = fDisplay.Sink().focusLosses;
    TestDisplay lockerProgram(fDesk);
    TestWindow locker = lockerProgram.CreateShown(MenuSpec({0, 0, 50, 50}));
    // It is not managed, so the window manager tells nobody of it.
    xcb_set_input_focus(fDesk.Connection(), XCB_INPUT_FOCUS_PARENT, lockerProgram.IdOf(locker),
                        XCB_CURRENT_TIME);
    fDesk.Sync();
    EXPECT_TRUE(WaitUntil([&] { return fDisplay.Sink().focusLosses > before; }));
}

} // namespace
} // namespace host
