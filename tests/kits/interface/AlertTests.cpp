#include "tests/kits/interface/InterfaceTest.h"

#include <X11/keysym.h>
#include <future>

#include "kits/app/Application.h"
#include "kits/app/Invoker.h"
#include "kits/app/Message.h"
#include "kits/app/SessionHooks.h"
#include "kits/interface/Alert.h"
#include "kits/interface/Button.h"
#include "kits/interface/Screen.h"
#include "kits/interface/TextView.h"
#include "tests/support/TemporaryHome.h"

namespace {

class AlertTest : public InterfaceTest {
protected:
    // The alert's Go() on another thread.
    std::future<int32> GoElsewhere(const std::function<BAlert*()>& make) {
        std::promise<BMessenger> made;
        auto alert = made.get_future();
        auto answer = std::async(std::launch::async, [make, promise = std::move(made)]() mutable {
            BAlert* built = make();
            promise.set_value(BMessenger(built));
            return built->Go();
        });
        fAlert = alert.get();
        EXPECT_TRUE(WaitForActiveAlert());
        return answer;
    }
    std::future<int32> GoElsewhere(const char* text, const char* first,
                                   const char* second = nullptr) {
        return GoElsewhere([=] { return new BAlert("", text, first, second); });
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
        WithAlert(
            [&](BAlert& alert) { place = alert.ButtonAt(index)->ConvertToScreen(BPoint(20, 15)); });
        robot.Click(static_cast<int>(place.x), static_cast<int>(place.y));
    }
    static bool IsDone(std::future<int32>& answer) {
        return answer.wait_for(test::kDeadline) == std::future_status::ready;
    }

    BMessenger fAlert;
};

} // namespace

TEST_F(AlertTest, AnswersWithTheButtonThatWasClicked) {
    for (int32 index : {0, 1, 2}) {
        auto answer =
            GoElsewhere([] { return new BAlert("", "Which?", "First", "Second", "Third"); });
        ClickButton(index);
        ASSERT_TRUE(IsDone(answer));
        EXPECT_EQ(answer.get(), index);
    }
}

TEST_F(AlertTest, EnterPressesTheLastButtonAndEscapeTheOnlyOne) {
    auto answer = GoElsewhere("Which?", "First", "Second");
    robot.Key(XK_Escape);
    robot.Key(XK_Return);
    ASSERT_TRUE(IsDone(answer));
    EXPECT_EQ(answer.get(), 1);

    auto other = GoElsewhere("One", "OK");
    robot.Key(XK_Escape);
    ASSERT_TRUE(IsDone(other));
    EXPECT_EQ(other.get(), 0);
}

TEST_F(AlertTest, TheWindowManagersCloseCancels) {
    auto answer = GoElsewhere("One", "OK");
    // The window manager says so a moment after it has given the focus.
    ASSERT_TRUE(test::WaitUntil([&] { return screen.ActiveWindow() == screen.FocusedWindow(); }));
    screen.Close(screen.ActiveWindow());
    ASSERT_TRUE(IsDone(answer));
    EXPECT_EQ(answer.get(), -1);
}

TEST_F(AlertTest, BlocksTheInputOfOtherWindows) {
    auto* window = new RecordingWindow(BRect(20, 20, 119, 119));
    auto* view = new RecordingView(BRect(0, 0, 99, 99), "view");
    window->AddChild(view);
    Show(window);
    auto answer = GoElsewhere("One", "OK");
    test::PlainWindow other(desktop, {300, 20, 100, 100});
    other.Activate();
    ASSERT_TRUE(test::WaitUntil([&] { return screen.FocusedWindow() == other.Id(); }));
    robot.Click(70, 70);
    EXPECT_TRUE(WaitForActiveAlert());
    ClickButton(0);
    ASSERT_TRUE(IsDone(answer));

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
    get_session_hooks().dismiss();
    get_session_hooks().allow();
}

