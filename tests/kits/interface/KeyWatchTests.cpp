#include "tests/kits/interface/InterfaceTest.h"

#include <X11/keysym.h>
#include <gmock/gmock.h>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"

namespace {

using Strings = std::vector<std::string>;
using testing::ElementsAre;
using testing::IsEmpty;

bool IsHeld(const BMessage& message, int32 key) {
    const void* states = nullptr;
    ssize_t size = 0;
    return message.FindData("states", B_UINT8_TYPE, &states, &size) == B_OK && size == 16 &&
           (static_cast<const uint8*>(states)[key / 8] & 0x80 >> key % 8) != 0;
}

// "down", "up", "unmapped down" or "unmapped up" and the key that it is about, or "modifiers" from
// one value to another; "!" if "states" does not fit.
std::string Describe(const BMessage& message) {
    const int32 key = message.GetInt32("key", 0);
    auto text = [&](const char* what, bool down) {
        return std::string(what) + " " + std::to_string(key) +
               (IsHeld(message, key) == down ? "" : "!");
    };
    switch (message.what) {
    case B_KEY_DOWN:
        return text("down", true);
    case B_KEY_UP:
        return text("up", false);
    case B_UNMAPPED_KEY_DOWN:
        return text("unmapped down", true);
    case B_UNMAPPED_KEY_UP:
        return text("unmapped up", false);
    case B_MODIFIERS_CHANGED:
        return "modifiers " + std::to_string(message.GetInt32("be:old_modifiers", -1)) + " " +
               std::to_string(message.GetInt32("modifiers", -1));
    default:
        return "";
    }
}

const Strings kShiftedA = {"modifiers 0 1", "unmapped down 75", "down 60",
                           "up 60",         "modifiers 1 0",    "unmapped up 75"};

// Keeps what its hooks are called for, and hands everything on.
class KeyView : public BView {
public:
    KeyView()
        : BView(BRect(0, 0, 9, 9), "keys", B_FOLLOW_NONE, 0) {}
    void KeyDown(const char* bytes, int32 numBytes) override {
        Note();
        typed.append(bytes, static_cast<size_t>(numBytes));
        BView::KeyDown(bytes, numBytes);
    }
    void KeyUp(const char* bytes, int32 numBytes) override {
        Note();
        BView::KeyUp(bytes, numBytes);
    }
    void MessageReceived(BMessage* message) override {
        Note();
        BView::MessageReceived(message);
    }

    Strings events;
    std::string typed;

private:
    void Note() { events.push_back(Describe(*Window()->CurrentMessage())); }
};

class KeyWatchTest : public InterfaceTest {
protected:
    KeyWatchTest()
        : window(new RecordingWindow(BRect(50, 50, 149, 149)))
        , watcher(new KeyView)
        , focus(new KeyView) {
        window->AddChild(watcher);
        window->AddChild(focus);
        watcher->SetEventMask(B_KEYBOARD_EVENTS);
        window->onMessage = [this](BMessage& message) {
            const std::string text = Describe(message);
            if (!text.empty())
                atWindow.push_back(text);
        };
        Show(window);
        other.Activate();
        Settle(window);
        Forget();
    }

    void TypeShiftedA() {
        robot.KeyDown(XK_Shift_L);
        robot.Key(XK_a);
        robot.KeyUp(XK_Shift_L);
    }
    void Activate() {
        WithLock(window, [&] { window->Activate(); });
        ASSERT_TRUE(WaitFor(window, [&] { return window->IsActive(); }));
    }
    bool Becomes(Strings& events, const Strings& expected) {
        return WaitFor(window, [&] { return events == expected; });
    }
    void Forget() {
        WithLock(window, [&] {
            watcher->events.clear();
            focus->events.clear();
            atWindow.clear();
        });
    }

    RecordingWindow* const window;
    KeyView* const watcher;
    KeyView* const focus;
    Strings atWindow;
    test::PlainWindow other{desktop, {400, 300, 100, 100}};
};

} // namespace

TEST_F(KeyWatchTest, KeysOfOtherProgramsComeOnceAndEndThere) {
    WithLock(window, [&] { focus->MakeFocus(); });
    TypeShiftedA();
    EXPECT_TRUE(Becomes(watcher->events, kShiftedA)) << testing::PrintToString(watcher->events);
    EXPECT_EQ(watcher->typed, "");
    EXPECT_THAT(focus->events, IsEmpty());
    EXPECT_THAT(atWindow, IsEmpty());
}

TEST_F(KeyWatchTest, KeysOfTheActiveWindowComeOnceToEach) {
    WithLock(window, [&] { focus->MakeFocus(); });
    Activate();
    TypeShiftedA();
    EXPECT_TRUE(Becomes(focus->events, kShiftedA)) << testing::PrintToString(focus->events);
    EXPECT_TRUE(Becomes(watcher->events, kShiftedA)) << testing::PrintToString(watcher->events);
    EXPECT_TRUE(Becomes(atWindow, kShiftedA)) << "the focus view hands them on";

    Forget();
    WithLock(window, [&] { watcher->MakeFocus(); });
    TypeShiftedA();
    EXPECT_TRUE(Becomes(watcher->events, kShiftedA)) << testing::PrintToString(watcher->events);
    EXPECT_EQ(watcher->typed, "A");
    EXPECT_THAT(focus->events, IsEmpty());

    Forget();
    WithLock(window, [&] { watcher->MakeFocus(false); });
    TypeShiftedA();
    EXPECT_TRUE(Becomes(atWindow, kShiftedA)) << testing::PrintToString(atWindow);
    EXPECT_TRUE(Becomes(watcher->events, kShiftedA));
}

TEST_F(KeyWatchTest, TheMaskCanBeClearedAndTheViewCanGo) {
    auto* second = new RecordingWindow(BRect(50, 250, 149, 349));
    auto* reference = new KeyView;
    second->AddChild(reference);
    Show(second);
    WithLock(second, [&] { reference->SetEventMask(B_KEYBOARD_EVENTS); });
    ASSERT_TRUE(Settle(second));
    auto typedOnce = [&] {
        WithLock(second, [&] { reference->events.clear(); });
        robot.Key(XK_a);
        return WaitFor(second, [&] { return reference->events.size() == 2; }) && Settle(window);
    };
    ASSERT_TRUE(typedOnce());
    EXPECT_THAT(watcher->events, ElementsAre("down 60", "up 60"));
    WithLock(window, [&] { watcher->SetEventMask(0); });
    ASSERT_TRUE(typedOnce());
    EXPECT_EQ(watcher->events.size(), 2u);
    WithLock(window, [&] { watcher->SetEventMask(B_KEYBOARD_EVENTS); });
    ASSERT_TRUE(Settle(window));
    WithLock(window, [&] { window->RemoveChild(watcher); });
    ASSERT_TRUE(typedOnce());
    EXPECT_EQ(watcher->events.size(), 2u);
    WithLock(window, [&] { window->AddChild(watcher); });
    ASSERT_TRUE(Settle(window));
    ASSERT_TRUE(typedOnce());
    EXPECT_EQ(watcher->events.size(), 4u) << "the mask is kept";
}
