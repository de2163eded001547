#include <future>

#include "kits/app/SessionHooks.h"
#include "kits/interface/controls/Alert.h"
#include "kits/interface/controls/Button.h"
#include "kits/interface/text/TextView.h"
#include "kits/interface/window/Screen.h"
#include "tests/kits/interface/InterfaceTest.h"

namespace {

class AlertTest : public InterfaceTest {
protected:
    // A test that failed must not wait for an answer that nobody gives.
    ~AlertTest() override {
        fHooks.dismiss();
        if (fAnswer.valid())
            fAnswer.wait();
        fHooks.allow();
    }

    // Calls the alert's Go() on another thread, and waits until the alert is active.
    void GoElsewhere(const std::string& text, const std::string& first,
                     const char* second = nullptr) {
        std::promise<BMessenger> made;
        fAnswer = std::async(std::launch::async, [&] {
            auto* alert = new BAlert("", text.c_str(), first.c_str(), second);
            made.set_value(BMessenger(alert));
            return alert->Go();
        });
        fAlert = made.get_future().get();
        ASSERT_TRUE(IsActivated());
    }
    bool IsActivated() {
        return Becomes([](BAlert& alert) { return alert.IsActive(); });
    }
    // What Go() answered; waits for it.
    int32 Answer() {
        if (fAnswer.wait_for(test::kDeadline) != std::future_status::ready)
            fHooks.dismiss();
        return fAnswer.get();
    }
    bool Becomes(const std::function<bool(BAlert&)>& holds) {
        return test::WaitUntil([&] {
            if (!fAlert.LockTarget())
                return false;
            BLooper* looper = nullptr;
            fAlert.Target(&looper);
            const bool result = holds(static_cast<BAlert&>(*looper));
            looper->Unlock();
            return result;
        });
    }

    const session_hooks fHooks = get_session_hooks();
    BMessenger fAlert;
    std::future<int32> fAnswer;
};

TEST_F(AlertTest, KeepsThePointerFromOtherWindowsButForTheEndOfAPress) {
    auto* window = new RecordingWindow(BRect(20, 20, 119, 119));
    auto* view = new RecordingView(BRect(0, 0, 99, 99));
    window->AddChild(view);
    Show(window);
    const auto sees = [&](int downs, int ups) {
        return WaitFor(window, [&] { return view->downs == downs && view->ups == ups; });
    };
    desk.MoveTo(70, 70);
    desk.Press();
    ASSERT_TRUE(sees(1, 0));
    GoElsewhere("One", "OK");
    desk.Release();
    EXPECT_TRUE(sees(1, 1));

    test::PlainWindow other(desk, {300, 20, 100, 100});
    other.Activate();
    ASSERT_TRUE(Becomes([](BAlert& alert) { return !alert.IsActive(); }));
    desk.Click(70, 70);
    EXPECT_TRUE(IsActivated());
    desk.Key(XK_Escape);
    EXPECT_EQ(Answer(), 0);
    desk.Click(60, 60);
    EXPECT_TRUE(sees(2, 2));
}

TEST_F(AlertTest, LargerThanTheMonitorItIsCutAndScrolls) {
    std::string text = std::string(10'000, 'x') + std::string(10'000, '\xff');
    for (int i = 0; i < 500; i++)
        text += "\nA line";
    GoElsewhere(text, std::string(255, 'w'), "OK");
    float top = 0, bottom = 0; // of the text
    BRect frame;
    const auto becomes = [&](const std::function<bool()>& holds) {
        return Becomes([&](BAlert& alert) {
            top = alert.TextView()->ConvertToScreen(BPoint(0, 0)).y;
            bottom = top + alert.TextView()->TextHeight();
            frame = alert.Frame();
            return holds();
        });
    };
    EXPECT_TRUE(becomes([&] { return bottom > frame.bottom; }));
    EXPECT_EQ(frame, BScreen().Frame() & frame);
    EXPECT_TRUE(Becomes([&](BAlert& alert) {
        BView* background = alert.ChildAt(0);
        for (int32 i = 0; i < background->CountChildren(); i++) {
            const BView* child = background->ChildAt(i);
            const BRect place = child->ConvertToScreen(child->Bounds());
            if (dynamic_cast<const BButton*>(child) != nullptr && place != (frame & place))
                return false;
        }
        return true;
    }));
    const float start = top;
    const auto isAtEnd = [&] { return bottom < frame.bottom - 30; };
    desk.Key(XK_End);
    EXPECT_TRUE(becomes(isAtEnd));
    desk.Key(XK_Home);
    EXPECT_TRUE(becomes([&] { return top == start; }));
    const int bar = static_cast<int>(frame.right) - 15;
    desk.Click(bar - 200, static_cast<int>(frame.top + frame.bottom) / 2, 5);
    EXPECT_TRUE(becomes([&] { return top < start && top > start - 200; }));
    desk.Drag(bar, static_cast<int>(start) + 10, bar, static_cast<int>(frame.bottom));
    EXPECT_TRUE(becomes(isAtEnd));
    desk.Key(XK_Escape); // answers an alert with one button only
    desk.Key(XK_Return);
    EXPECT_EQ(Answer(), 1);
}

TEST_F(InterfaceTest, ATextHigherThanItsViewEndsWithAnEllipsis) {
    auto* window = new RecordingWindow(BRect(100, 100, 299, 199));
    auto* view = new BTextView(BRect(0, 0, 199, 39), "text", BRect(0, 0, 199, 0), B_FOLLOW_NONE,
                               B_WILL_DRAW);
    window->AddChild(view);
    Show(window);
    const auto drawn = [&](const char* shown) {
        WithLock(window, [&] { view->SetText(shown); });
        window->Settle();
        return desk.Grab({100, 100, 200, 60});
    };
    const test::Picture cut = drawn("one\ntwo\nthree\nfour\nfive");
    EXPECT_EQ(cut, drawn("one\ntwo\xe2\x80\xa6"));
    EXPECT_NE(cut, drawn("one\ntwo"));
}

} // namespace
