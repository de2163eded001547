// The settings menu: its entries, their marks and what they do.

#include "tests/desktop/DesktopTest.h"

using namespace test;

namespace {

class SettingsMenuTest : public DesktopTest {
protected:
    Picture MenuPicture() {
        OpenSettings();
        const Picture picture = fDesk.Settled(fProgram.Menus()[0].frame);
        CloseMenus();
        return picture;
    }
};

TEST_F(SettingsMenuTest, MarksFollowTheLastHotKeyStaysAndQuitEndsTheProgram) {
    fProgram.Start();
    ActivateBar();
    const Picture vertical = MenuPicture();
    ChooseSetting(setting::kAlignHorizontally);
    EXPECT_TRUE(WaitUntil([&] { return fProgram.Content() == Box{30, 30, 233, 25}; }));
    EXPECT_NE(MenuPicture(), vertical) << "the mark did not move";
    ChooseSetting(setting::kAlignVertically);
    EXPECT_TRUE(WaitUntil([&] { return fProgram.Content() == Box{30, 30, 22, 264}; }));
    EXPECT_EQ(MenuPicture(), vertical);

    ChooseSetting(setting::kHotKey, setting::kWindowsKey);
    DismissAlert();
    ActivateBar();
    ChooseSetting(setting::kHotKey, setting::kControlKey);
    ChooseSetting(setting::kHotKey, setting::kWindowsKey);
    ChooseSetting(setting::kHotKey, setting::kControlKey);
    DismissAlert();
    ActivateBar();
    ChooseSetting(setting::kHotKey, setting::kMenuKey);
    ChooseSetting(setting::kHotKey, setting::kDeleteKey);
    ChooseSetting(setting::kQuit);
    EXPECT_EQ(fProgram.WaitForEnd(), 0);
    EXPECT_EQ(fProgram.Settings().GetInt32("hotkey", -1), 4 + 16 + 32);
}

class BrowserTest : public DesktopTest {
protected:
    void SetUp() override {
        DesktopTest::SetUp();
        AddBookmark(2, "1 - Site", "http://site.example/");
    }
};

TEST_F(BrowserTest, TheChosenOneIsSavedAtOnceAndTheOnlyInstalledOneIsUsed) {
    fProgram.Start();
    ActivateBar();
    ChooseSetting(setting::kUseOpera);
    EXPECT_TRUE(WaitUntil([&] { return fProgram.Settings().GetInt32("browser", -1) == 0; }));
    ChooseSlot(2, 1);
    EXPECT_EQ(fApps.WaitForLaunches(1).at(0).app, "opera");
    EXPECT_EQ(fProgram.Stop(), 0);
    fProgram.Start();
    ChooseSlot(2, 1);
    EXPECT_EQ(fApps.WaitForLaunches(2).at(1).app, "opera");
    EXPECT_EQ(fProgram.Stop(), 0);
    fApps.Uninstall("opera");
    fProgram.Start();
    ChooseSlot(2, 1);
    EXPECT_EQ(fApps.WaitForLaunches(3).at(2).app, "browser");
    EXPECT_EQ(fProgram.Stop(), 0);
    EXPECT_EQ(fProgram.Settings().GetInt32("browser", -1), 1);
}

TEST_F(BrowserTest, WithoutABrowserAnAlertSaysSoBeforeTheBarComes) {
    fApps.Uninstall("browser");
    fApps.Uninstall("opera");
    fProgram.Launch();
    ASSERT_TRUE(AlertOpens());
    EXPECT_FALSE(fProgram.Bar().viewable);
    DismissAlert();
    ASSERT_TRUE(fProgram.WaitForBar());
    ChooseSlot(2, 1);
    DismissAlert();
    EXPECT_TRUE(fApps.Launches().empty());
}

TEST_F(BrowserTest, OneThatCannotBeStartedIsReported) {
    fProgram.Start();
    for (const char* command : {"", "/etc/passwd %u", "/nowhere/browser %u", "/bin/false %u"}) {
        if (*command == '\0')
            fApps.Uninstall("browser");
        else
            fApps.Install("browser", {}, command);
        ChooseSlot(2, 1);
        DismissAlert();
    }
    fApps.Install("browser");
    ChooseSlot(2, 1);
    EXPECT_EQ(fApps.WaitForLaunches(1).size(), 1u);
    EXPECT_TRUE(fProgram.Alerts().empty());
}

} // namespace
