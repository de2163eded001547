#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kits/app/Messenger.h"
#include "kits/interface/window/View.h"
#include "kits/interface/window/Window.h"
#include "tests/support/PrivateDesktop.h"
#include "tests/support/Robot.h"
#include "tests/support/Screen.h"
#include "tests/support/Wait.h"

// Keeps what it is told, and draws what it is told to. Used with its window locked.
class RecordingView : public BView {
public:
    RecordingView(BRect frame, const char* name, rgb_color color = {255, 255, 255, 255});

    void Draw(BRect updateRect) override;
    void MouseDown(BPoint where) override;
    void MouseUp(BPoint where) override;
    void MouseMoved(BPoint where, uint32 transit, const BMessage* dragMessage) override;

    int CountOf(const std::string& event) const;

    // "down", "up", "entered", "inside", "exited", "outside".
    std::vector<std::string> events;
    std::vector<BRect> draws;
    BPoint lastWhere;
    uint32 mask = 0;                    // asked for in MouseDown()
    std::function<void(BView&)> onDraw; // may be empty
    std::function<void(BView&)> onMouseDown;
};

// Keeps the codes of the messages that reach it and that its base does not use up.
class RecordingWindow : public BWindow {
public:
    explicit RecordingWindow(BRect frame, window_look look = B_BORDERED_WINDOW_LOOK,
                             uint32 flags = B_NOT_RESIZABLE);

    void MessageReceived(BMessage* message) override;

    std::vector<uint32> received;
    std::function<void(BMessage&)> onMessage;
};

// The windows of this process that can be seen.
std::vector<test::WindowInfo> ShownWindows(const test::Screen& screen);

// Has the program's display on a private desktop, for the whole test program.
class InterfaceTest : public ::testing::Test {
protected:
    InterfaceTest();
    ~InterfaceTest() override;

    // Shows the window and waits until it can be seen, where it should be. It is quit when the test
    // ends.
    void Show(BWindow* window);
    // Whether the window's own thread has handled all that was sent to it before.
    static bool Settle(BWindow* window);

    // Waits for something that `holds` looks at with the window locked.
    static bool WaitFor(BWindow* window, const std::function<bool()>& holds);
    static void WithLock(BWindow* window, const std::function<void()>& action);

    void MoveOver(BView* view, BPoint where);
    // Returns when the window is about to handle the release.
    void ClickAt(BView* view, BPoint where, int button = 1);
    BPoint OnScreen(BView* view, BPoint where);
    uint32_t PixelAt(BView* view, BPoint where);
    bool WaitForPixel(BView* view, BPoint where, uint32_t color);

    test::PrivateDesktop& desktop;
    test::Robot robot;
    test::Screen screen;

private:
    std::vector<BMessenger> fWindows;
    std::atomic<int> fReleases = 0;
};
