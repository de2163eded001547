#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include <X11/keysym.h>
#include <gtest/gtest.h>

#include "kits/app/Messenger.h"
#include "kits/interface/window/View.h"
#include "kits/interface/window/Window.h"
#include "tests/support/Desk.h"

// Counts what reaches it, and draws what it is told to. Used with its window locked.
class RecordingView : public BView {
public:
    explicit RecordingView(BRect frame, rgb_color color = {255, 255, 255, 255});

    void Draw(BRect updateRect) override;
    void MouseDown(BPoint) override { downs++; }
    void MouseUp(BPoint) override { ups++; }
    void MouseMoved(BPoint where, uint32 transit, const BMessage* dragMessage) override;

    int downs = 0;
    int ups = 0;
    std::vector<BPoint> moves;
    std::vector<BRect> draws;
    std::function<void(BView&)> onDraw; // may be empty
};

// Keeps the codes of the messages that its base does not use up.
class RecordingWindow : public BWindow {
public:
    explicit RecordingWindow(BRect frame, window_look look = B_BORDERED_WINDOW_LOOK);

    void DispatchMessage(BMessage* message, BHandler* handler) override;
    void MessageReceived(BMessage* message) override;
    // Waits until its thread has handled all that was sent to it before. False if it does not.
    bool Settle();
    long CountReceived(uint32 what); // locks

    std::vector<uint32> received;
    std::atomic<int> releases = 0; // of buttons, handled or about to be

private:
    std::atomic<int> fMarks = 0;
};

// Has the program's display on the shared desk. The pointer starts in a corner without windows.
class InterfaceTest : public ::testing::Test {
protected:
    InterfaceTest();
    ~InterfaceTest() override;

    // Shows the window and waits until it can be seen. It is quit when the test ends.
    void Show(RecordingWindow* window);
    void Activate(BWindow* window);
    // The windows of this process that can be seen.
    std::vector<test::WindowInfo> ShownWindows() const;

    // Waits for something that `holds` looks at with the window locked.
    static bool WaitFor(BWindow* window, const std::function<bool()>& holds);
    static void WithLock(BWindow* window, const std::function<void()>& action);

    BPoint OnScreen(BView* view, BPoint where);
    void MoveOver(BView* view, BPoint where);
    // Returns when the view's window, a RecordingWindow, is about to handle the release.
    void ClickAt(BView* view, BPoint where, int button = 1);
    uint32_t PixelAt(BView* view, BPoint where);
    bool WaitForPixel(BView* view, BPoint where, uint32_t color);
    bool WaitForMenus(size_t count);

    test::Desk& desk;

private:
    std::vector<BMessenger> fWindows;
};