TEST_F(AlertTest, AWindowsOwnThreadCanWaitForIt) {
    auto* window = new RecordingWindow(BRect(20, 20, 119, 119));
    std::promise<int32> promise;
    auto answer = promise.get_future();
    window->onMessage = [&](BMessage& message) {
        if (message.what == 'askq')
            promise.set_value((new BAlert("", "Question", "No", "Yes"))->Go());
    };
    Show(window);
    window->PostMessage('askq');
    auto alerts = [&] {
        return screen.Windows([](const test::WindowInfo& info) {
            return info.viewable && info.HasType("_NET_WM_WINDOW_TYPE_DIALOG");
        });
    };
    ASSERT_TRUE(test::WaitUntil([&] {
        auto shown = alerts();
        return !shown.empty() && screen.ActiveWindow() == shown[0].id;
    }));
    robot.Key(XK_Return);
    ASSERT_TRUE(IsDone(answer));
    EXPECT_EQ(answer.get(), 1);
}

TEST_F(AlertTest, SendsTheAnswerToAnInvoker) {
    auto* window = new RecordingWindow(BRect(20, 20, 119, 119));
    int32 which = -1;
    window->onMessage = [&](BMessage& message) { which = message.GetInt32("which", -1); };
    Show(window);
    BInvoker invoker(new BMessage('answ'), window);
    auto* alert = new BAlert("", "Which?", "First", "Second");
    fAlert = BMessenger(alert);
    EXPECT_EQ(alert->Go(&invoker), B_OK);
    EXPECT_TRUE(WaitForActiveAlert());
    ClickButton(0);
    EXPECT_TRUE(WaitFor(window, [&] { return which == 0; }));
}

TEST_F(AlertTest, DismissedAlertsAnswerAndNoneOpensUntilAllowed) {
    auto answer = GoElsewhere("One", "OK");
    const session_hooks hooks = get_session_hooks();
    hooks.dismiss();
    ASSERT_TRUE(IsDone(answer));
    EXPECT_EQ(answer.get(), -1);
    EXPECT_EQ((new BAlert("", "Too late", "OK"))->Go(), -1);
    hooks.allow();
    auto again = GoElsewhere("Again", "OK");
    robot.Key(XK_Return);
    ASSERT_TRUE(IsDone(again));
    EXPECT_EQ(again.get(), 0);
}

TEST_F(AlertTest, LongTextStaysInsideTheMonitor) {
    std::string text = "ERROR:\n\n";
    for (int i = 0; i < 20000; i++)
        text += i % 300 == 0 ? ' ' : i % 50 == 0 ? '\xff' : 'x';
    const std::string label(255, 'w');
    auto answer = GoElsewhere([&] { return new BAlert("", text.c_str(), label.c_str(), "OK"); });
    WithAlert([](BAlert& alert) {
        EXPECT_TRUE(BScreen().Frame().Contains(alert.Frame()));
        for (int32 i : {0, 1}) {
            const BRect frame = alert.ButtonAt(i)->ConvertToScreen(alert.ButtonAt(i)->Bounds());
            EXPECT_TRUE(alert.Frame().Contains(frame));
        }
        EXPECT_TRUE(alert.Bounds().Contains(alert.TextView()->Frame()));
    });
    robot.Key(XK_Return);
    ASSERT_TRUE(IsDone(answer));
}

TEST_F(AlertTest, ShowsTheColourOfItsHeading) {
    auto answer = GoElsewhere([] {
        auto* alert = new BAlert("", "ERROR:\n\nText\n", "OK", nullptr, nullptr, B_WIDTH_AS_USUAL,
                                 B_EMPTY_ALERT);
        BTextView* view = alert->TextView();
        view->SetStylable(true);
        BFont font;
        view->GetFont(&font);
        font.SetSize(16);
        const rgb_color red{255, 0, 0, 255};
        view->SetFontAndColor(0, 6, &font, B_FONT_ALL, &red);
        return alert;
    });
    BRect frame;
    WithAlert([&](BAlert& alert) {
        frame = alert.TextView()->ConvertToScreen(alert.TextView()->Bounds());
    });
    auto count = [&](float top, float bottom, uint32_t color) {
        return screen
            .Grab({static_cast<int>(frame.left), static_cast<int>(frame.top + top), 100,
                   static_cast<int>(bottom - top)})
            .Count(color);
    };
    EXPECT_TRUE(test::WaitUntil([&] { return count(0, 20, 0xff0000) > 10; }));
    EXPECT_EQ(count(30, 60, 0xff0000), 0u);
    EXPECT_GT(count(30, 60, 0x000000), 0u);
    robot.Key(XK_Return);
    ASSERT_TRUE(IsDone(answer));
}
