// Pointer and keys on their way to views.

#include "kits/app/MessageQueue.h"
#include "kits/interface/controls/Button.h"
#include "tests/kits/interface/InterfaceTest.h"

namespace {

class InputTest : public InterfaceTest {
protected:
    InputTest() { window->AddChild(view); }

    RecordingWindow* const window = new RecordingWindow(BRect(50, 50, 249, 149));
    RecordingView* const view = new RecordingView(BRect(0, 0, 79, 99));
};

TEST_F(InputTest, OldMovesAreDroppedWhileTheWindowIsBusy) {
    Show(window);
    MoveOver(view, BPoint(40, 40));
    ASSERT_TRUE(WaitFor(window, [&] { return !view->moves.empty(); }));
    const BPoint last(70, 90);
    WithLock(window, [&] {
        view->moves.clear();
        for (int i = 0; i < 200; i++)
            desk.MoveTo(90 + i % 20, 90);
        desk.MoveTo(120, 140);
        EXPECT_TRUE(test::WaitUntil([&] {
            BMessageQueue* queue = window->MessageQueue();
            queue->Lock();
            const BMessage* newest = queue->FindMessage(queue->CountMessages() - 1);
            const bool hasCome = newest && newest->GetPoint("where", B_ORIGIN) == last;
            queue->Unlock();
            return hasCome;
        }));
    });
    EXPECT_TRUE(
        WaitFor(window, [&] { return !view->moves.empty() && view->moves.back() == last; }));
    EXPECT_LE(view->moves.size(), 2u);
}

TEST_F(InputTest, AButtonIsPressedByThePrimaryClickThatEndsOverIt) {
    auto* button = new BButton(BRect(90, 10, 169, 39), "button", "Press", new BMessage('prss'));
    window->AddChild(button);
    Show(window);
    const BPoint inside(20, 15);
    ClickAt(button, inside, 3);
    MoveOver(button, inside);
    desk.Press();
    EXPECT_TRUE(WaitFor(window, [&] { return button->Value() == B_CONTROL_ON; }));
    MoveOver(view, BPoint(20, 20));
    EXPECT_TRUE(WaitFor(window, [&] { return button->Value() == B_CONTROL_OFF; }));
    // Else the next click would take this release for its own.
    const int releases = window->releases;
    desk.Release();
    EXPECT_TRUE(test::WaitUntil([&] { return window->releases > releases; }));
    ClickAt(button, inside);
    WithLock(window, [&] { button->SetEnabled(false); });
    ClickAt(button, inside);
    window->Settle(); // the click has been handled
    window->Settle(); // and what it sent
    EXPECT_EQ(window->CountReceived('prss'), 1);
}

TEST_F(InputTest, AKeyHeldWhileTheFocusGoesIsReleasedAndRepeatsNothingLater) {
    Show(window);
    Activate(window);
    desk.KeyDown(XK_7);
    ASSERT_TRUE(test::WaitUntil([&] { return window->CountReceived(B_KEY_DOWN) >= 1; }));
    test::PlainWindow other(desk, {400, 300, 100, 100});
    other.Activate();
    EXPECT_TRUE(test::WaitUntil([&] { return window->CountReceived(B_KEY_UP) == 1; }));
    desk.KeyUp(XK_7);
    Activate(window);
    const int before = window->repeats;
    desk.Key(XK_7);
    EXPECT_TRUE(test::WaitUntil([&] { return window->CountReceived(B_KEY_UP) == 2; }));
    EXPECT_EQ(window->repeats, before);
}

} // namespace
