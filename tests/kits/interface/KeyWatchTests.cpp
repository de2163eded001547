#include "tests/kits/interface/InterfaceTest.h"

#include <X11/keysym.h>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"

namespace {

// Keeps what it is told of keys, and hands it on: "+" or "-" and the key, "m" for modifiers.
class KeyView : public BView {
public:
    KeyView()
        : BView(BRect(0, 0, 9, 9), "keys", B_FOLLOW_NONE, 0) {}
    void KeyDown(const char* bytes, int32 numBytes) override {
        Note("+");
        typed.append(bytes, static_cast<size_t>(numBytes));
        BView::KeyDown(bytes, numBytes);
    }
    void KeyUp(const char* bytes, int32 numBytes) override {
        Note("-");
        BView::KeyUp(bytes, numBytes);
    }
    void MessageReceived(BMessage* message) override {
        if (message->what == B_MODIFIERS_CHANGED)
            events += "m ";
        else
            Note(message->what == B_UNMAPPED_KEY_DOWN ? "+" : "-");
        BView::MessageReceived(message);
    }

    std::string events;
    std::string typed;

private:
    void Note(const char* what) {
        events += what + std::to_string(Window()->CurrentMessage()->GetInt32("key", 0)) + " ";
    }
};

const std::string kShiftedA = "m +75 +60 -60 m -75 ";

class KeyWatchTest : public InterfaceTest {
protected:
    KeyWatchTest() {
        window->AddChild(watcher);
        window->AddChild(focus);
        watcher->SetEventMask(B_KEYBOARD_EVENTS);
        Show(window);
        other.Activate();
        Settle(window);
    }

    void TypeShiftedA() {
        WithLock(window, [&] {
            watcher->events.clear();
            focus->events.clear();
        });
        robot.KeyDown(XK_Shift_L);
        robot.Key(XK_a);
        robot.KeyUp(XK_Shift_L);
    }
    bool Tells(KeyView* view) {
        return WaitFor(window, [&] { return view->events == kShiftedA; });
    }

    RecordingWindow* const window = new RecordingWindow(BRect(50, 50, 149, 149));
    KeyView* const watcher = new KeyView;
    KeyView* const focus = new KeyView;
    test::PlainWindow other{desktop, {400, 300, 100, 100}};
};

} // namespace

TEST_F(KeyWatchTest, KeysComeOnceToEachThatAsksForThem) {
    WithLock(window, [&] { focus->MakeFocus(); });
    TypeShiftedA();
    EXPECT_TRUE(Tells(watcher)) << watcher->events;
    EXPECT_EQ(focus->events, "") << "another program is active";
    EXPECT_EQ(watcher->typed, "");

    WithLock(window, [&] { window->Activate(); });
    ASSERT_TRUE(WaitFor(window, [&] { return window->IsActive(); }));
    TypeShiftedA();
    EXPECT_TRUE(Tells(focus)) << focus->events;
    EXPECT_TRUE(Tells(watcher)) << watcher->events;
    WithLock(window, [&] { watcher->MakeFocus(); });
    TypeShiftedA();
    EXPECT_TRUE(Tells(watcher)) << watcher->events;
    EXPECT_EQ(watcher->typed, "A");
    EXPECT_EQ(focus->events, "");
}

TEST_F(KeyWatchTest, TheMaskCanBeClearedAndTheViewCanGo) {
    auto* second = new RecordingWindow(BRect(50, 250, 149, 349));
    auto* reference = new KeyView;
    second->AddChild(reference);
    Show(second);
    WithLock(second, [&] { reference->SetEventMask(B_KEYBOARD_EVENTS); });
    // The windows get a key one after the other.
    const auto watcherGets = [&](const std::string& events, const std::function<void()>& change) {
        WithLock(window, change);
        EXPECT_TRUE(Settle(window) && Settle(second));
        watcher->events.clear();
        WithLock(second, [&] { reference->events.clear(); });
        robot.Key(XK_a);
        EXPECT_TRUE(WaitFor(second, [&] { return reference->events == "+60 -60 "; }));
        Settle(window);
        return WaitFor(window, [&] { return watcher->events == events; });
    };
    EXPECT_TRUE(watcherGets("+60 -60 ", [] {}));
    EXPECT_TRUE(watcherGets("", [&] { watcher->SetEventMask(0); }));
    EXPECT_TRUE(watcherGets("+60 -60 ", [&] { watcher->SetEventMask(B_KEYBOARD_EVENTS); }));
    EXPECT_TRUE(watcherGets("", [&] { window->RemoveChild(watcher); }));
    EXPECT_TRUE(watcherGets("+60 -60 ", [&] { window->AddChild(watcher); })) << "the mask is kept";
}
