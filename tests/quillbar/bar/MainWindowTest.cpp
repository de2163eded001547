#include <X11/keysym.h>

#include "kits/app/AppDefs.h"
#include "tests/quillbar/bar/BarWindow.h"

namespace {

class MainWindowTest : public BarTest {
protected:
    static BMessage Color(rgb_color color) {
        BMessage paste(B_PASTE);
        paste.AddData("RGBColor", B_RGB_COLOR_TYPE, &color, sizeof color);
        return paste;
    }
};

TEST_F(MainWindowTest, StandsInAColumnUnlessSetOtherwise) {
    gSettings->SetAlign(static_cast<QBAlign>(77));
    Show();
    EXPECT_EQ(WindowBox(), (test::Box{200, 150, 22, 264}));
    EXPECT_EQ(FrameOf("qb_main_view"), BRect(0, 0, 21, 263));
    EXPECT_EQ(FrameOf("qb_bar"), BRect(0, 0, 21, 13));
    for (int i = 0; i < 10; ++i) {
        const float y = 14 + 25.f * static_cast<float>(i);
        EXPECT_EQ(FrameOf("qb_main_button", i), BRect(1, y, 21, y + 20));
    }
}

TEST_F(MainWindowTest, TurnsWithItsCornerInPlace) {
    Show();
    Send(kQBAlignHorizontally);
    EXPECT_TRUE(test::WaitUntil([&] { return WindowBox() == test::Box{200, 150, 233, 25}; }));
    EXPECT_EQ(FrameOf("qb_bar"), BRect(0, 0, 13, 24));
    EXPECT_EQ(FrameOf("qb_main_button", 9), BRect(212, 0, 232, 20));
    EXPECT_TRUE(IsMarked("Align Horizontally"));
    EXPECT_FALSE(IsMarked("Align Vertically"));
    // What the column did not cover is painted.
    EXPECT_TRUE(PixelBecomes(120, 23, {216, 216, 216, 255}));

    Send(kQBAlignVertically);
    EXPECT_TRUE(test::WaitUntil([&] { return WindowBox() == test::Box{200, 150, 22, 264}; }));
    EXPECT_EQ(FrameOf("qb_main_button", 9), BRect(1, 239, 21, 259));
}

TEST_F(MainWindowTest, SlotsOutOfRangeAreIgnored) {
    Show();
    for (const int32 slot : {-1, 0, 11, INT32_MAX, INT32_MIN}) {
        BMessage message(QBFolder[2]);
        message.AddInt32("slot", slot);
        Send(message);
    }
    EXPECT_TRUE(Menus().empty());
}

TEST_F(MainWindowTest, AKeypadKeyThatOpenedAMenuDoesNotChooseByRepeating) {
    test::MakeBookmark(Home().Config() / "Quillbar" / "2 - x" / "2 - y", "http://keypad.example");
    Show();
    Activate();
    const size_t before = Apps().Launches().size();
    fRobot.KeyDown(XK_KP_2);
    ASSERT_TRUE(MenuOpens());
    // Longer than the server waits before it repeats.
    EXPECT_FALSE(test::WaitUntil([&] { return Menus().empty(); }, std::chrono::milliseconds(1000)));
    fRobot.KeyUp(XK_KP_2);
    fRobot.Key(XK_KP_2);
    EXPECT_TRUE(MenuCloses());
    EXPECT_EQ(Apps().WaitForLaunches(before + 1).size(), before + 1);
}

TEST_F(MainWindowTest, BrowserMessageWithoutSourceChangesTheSettingOnly) {
    gSettings->SetBrowser(kQBOpera);
    Show();
    Send(kQBUseNetPositive);
    EXPECT_EQ(gSettings->GetBrowser(), kQBNetPositive);
    EXPECT_TRUE(IsMarked("Use Opera"));
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
}

TEST_F(MainWindowTest, DroppedColourPaintsEverythingAndIsStored) {
    Show();
    Activate();
    const rgb_color blue{20, 40, 200, 255};
    Send(Color(blue));
    EXPECT_TRUE(PixelBecomes(15, 6, blue));
    EXPECT_TRUE(PixelBecomes(6, 6, blue));
    EXPECT_TRUE(PixelBecomes(0, 100, blue));
    for (int i = 0; i < 10; ++i)
        EXPECT_TRUE(PixelBecomes(3, 16 + 25.f * static_cast<float>(i), blue));
    EXPECT_EQ(gSettings->GetColor(), blue);

    // One that a button was given goes on to the window.
    const rgb_color green{20, 200, 40, 255};
    BMessage paste = Color(green);
    Locked([&] { fWindow->PostMessage(&paste, View("qb_main_button", 4)); });
    EXPECT_TRUE(PixelBecomes(0, 100, green));
    EXPECT_TRUE(PixelBecomes(15, 6, green));

    Send(B_PASTE);
    BMessage wrong(B_PASTE);
    wrong.AddInt32("RGBColor", 0);
    Send(wrong);
    EXPECT_EQ(gSettings->GetColor(), green);
}

TEST_F(MainWindowTest, OtherKeysDoTheirOwnOrNothing) {
    Show();
    Hold({kQBShowSettings, QBFolder[5], QBFolder[3]});
    SendKey(B_KEY_DOWN, 0x50);
    Send(B_KEY_UP);
    Settle();
    EXPECT_EQ(fHeld.Codes(), std::vector<uint32>{kQBShowSettings});
    fHeld.Clear();
    for (const int32 key : {0x00, 0x11, 0x7fffffff, -1}) {
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

} // namespace
