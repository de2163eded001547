#include "tests/kits/interface/InterfaceTest.h"

#include <X11/keysym.h>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/interface/window/PointerPresence.h"
#include "kits/kernel/OS.h"

namespace {

// A window with two views beside each other, the left one with a child.
class InputTest : public InterfaceTest {
protected:
    InputTest()
        : window(new RecordingWindow(BRect(50, 50, 249, 149)))
        , left(new RecordingView(BRect(0, 0, 79, 99), "left"))
        , right(new RecordingView(BRect(100, 0, 199, 99), "right"))
        , child(new RecordingView(BRect(10, 10, 29, 29), "child")) {
        left->AddChild(child);
        window->AddChild(left);
        window->AddChild(right);
        Show(window);
    }

    std::vector<std::string> EventsOf(RecordingView* view) {
        std::vector<std::string> events;
        WithLock(window, [&] { events = view->events; });
        return events;
    }
    bool Sees(RecordingView* view, const std::string& event, int times = 1) {
        return WaitFor(window, [&] { return view->CountOf(event) >= times; });
    }
    void Activate() {
        window->Activate();
        ASSERT_TRUE(WaitFor(window, [&] { return window->IsActive(); }));
    }
    int CountReceived(uint32 what) {
        int count = 0;
        WithLock(window, [&] {
            count = static_cast<int>(
                std::count(window->received.begin(), window->received.end(), what));
        });
        return count;
    }

    RecordingWindow* const window;
    RecordingView* const left;
    RecordingView* const right;
    RecordingView* const child;
};

} // namespace

TEST_F(InputTest, AThreadCanWaitForThePointer) {
    PointerPresence& presence = PointerPresence::Shared();
    ASSERT_TRUE(test::WaitUntil([&] { return !presence.IsHere(); }));
    const auto wait = [](void*) { return PointerPresence::Shared().WaitForPointer(); };
    const thread_id stopped = spawn_thread(wait, "stopped", B_NORMAL_PRIORITY, nullptr);
    const thread_id waiting = spawn_thread(wait, "waiting", B_NORMAL_PRIORITY, nullptr);
    resume_thread(stopped);
    resume_thread(waiting);
    status_t status = B_INTERRUPTED; // unless it has ended already
    ask_thread_to_stop(stopped);
    wait_for_thread(stopped, &status);
    EXPECT_EQ(status, B_INTERRUPTED);

    const uint64 seen = presence.Events();
    MoveOver(left, BPoint(40, 40));
    status = B_OK;
    wait_for_thread(waiting, &status);
    EXPECT_EQ(status, B_OK);
    EXPECT_EQ(presence.WaitForEvent(seen), B_OK);
    BPoint where;
    uint32 buttons = 1;
    get_mouse(&where, &buttons);
    EXPECT_EQ(where, BPoint(90, 90));
    EXPECT_EQ(buttons, 0u);
    robot.MoveTo(1270, 890);
    EXPECT_TRUE(test::WaitUntil([&] { return !presence.IsHere(); }));
}

TEST_F(InputTest, TellsHowThePointerCrossesViews) {
    MoveOver(left, BPoint(50, 50));
    ASSERT_TRUE(Sees(left, "entered"));
    MoveOver(left, BPoint(55, 55));
    ASSERT_TRUE(Sees(left, "inside"));
    MoveOver(right, BPoint(50, 50));
    ASSERT_TRUE(Sees(right, "entered"));
    EXPECT_EQ(left->CountOf("exited"), 1);
    robot.MoveTo(900, 700);
    EXPECT_TRUE(Sees(right, "exited"));
    // How many moves a way takes is the server's affair.
    std::vector<std::string> events = EventsOf(left);
    events.erase(std::unique(events.begin(), events.end()), events.end());
    EXPECT_EQ(events, (std::vector<std::string>{"entered", "inside", "exited"}));
}

TEST_F(InputTest, AMaskDeliversEverythingUntilTheButtonsAreUp) {
    WithLock(window, [&] { left->mask = B_POINTER_EVENTS; });
    MoveOver(left, BPoint(50, 50));
    robot.Press();
    ASSERT_TRUE(Sees(left, "down"));
    MoveOver(right, BPoint(50, 50));
    ASSERT_TRUE(Sees(right, "entered"));
    EXPECT_TRUE(Sees(left, "exited"));
    MoveOver(right, BPoint(55, 50));
    EXPECT_TRUE(Sees(left, "outside"));
    robot.MoveTo(700, 700);
    EXPECT_TRUE(WaitFor(window, [&] { return left->lastWhere == BPoint(650, 650); }));
    robot.Release();
    EXPECT_TRUE(Sees(left, "up"));
    MoveOver(right, BPoint(20, 20));
    ASSERT_TRUE(Sees(right, "entered", 2));
    EXPECT_EQ(EventsOf(left).back(), "up");
}

TEST_F(InputTest, PollingTheMouseSeesTheReleaseAndUsesItUp) {
    BPoint released;
    WithLock(window, [&] {
        left->onMouseDown = [&](BView& view) {
            BPoint where;
            uint32 buttons = 1;
            while (buttons != 0) {
                view.GetMouse(&where, &buttons);
                snooze(2000);
            }
            released = where;
            left->events.push_back("released");
        };
    });
    MoveOver(left, BPoint(50, 50));
    robot.Press();
    // From here to the release the window may be locked: it cannot be asked where the view is.
    robot.MoveTo(50 + 60, 50 + 70);
    robot.Release();
    ASSERT_TRUE(Sees(left, "released"));
    EXPECT_EQ(released, BPoint(60, 70));
    ClickAt(right, BPoint(10, 10));
    ASSERT_TRUE(Sees(right, "up"));
    EXPECT_EQ(left->CountOf("up"), 0);
}

TEST_F(InputTest, AKeyHeldWhileTheFocusGoesIsLetGo) {
    Activate();
    robot.KeyDown(XK_7);
    ASSERT_TRUE(test::WaitUntil([&] { return CountReceived(B_KEY_DOWN) >= 1; }));
    test::PlainWindow other(desktop, {400, 300, 100, 100});
    other.Activate();
    EXPECT_TRUE(test::WaitUntil([&] { return CountReceived(B_KEY_UP) == 1; }));
    robot.KeyUp(XK_7);
}

TEST_F(InputTest, OldMovesAreDroppedWhenTheWindowIsBusy) {
    MoveOver(left, BPoint(40, 40));
    ASSERT_TRUE(Sees(left, "entered"));
    int before = left->CountOf("inside");
    WithLock(window, [&] {
        for (int i = 0; i < 200; i++)
            robot.MoveTo(90 + i % 20, 90);
        robot.MoveTo(120, 140);
        // The last one has arrived once it is the queue's newest.
        EXPECT_TRUE(test::WaitUntil([&] {
            BMessageQueue* queue = window->MessageQueue();
            queue->Lock();
            BMessage* newest = queue->FindMessage(queue->CountMessages() - 1);
            bool last = newest && newest->GetPoint("where", B_ORIGIN) == BPoint(70, 90);
            queue->Unlock();
            return last;
        }));
    });
    EXPECT_TRUE(WaitFor(window, [&] { return left->lastWhere == BPoint(70, 90); }));
    WithLock(window, [&] { EXPECT_LE(left->CountOf("inside"), before + 2); });
}
