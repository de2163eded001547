#include <X11/keysym.h>
#include <atomic>
#include <thread>

#include "kits/app/AppDefs.h"
#include "quillbar/store/Item.h"
#include "quillbar/store/Monitor.h"
#include "quillbar/store/Path.h"
#include "tests/quillbar/bar/BarWindow.h"

namespace fs = std::filesystem;

namespace {

class MainWindowTest : public BarTest {
protected:
    fs::path Root() const { return Home().Config() / "Quillbar"; }
    void SendColor(rgb_color color) {
        BMessage paste(B_PASTE);
        paste.AddData("RGBColor", B_RGB_COLOR_TYPE, &color, sizeof color);
        Send(paste);
    }
    // As the folder menu's item sends it.
    void SendLaunch(int folder, int32 slot) {
        BMessage message(QBFolder[folder]);
        message.AddInt32("slot", slot);
        Send(message);
    }
};

TEST_F(MainWindowTest, StandsInAColumn) {
    Show();
    EXPECT_EQ(WindowBox(), (test::Box{200, 150, 22, 264}));
    EXPECT_EQ(FrameOf("qb_main_view"), BRect(0, 0, 21, 263));
    EXPECT_EQ(FrameOf("qb_bar"), BRect(0, 0, 21, 13));
    for (int i = 0; i < 10; ++i) {
        const float y = 14 + 25.f * static_cast<float>(i);
        EXPECT_EQ(FrameOf("qb_main_button", i), BRect(1, y, 21, y + 20));
    }
}

TEST_F(MainWindowTest, StandsInARowWhenSetSo) {
    gSettings->SetAlign(kQBAlignHorizontal);
    Show();
    EXPECT_EQ(WindowBox(), (test::Box{200, 150, 233, 25}));
    EXPECT_EQ(FrameOf("qb_main_view"), BRect(0, 0, 232, 24));
    EXPECT_EQ(FrameOf("qb_bar"), BRect(0, 0, 13, 24));
    for (int i = 0; i < 10; ++i) {
        const float x = 14 + 22.f * static_cast<float>(i);
        EXPECT_EQ(FrameOf("qb_main_button", i), BRect(x, 0, x + 20, 20));
    }
    EXPECT_TRUE(IsMarked("Align Horizontally"));
    EXPECT_FALSE(IsMarked("Align Vertically"));
}

TEST_F(MainWindowTest, TurnsWithItsCornerInPlace) {
    Show();
    Send(kQBAlignHorizontally);
    EXPECT_TRUE(test::WaitUntil([&] { return WindowBox() == test::Box{200, 150, 233, 25}; }));
    EXPECT_EQ(FrameOf("qb_bar"), BRect(0, 0, 13, 24));
    EXPECT_EQ(FrameOf("qb_main_button", 9), BRect(212, 0, 232, 20));
    EXPECT_EQ(gSettings->GetAlign(), kQBAlignHorizontal);
    EXPECT_TRUE(IsMarked("Align Horizontally"));
    EXPECT_FALSE(IsMarked("Align Vertically"));
    // What the column did not cover is painted.
    EXPECT_TRUE(PixelBecomes(120, 23, {216, 216, 216, 255}));

    Send(kQBAlignVertically);
    EXPECT_TRUE(test::WaitUntil([&] { return WindowBox() == test::Box{200, 150, 22, 264}; }));
    EXPECT_EQ(FrameOf("qb_main_button", 9), BRect(1, 239, 21, 259));
    EXPECT_FALSE(IsMarked("Align Horizontally"));
    EXPECT_TRUE(IsMarked("Align Vertically"));
}

TEST_F(MainWindowTest, UnknownAlignmentIsAColumnWithoutAMark) {
    gSettings->SetAlign(static_cast<QBAlign>(77));
    Show();
    EXPECT_EQ(WindowBox(), (test::Box{200, 150, 22, 264}));
    EXPECT_FALSE(IsMarked("Align Horizontally"));
    EXPECT_FALSE(IsMarked("Align Vertically"));
}

TEST_F(MainWindowTest, PlaceIsKeptWhenTheWindowGoes) {
    Show();
    Locked([&] { fWindow->MoveTo(321, 123); });
    ASSERT_TRUE(fWindow->Lock());
    fWindow->Quit();
    fWindow = nullptr;
    EXPECT_EQ(gSettings->GetPos(), BPoint(321, 123));
    EXPECT_EQ(QBMainWindow::fMsgWindow, nullptr);
    EXPECT_EQ(QBMainWindow::fMonitor, nullptr);
}

TEST_F(MainWindowTest, FolderMenuOpensBesideOrBelowItsButton) {
    Show();
    fWindow->PostMessage(QBFolder[3]);
    ASSERT_TRUE(MenuOpens());
    EXPECT_EQ(Menus()[0].frame.x, X(21));
    EXPECT_EQ(Menus()[0].frame.y, Y(14 + 3 * 25));
    fRobot.Key(XK_Escape);
    EXPECT_TRUE(MenuCloses());

    Send(kQBAlignHorizontally);
    fWindow->PostMessage(QBFolder[3]);
    ASSERT_TRUE(MenuOpens());
    EXPECT_EQ(Menus()[0].frame.x, X(14 + 3 * 22));
    EXPECT_EQ(Menus()[0].frame.y, Y(20));
    fRobot.Key(XK_Escape);
    EXPECT_TRUE(MenuCloses());
}

TEST_F(MainWindowTest, KeypadDigitChoosesASlotInAFolderMenu) {
    test::MakeBookmark(Root() / "2 - x" / "4 - y", "http://keypad.example");
    gSettings->SetBrowser(kQBNetPositive);
    Show();
    Activate();
    fRobot.Key(XK_2);
    ASSERT_TRUE(MenuOpens());
    // An empty slot, a digit of the main row, arrows and Enter do nothing.
    for (const uint32_t key : {XK_KP_3, XK_4, XK_Down, XK_Down, XK_Down, XK_Return})
        fRobot.Key(key);
    const size_t before = Apps().Launches().size();
    EXPECT_EQ(Menus().size(), 1u);
    fRobot.Key(XK_KP_4);
    EXPECT_TRUE(MenuCloses());
    const auto launches = Apps().WaitForLaunches(before + 1);
    ASSERT_EQ(launches.size(), before + 1);
    EXPECT_EQ(launches.back().arguments, std::vector<std::string>{"http://keypad.example"});

    fRobot.Key(XK_2);
    ASSERT_TRUE(MenuOpens());
    fRobot.Key(XK_KP_Divide);
    EXPECT_TRUE(MenuCloses());
}

TEST_F(MainWindowTest, ChosenBrowserGetsTheUrlAlone) {
    test::MakeBookmark(Root() / "2 - x" / "4 - y", "http://x.example/?a=b&c=$(touch no)");
    gSettings->SetBrowser(kQBOpera);
    Show();
    EXPECT_TRUE(IsMarked("Use Opera"));
    size_t before = Apps().Launches().size();
    SendLaunch(2, 5);
    auto launches = Apps().WaitForLaunches(before + 1);
    ASSERT_EQ(launches.size(), before + 1);
    EXPECT_EQ(launches.back().app, "opera");
    EXPECT_EQ(launches.back().arguments,
              std::vector<std::string>{"http://x.example/?a=b&c=$(touch no)"});

    BMessage choose(kQBUseNetPositive);
    Locked(
        [&] { choose.AddPointer("source", fWindow->SettingsMenu()->FindItem("Use NetPositive")); });
    Send(choose);
    EXPECT_TRUE(IsMarked("Use NetPositive"));
    EXPECT_FALSE(IsMarked("Use Opera"));
    SendLaunch(2, 5);
    launches = Apps().WaitForLaunches(before + 2);
    ASSERT_EQ(launches.size(), before + 2);
    EXPECT_EQ(launches.back().app, "browser");
}

TEST_F(MainWindowTest, SlotsOutOfRangeAreIgnored) {
    Show();
    for (const int32 slot : {-1, 0, 11, INT32_MAX, INT32_MIN})
        SendLaunch(2, slot);
    EXPECT_TRUE(Menus().empty());
}

TEST_F(MainWindowTest, OnlyInstalledBrowserBecomesTheSetting) {
    Apps().Uninstall("opera");
    gSettings->SetBrowser(kQBOpera);
    Show();
    EXPECT_FALSE(IsEnabled("Use Opera"));
    EXPECT_TRUE(IsMarked("Use NetPositive"));
    EXPECT_EQ(gSettings->GetBrowser(), kQBNetPositive);
    Apps().InstallOpera();
}

TEST_F(MainWindowTest, BrowserMessageWithoutSourceChangesTheSettingOnly) {
    gSettings->SetBrowser(kQBOpera);
    Show();
    Send(kQBUseNetPositive);
    EXPECT_EQ(gSettings->GetBrowser(), kQBNetPositive);
    EXPECT_TRUE(IsMarked("Use Opera"));
}

TEST_F(MainWindowTest, ShowUrlRelabelsEverySlot) {
    test::MakeBookmark(Root() / "2 - x" / "4 - y", "http://y");
    test::MakeBookmark(Root() / "9 - x" / "0 - z", "http://z");
    Show();
    auto label = [&](int folder, int slot) {
        std::string text;
        Locked([&] {
            text = QBMainWindow::fMonitor->fPaths[folder]->Items()[slot]->MenuItem()->Label();
        });
        return text;
    };
    EXPECT_EQ(label(2, 4), "4 - y [http://y]");
    Send(kQBShowURLNo);
    EXPECT_EQ(label(2, 4), "4 - y");
    EXPECT_EQ(label(9, 0), "0 - z");
    EXPECT_TRUE(IsMarked("No"));
    EXPECT_FALSE(IsMarked("Yes"));
    Send(kQBShowURLYes);
    EXPECT_EQ(label(9, 0), "0 - z [http://z]");
    EXPECT_TRUE(IsMarked("Yes"));
}

TEST_F(MainWindowTest, HotKeyMarksFollowTheBits) {
    gSettings->SetHotKey(40);
    Show();
    EXPECT_TRUE(IsMarked("\"Windows\" Key"));
    EXPECT_TRUE(IsMarked("Delete Key On Numeric Keypad"));
    EXPECT_FALSE(IsMarked("Alt Key"));
    const std::pair<uint32, int32> toggles[] = {
        {kQBToggleAltKey, 41},  {kQBToggleShiftKey, 43},   {kQBToggleControlKey, 47},
        {kQBToggleMenuKey, 63}, {kQBToggleWindowsKey, 55}, {kQBToggleDeleteKey, 23},
    };
    for (const auto& [command, keys] : toggles) {
        Send(command);
        EXPECT_EQ(gSettings->GetHotKey(), keys);
    }
    EXPECT_TRUE(IsMarked("\"Menu\" Key"));
    EXPECT_FALSE(IsMarked("Delete Key On Numeric Keypad"));
}

TEST_F(MainWindowTest, LastHotKeyStaysAndAnAlertSaysSo) {
    Show();
    // This one goes on handling messages meanwhile.
    Send(kQBToggleWindowsKey);
    ASSERT_TRUE(test::WaitUntil([&] { return Alerts().size() == 1; }));
    EXPECT_EQ(gSettings->GetHotKey(), 8);
    EXPECT_TRUE(IsMarked("\"Windows\" Key"));
    fRobot.Key(XK_Return);
    ASSERT_TRUE(test::WaitUntil([&] { return Alerts().empty(); }));

    Send(kQBToggleAltKey);
    Send(kQBToggleWindowsKey);
    EXPECT_EQ(gSettings->GetHotKey(), 1);
    // This one waits.
    fWindow->PostMessage(kQBToggleAltKey);
    ASSERT_TRUE(test::WaitUntil([&] { return Alerts().size() == 1; }));
    fWindow->PostMessage(kQBToggleOnTop);
    EXPECT_FALSE(gSettings->GetOnTop());
    fRobot.Key(XK_Return);
    EXPECT_TRUE(test::WaitUntil([&] { return gSettings->GetOnTop(); }));
    EXPECT_EQ(gSettings->GetHotKey(), 1);
}

TEST_F(MainWindowTest, OnTopIsMarkedAndAsked) {
    Show();
    auto isAbove = [&] {
        const auto windows = fScreen.Windows(
            [](const test::WindowInfo& window) { return window.title == "Quillbar"; });
        return !windows.empty() && fScreen.HasState(windows[0].id, "_NET_WM_STATE_ABOVE");
    };
    EXPECT_FALSE(isAbove());
    Send(kQBToggleOnTop);
    EXPECT_TRUE(IsMarked("Always On Top"));
    EXPECT_TRUE(test::WaitUntil(isAbove));
    Send(kQBToggleOnTop);
    EXPECT_FALSE(IsMarked("Always On Top"));
    EXPECT_TRUE(test::WaitUntil([&] { return !isAbove(); }));
    EXPECT_FALSE(gSettings->GetOnTop());
}

TEST_F(MainWindowTest, DroppedColourPaintsEverythingAndIsStored) {
    Show();
    Activate();
    const rgb_color blue{20, 40, 200, 255};
    SendColor(blue);
    EXPECT_TRUE(PixelBecomes(15, 6, blue));
    EXPECT_TRUE(PixelBecomes(6, 6, blue));
    EXPECT_TRUE(PixelBecomes(0, 100, blue));
    for (int i = 0; i < 10; ++i)
        EXPECT_TRUE(PixelBecomes(3, 16 + 25.f * static_cast<float>(i), blue));
    EXPECT_EQ(gSettings->GetColor(), blue);

    // One that a button was given goes on to the window.
    const rgb_color green{20, 200, 40, 255};
    BMessage paste(B_PASTE);
    paste.AddData("RGBColor", B_RGB_COLOR_TYPE, &green, sizeof green);
    Locked([&] { fWindow->PostMessage(&paste, View("qb_main_button", 4)); });
    EXPECT_TRUE(PixelBecomes(0, 100, green));
    EXPECT_TRUE(PixelBecomes(15, 6, green));

    Send(B_PASTE);
    BMessage wrong(B_PASTE);
    wrong.AddInt32("RGBColor", 0);
    Send(wrong);
    EXPECT_EQ(gSettings->GetColor(), green);
}

TEST_F(MainWindowTest, KeysOpenFolderMenus) {
    const std::pair<int32, int> keys[] = {
        {0x1b, 0}, {0x12, 1}, {0x13, 2}, {0x14, 3}, {0x15, 4}, {0x16, 5}, {0x17, 6},
        {0x18, 7}, {0x19, 8}, {0x1a, 9}, {0x64, 0}, {0x58, 1}, {0x59, 2}, {0x5a, 3},
        {0x48, 4}, {0x49, 5}, {0x4a, 6}, {0x37, 7}, {0x38, 8}, {0x39, 9},
    };
    Show();
    Hold({QBFolder, QBFolder + 10});
    for (const auto& [key, digit] : keys) {
        fHeld.Clear();
        SendKey(B_KEY_DOWN, key);
        SendKey(B_KEY_DOWN, key);  // repeated
        SendKey(B_KEY_DOWN, 0x13); // a second key
        Send(B_KEY_UP);
        Settle();
        EXPECT_EQ(fHeld.Codes(), std::vector<uint32>{QBFolder[digit]}) << key;
    }
}

TEST_F(MainWindowTest, OtherKeysDoTheirOwnOrNothing) {
    Show();
    Hold({kQBShowSettings, QBFolder[5], QBFolder[3]});
    SendKey(B_KEY_DOWN, 0x50);
    Send(B_KEY_UP);
    Settle();
    EXPECT_EQ(fHeld.Codes(), std::vector<uint32>{kQBShowSettings});
    fHeld.Clear();
    for (const int32 key : {0x00, 0x01, 0x11, 0x26, 0x57, 0x7fffffff, -1}) {
        SendKey(B_KEY_DOWN, key);
        Send(B_KEY_UP);
    }
    Send(B_KEY_DOWN); // without a code, but a key is held
    SendKey(B_KEY_DOWN, 0x14);
    EXPECT_TRUE(fHeld.Codes().empty());
    // The keypad's 5 without Num Lock, whatever is held; and nothing else.
    SendKey(B_UNMAPPED_KEY_DOWN, 0x49);
    SendKey(B_UNMAPPED_KEY_DOWN, 0x14);
    Settle();
    EXPECT_EQ(fHeld.Codes(), std::vector<uint32>{QBFolder[5]});
}

TEST_F(MainWindowTest, ApplicationHearsOfActivation) {
    Show();
    Activate();
    Deactivate();
    EXPECT_EQ(AppMessages().Codes().back(), static_cast<uint32>(kQBWindowInactive));
}

TEST_F(MainWindowTest, NoBrowserIsSaidBeforeTheBarIsShown) {
    Apps().Uninstall("opera");
    Apps().Uninstall("browser");
    std::atomic<bool> built = false;
    std::thread builder([&] {
        fWindow = new QBMainWindow(BRect(200, 150, 0, 0));
        fWindow->Show();
        built = true;
    });
    EXPECT_TRUE(test::WaitUntil([&] { return Alerts().size() == 1; }));
    EXPECT_FALSE(built);
    fRobot.Key(XK_Return);
    builder.join();
    EXPECT_TRUE(test::WaitUntil([&] { return WindowBox().width > 0; }));
    Settle();
    EXPECT_FALSE(IsEnabled("Use Opera"));
    EXPECT_FALSE(IsEnabled("Use NetPositive"));
    EXPECT_FALSE(IsMarked("Use NetPositive"));
    Apps().InstallBrowser();
    Apps().InstallOpera();
}

} // namespace
