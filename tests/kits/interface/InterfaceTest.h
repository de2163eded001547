#pragma once

#include <algorithm>
#include <atomic>
#include <functional>
#include <unistd.h>
#include <vector>

#include <X11/keysym.h>
#include <gtest/gtest.h>

#include "host/x11/Display.h"
#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/app/Messenger.h"
#include "kits/interface/window/View.h"
#include "kits/interface/window/Window.h"
#include "tests/support/Desk.h"

// Counts what reaches it. Used with its window locked.
class RecordingView : public BView {
public:
    explicit RecordingView(BRect frame, rgb_color color = {255, 255, 255, 255})
        : BView(frame, "recording", B_FOLLOW_NONE, B_WILL_DRAW) {
        SetViewColor(color);
    }

    void Draw(BRect updateRect) override { draws.push_back(updateRect); }
    void MouseDown(BPoint) override { downs++; }
    void MouseUp(BPoint) override { ups++; }
    void MouseMoved(BPoint where, uint32, const BMessage*) override { moves.push_back(where); }

    int downs = 0;
    int ups = 0;
    std::vector<BPoint> moves;
    std::vector<BRect> draws;
};

// Keeps the codes of the messages that its base does not use up.
class RecordingWindow : public BWindow {
public:
    explicit RecordingWindow(BRect frame, window_look look = B_BORDERED_WINDOW_LOOK)
        : BWindow(frame, "Recording", look, B_NORMAL_WINDOW_FEEL, B_NOT_RESIZABLE) {}

    void DispatchMessage(BMessage* message, BHandler* handler) override {
        releases += message->what == B_MOUSE_UP;
        repeats += message->HasInt32("be:key_repeat");
        fMarks += message->what == kMarker;
        BWindow::DispatchMessage(message, handler);
    }
    void MessageReceived(BMessage* message) override {
        fReceived.push_back(message->what);
        BWindow::MessageReceived(message);
    }
    // Waits until its thread has handled all that was sent to it before, and has drawn what that
    // invalidated.
    void Settle() {
        const int before = fMarks;
        PostMessage(kMarker);
        EXPECT_TRUE(test::WaitUntil([&] { return fMarks > before; }) && Lock());
        Unlock();
    }
    long CountReceived(uint32 what) { // locks
        EXPECT_TRUE(Lock());
        const long count = std::ranges::count(fReceived, what);
        Unlock();
        return count;
    }

    std::atomic<int> releases = 0; // of buttons, handled or about to be
    std::atomic<int> repeats = 0;  // of keys

private:
    static constexpr uint32 kMarker = 'mark';

    std::vector<uint32> fReceived;
    std::atomic<int> fMarks = 0;
};

// Has the program's display on the shared desk. The pointer starts in a corner without windows.
class InterfaceTest : public ::testing::Test {
protected:
    InterfaceTest() {
        if (host::Display::Shared() == nullptr && connect_display() != B_OK)
            ADD_FAILURE() << "no display";
        desk.MoveTo(1270, 890);
    }
    ~InterfaceTest() override {
        for (const BMessenger& messenger : fWindows) {
            if (!messenger.LockTarget())
                continue;
            BLooper* looper = nullptr;
            messenger.Target(&looper);
            looper->Quit();
        }
    }

    // Shows the window and waits until it can be seen. It is quit when the test ends.
    void Show(RecordingWindow* window) {
        fWindows.emplace_back(window);
        const auto countShown = [&] {
            return desk
                .Windows([](const auto& info) { return info.viewable && info.pid == getpid(); })
                .size();
        };
        const size_t before = countShown();
        window->Show();
        EXPECT_TRUE(test::WaitUntil([&] { return countShown() > before; }));
        window->Settle();
    }
    void Activate(BWindow* window) {
        WithLock(window, [&] { window->Activate(); });
        EXPECT_TRUE(WaitFor(window, [&] { return window->IsActive(); }));
    }

    static void WithLock(BWindow* window, const std::function<void()>& action) {
        ASSERT_TRUE(window->Lock());
        action();
        window->Unlock();
    }
    // Waits for something that `holds` looks at with the window locked.
    static bool WaitFor(BWindow* window, const std::function<bool()>& holds) {
        return test::WaitUntil([&] {
            bool result = false;
            WithLock(window, [&] { result = holds(); });
            return result;
        });
    }

    BPoint OnScreen(BView* view, BPoint where) {
        WithLock(view->Window(), [&] { where = view->ConvertToScreen(where); });
        return where;
    }
    void MoveOver(BView* view, BPoint where) {
        const BPoint place = OnScreen(view, where);
        desk.MoveTo(static_cast<int>(place.x), static_cast<int>(place.y));
    }
    // Returns when the view's window, a RecordingWindow, is about to handle the release: the window
    // manager holds a press back for a moment, and the server gives what is held back the place
    // where the pointer is by then.
    void ClickAt(BView* view, BPoint where, int button = 1) {
        auto& window = dynamic_cast<RecordingWindow&>(*view->Window());
        const int before = window.releases;
        MoveOver(view, where);
        desk.Press(button);
        desk.Release(button);
        EXPECT_TRUE(test::WaitUntil([&] { return window.releases > before; }));
    }
    uint32_t PixelAt(BView* view, BPoint where) {
        const BPoint place = OnScreen(view, where);
        return desk.Pixel(static_cast<int>(place.x), static_cast<int>(place.y));
    }
    bool WaitForPixel(BView* view, BPoint where, uint32_t color) {
        return test::WaitUntil([&] { return PixelAt(view, where) == color; });
    }
    bool WaitForMenus(size_t count) {
        return test::WaitUntil([&] { return desk.Shown("POPUP_MENU").size() == count; });
    }

    test::Desk& desk = test::Desk::Shared();

private:
    std::vector<BMessenger> fWindows;
};
