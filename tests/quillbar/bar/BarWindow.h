#pragma once

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <mutex>
#include <string>
#include <vector>

#include "kits/app/Message.h"
#include "kits/app/MessageFilter.h"
#include "kits/interface/MenuItem.h"
#include "kits/interface/PopUpMenu.h"
#include "kits/interface/View.h"
#include "quillbar/app/Settings.h"
#include "quillbar/bar/MainWindow.h"
#include "tests/support/Bookmarks.h"
#include "tests/support/RecordedApps.h"
#include "tests/support/Robot.h"
#include "tests/support/Screen.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Wait.h"

// The codes of what the bar window and the application object were sent; quit requests are refused.
class Recorder {
public:
    void Add(uint32 code);
    std::vector<uint32> Codes() const;
    int Count(uint32 what) const;
    void Clear();

private:
    mutable std::mutex fMutex;
    std::vector<uint32> fCodes;
};

// The bar window on a private desktop, in this process. Messages whose codes a test asks to hold
// are recorded and go no further.
class BarTest : public testing::Test {
protected:
    static void SetUpTestSuite();
    void SetUp() override;
    void TearDown() override;

    // Builds and shows the window at (200, 150).
    void Show();
    void Hold(const std::vector<uint32>& codes);

    // The window is not active until it was clicked or this was called.
    void Activate();

    // Runs `work` with the window locked.
    void Locked(const std::function<void()>& work);
    void Send(const BMessage& message);
    void Send(uint32 what) { Send(BMessage(what)); }
    void SendKey(uint32 what, int32 key);
    // Returns when the window has handled all that was sent before.
    void Settle();

    BView* View(const char* name, int index = 0);
    BRect FrameOf(const char* name, int index = 0);
    // The window's content on the screen, without its border of one pixel.
    test::Box WindowBox();
    // A place in the window, on the screen.
    int X(float x) { return WindowBox().x + static_cast<int>(x); }
    int Y(float y) { return WindowBox().y + static_cast<int>(y); }
    rgb_color PixelAt(float x, float y);
    testing::AssertionResult PixelBecomes(float x, float y, rgb_color color);

    bool IsMarked(const char* label);
    // Windows of menus, of alerts.
    std::vector<test::WindowInfo> Menus();
    std::vector<test::WindowInfo> Alerts();
    bool KeyboardIsGrabbed();
    bool MenuOpens();
    bool MenuCloses();

    static test::TemporaryHome& Home();
    static test::RecordedApps& Apps();
    static Recorder& AppMessages();

    test::Robot fRobot{test::PrivateDesktop::Shared()};
    test::Screen fScreen{test::PrivateDesktop::Shared()};
    Recorder fHeld;
    QBMainWindow* fWindow = nullptr;
};
