#include "tests/kits/interface/InterfaceTest.h"

#include <X11/keysym.h>
#include <future>

#include "kits/app/Application.h"
#include "kits/app/Message.h"
#include "kits/app/SessionHooks.h"
#include "kits/interface/controls/Alert.h"
#include "kits/interface/controls/Button.h"
#include "kits/interface/text/TextView.h"
#include "kits/interface/window/Screen.h"

namespace {

class AlertTest : public InterfaceTest {
protected:
    // A test that failed must not wait for an answer that nobody gives.
    ~AlertTest() override {
        const session_hooks hooks = get_session_hooks();
        hooks.dismiss();
        if (fAnswer.valid())
            fAnswer.wait();
        hooks.allow();
    }

    // The alert's Go() on another thread.
    void GoElsewhere(const char* text, const char* first, const char* second = nullptr) {
        std::promise<BMessenger> made;
        auto alert = made.get_future();
        fAnswer = std::async(std::launch::async, [&, promise = std::move(made)]() mutable {
            auto* built = new BAlert("", text, first, second);
            promise.set_value(BMessenger(built));
            return built->Go();
        });
        fAlert = alert.get();
        ASSERT_TRUE(WaitForActiveAlert());
    }
    // What Go() answered; waits for it.
    int32 Answer() {
        if (fAnswer.wait_for(test::kDeadline) != std::future_status::ready) {
            ADD_FAILURE() << "the alert is still open";
            get_session_hooks().dismiss();
        }
        return fAnswer.get();
    }

    bool WaitForActiveAlert() {
        return test::WaitUntil([&] {
            bool active = false;
            WithAlert([&](BAlert& alert) { active = alert.IsActive(); });
            return active;
        });
    }
    void WithAlert(const std::function<void(BAlert&)>& action) {
        if (!fAlert.LockTarget())
            return;
        BLooper* looper = nullptr;
        fAlert.Target(&looper);
        action(static_cast<BAlert&>(*looper));
        looper->Unlock();
    }
    void ClickButton(int32 index) {
        BPoint place;
        WithAlert([&](BAlert& alert) {
            place = ButtonOf(alert, index)->ConvertToScreen(BPoint(20, 15));
        });
        robot.Click(static_cast<int>(place.x), static_cast<int>(place.y));
    }

    static BView* ButtonOf(BAlert& alert, int32 index) {
        BView* background = alert.ChildAt(0);
        for (int32 i = 0; i < background->CountChildren(); i++) {
            BView* child = background->ChildAt(i);
            if (dynamic_cast<BButton*>(child) != nullptr && index-- == 0)
                return child;
        }
        return nullptr;
    }

    BMessenger fAlert;
    std::future<int32> fAnswer;
};

} // namespace

TEST_F(AlertTest, EnterPressesTheLastButtonAndEscapeTheOnlyOne) {
    GoElsewhere("Which?", "First", "Second");
    robot.Key(XK_Escape);
    robot.Key(XK_Return);
    EXPECT_EQ(Answer(), 1);

    GoElsewhere("One", "OK");
    robot.Key(XK_Escape);
    EXPECT_EQ(Answer(), 0);
}

TEST_F(AlertTest, BlocksTheInputOfOtherWindows) {
    auto* window = new RecordingWindow(BRect(20, 20, 119, 119));
    auto* view = new RecordingView(BRect(0, 0, 99, 99), "view");
    window->AddChild(view);
    Show(window);
    GoElsewhere("One", "OK");
    test::PlainWindow other(desktop, {300, 20, 100, 100});
    other.Activate();
    ASSERT_TRUE(test::WaitUntil([&] { return screen.FocusedWindow() == other.Id(); }));
    robot.Click(70, 70);
    EXPECT_TRUE(WaitForActiveAlert());
    ClickButton(0);
    EXPECT_EQ(Answer(), 0);

    robot.Click(60, 60);
    ASSERT_TRUE(WaitFor(window, [&] { return view->CountOf("up") == 1; }));
    EXPECT_EQ(view->CountOf("down"), 1);
    EXPECT_TRUE(window->received.empty());
}

TEST_F(AlertTest, APressThatWasBegunBeforeItCanStillEnd) {
    auto* window = new RecordingWindow(BRect(20, 20, 119, 119));
    auto* view = new RecordingView(BRect(0, 0, 99, 99), "view");
    window->AddChild(view);
    Show(window);
    robot.MoveTo(70, 70);
    robot.Press();
    ASSERT_TRUE(WaitFor(window, [&] { return view->CountOf("down") == 1; }));
    (new BAlert("", "Meanwhile", "OK"))->Go(nullptr);
    robot.Release();
    EXPECT_TRUE(WaitFor(window, [&] { return view->CountOf("up") == 1; }));
}

TEST_F(AlertTest, AWindowsOwnThreadCanWaitForIt) {
    auto* window = new RecordingWindow(BRect(20, 20, 119, 119));
    auto promise = std::make_shared<std::promise<int32>>();
    window->onMessage = [promise](BMessage& message) {
        if (message.what == 'askq')
            promise->set_value((new BAlert("", "Question", "No", "Yes"))->Go());
    };
    Show(window);
    fAnswer = promise->get_future();
    window->PostMessage('askq');
    ASSERT_TRUE(test::WaitUntil([&] {
        auto alerts = screen.Shown("DIALOG");
        return !alerts.empty() && screen.ActiveWindow() == alerts[0].id;
    }));
    robot.Key(XK_Return);
    EXPECT_EQ(Answer(), 1);
}

TEST_F(AlertTest, DismissedAlertsAnswerAndNoneOpensUntilAllowed) {
    GoElsewhere("One", "OK");
    const session_hooks hooks = get_session_hooks();
    hooks.dismiss();
    EXPECT_EQ(Answer(), -1);
    EXPECT_EQ((new BAlert("", "Too late", "OK"))->Go(), -1);
    hooks.allow();
    GoElsewhere("Again", "OK");
    // The window manager says so a moment after it has given the focus.
    ASSERT_TRUE(test::WaitUntil([&] { return screen.ActiveWindow() == screen.FocusedWindow(); }));
    screen.Close(screen.ActiveWindow());
    EXPECT_EQ(Answer(), -1);
}

TEST_F(AlertTest, LongTextStaysInsideTheMonitor) {
    std::string text = "ERROR:\n\n";
    for (int i = 0; i < 20000; i++)
        text += i % 300 == 0 ? ' ' : i % 50 == 0 ? '\xff' : 'x';
    const std::string label(255, 'w');
    GoElsewhere(text.c_str(), label.c_str(), "OK");
    WithAlert([](BAlert& alert) {
        EXPECT_EQ(alert.Frame(), BScreen().Frame() & alert.Frame());
        for (int32 i : {0, 1}) {
            const BRect frame = ButtonOf(alert, i)->ConvertToScreen(ButtonOf(alert, i)->Bounds());
            EXPECT_EQ(frame, alert.Frame() & frame);
        }
    });
    robot.Key(XK_Return);
    EXPECT_EQ(Answer(), 1);
}

TEST_F(AlertTest, ATextHigherThanTheMonitorScrolls) {
    std::string text;
    for (int i = 0; i < 500; i++)
        text += "A line of its own\n";
    GoElsewhere(text.c_str(), "OK");
    float top = 0;
    BRect alertFrame;
    float bottomOfText = 0;
    const auto look = [&] {
        WithAlert([&](BAlert& alert) {
            top = alert.TextView()->ConvertToScreen(BPoint(0, 0)).y;
            bottomOfText = top + alert.TextView()->TextHeight();
            alertFrame = alert.Frame();
        });
    };
    const auto becomes = [&](const std::function<bool()>& holds) {
        return test::WaitUntil([&] {
            look();
            return holds();
        });
    };
    look();
    const float start = top;
    ASSERT_GT(bottomOfText, alertFrame.bottom);
    const auto isAtEnd = [&] { return bottomOfText < alertFrame.bottom - 30; };
    robot.Key(XK_End);
    EXPECT_TRUE(becomes(isAtEnd));
    robot.Key(XK_Page_Up);
    EXPECT_TRUE(becomes([&] { return bottomOfText > alertFrame.bottom && top < start - 1000; }));
    robot.Key(XK_Home);
    EXPECT_TRUE(becomes([&] { return top == start; }));

    const int x = static_cast<int>(alertFrame.left) + 100;
    const int middle = static_cast<int>(alertFrame.top + alertFrame.bottom) / 2;
    robot.MoveTo(x, middle);
    robot.Press(5);
    robot.Release(5);
    EXPECT_TRUE(becomes([&] { return top < start && top > start - 200; }));
    // The bar at the right.
    const int bar = static_cast<int>(alertFrame.right) - 15;
    robot.Drag(bar, static_cast<int>(start) + 10, bar, static_cast<int>(alertFrame.bottom));
    EXPECT_TRUE(becomes(isAtEnd));
    robot.Key(XK_Return);
    EXPECT_EQ(Answer(), 0);
}
