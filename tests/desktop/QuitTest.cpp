// However the program ends, its settings are on disk and it does not take long.

#include <csignal>
#include <fstream>
#include <sys/stat.h>
#include <thread>

#include "tests/desktop/DesktopTest.h"

using namespace test;
namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds kLimit{5};

enum class Ending { Terminate, Interrupt, HangUp, Close };
enum class Moment { Idle, FolderMenu, SubMenu, Alert };

std::string NameOf(const testing::TestParamInfo<std::tuple<Ending, Moment>>& info) {
    const char* endings[] = {"Terminate", "Interrupt", "HangUp", "Close"};
    const char* moments[] = {"Idle", "FolderMenu", "SubMenu", "Alert"};
    return std::string(endings[static_cast<int>(std::get<0>(info.param))]) + "With" +
           moments[static_cast<int>(std::get<1>(info.param))];
}

// Brings the program to a moment; shared with the test on a desktop of its own.
class EndingTest : public DesktopTest {
protected:
    using DesktopTest::DesktopTest;

    void Reach(Moment moment) {
        fProgram.Start();
        ActivateBar();
        ChooseSetting(setting::kAlwaysOnTop); // so that there is something to save
        ASSERT_TRUE(
            WaitUntil([&] { return fScreen.HasState(fProgram.Bar().id, "_NET_WM_STATE_ABOVE"); }));
        if (moment == Moment::FolderMenu)
            OpenFolder(3);
        if (moment == Moment::SubMenu) {
            OpenSettings();
            for (int i = 0; i < setting::kHotKey; ++i)
                fRobot.Key(XK_Down);
            fRobot.Key(XK_Right);
            ASSERT_TRUE(WaitUntil([&] { return fProgram.Menus().size() == 2; }));
        }
        if (moment == Moment::Alert) {
            ChooseSetting(setting::kHotKey, setting::kWindowsKey);
            ASSERT_TRUE(AlertOpens());
        }
    }
    void ExpectSaved() const {
        EXPECT_TRUE(fProgram.Settings().GetBool("ontop", false));
        EXPECT_EQ(fProgram.Settings().GetPoint("pos", BPoint(0, 0)), BPoint(30, 30));
    }
};

class QuitTest : public EndingTest,
                 public testing::WithParamInterface<std::tuple<Ending, Moment>> {};

TEST_P(QuitTest, SavesAndEndsInTime) {
    const auto [ending, moment] = GetParam();
    ASSERT_NO_FATAL_FAILURE(Reach(moment));
    switch (ending) {
    case Ending::Terminate:
        fProgram.Signal(SIGTERM);
        break;
    case Ending::Interrupt:
        fProgram.Signal(SIGINT);
        break;
    case Ending::HangUp:
        fProgram.Signal(SIGHUP);
        break;
    case Ending::Close:
        fScreen.Close(fProgram.Bar().id);
        break;
    }
    EXPECT_EQ(fProgram.WaitForEnd(kLimit), 0);
    ExpectSaved();
}

INSTANTIATE_TEST_SUITE_P(, QuitTest,
                         testing::Combine(testing::Values(Ending::Terminate, Ending::Interrupt,
                                                          Ending::HangUp, Ending::Close),
                                          testing::Values(Moment::Idle, Moment::FolderMenu,
                                                          Moment::SubMenu, Moment::Alert)),
                         NameOf);

struct DesktopToLose {
    PrivateDesktop fOwn{PrivateDesktop::Options{}};
};

class LostDisplayTest : private DesktopToLose,
                        public EndingTest,
                        public testing::WithParamInterface<Moment> {
protected:
    LostDisplayTest()
        : EndingTest(fOwn) {}

    void LoseDisplay() { fOwn.KillServer(); }
};

TEST_P(LostDisplayTest, SavesAndEndsWithOne) {
    ASSERT_NO_FATAL_FAILURE(Reach(GetParam()));
    LoseDisplay();
    EXPECT_EQ(fProgram.WaitForEnd(kLimit), 1);
    ExpectSaved();
}

INSTANTIATE_TEST_SUITE_P(, LostDisplayTest,
                         testing::Values(Moment::Idle, Moment::FolderMenu, Moment::SubMenu,
                                         Moment::Alert));

class SaveTest : public DesktopTest {
protected:
    // Starts with a setting that only a whole settings file brings back.
    void WriteMarkedSettings() {
        BMessage settings;
        settings.AddInt32("hotkey", 33);
        fProgram.WriteSettings(settings);
    }
};

TEST_F(SaveTest, DeathWhileSavingLeavesAWholeFile) {
    WriteMarkedSettings();
    for (int delay = 0; delay < 16; ++delay) {
        fProgram.Start();
        fProgram.Signal(SIGTERM);
        std::this_thread::sleep_for(std::chrono::milliseconds(2 * delay));
        fProgram.Signal(SIGKILL);
        fProgram.WaitForEnd();
        ASSERT_EQ(fProgram.Settings().GetInt32("hotkey", -1), 33) << delay;
    }
}

TEST_F(SaveTest, ALinkToTheSettingsStaysOne) {
    WriteMarkedSettings();
    const fs::path target = fHome.Path() / "kept settings";
    fs::rename(fProgram.SettingsFile(), target);
    fs::create_symlink(target, fProgram.SettingsFile());
    fProgram.Start();
    EXPECT_EQ(fProgram.Stop(), 0);
    EXPECT_TRUE(fs::is_symlink(fProgram.SettingsFile()));
    EXPECT_EQ(fs::read_symlink(fProgram.SettingsFile()), target);
    EXPECT_EQ(fProgram.Settings().GetPoint("pos", BPoint(0, 0)), BPoint(30, 30));
    EXPECT_EQ(fProgram.Settings().GetInt32("hotkey", -1), 33);
}

TEST_F(SaveTest, AFolderThatCannotBeWrittenKeepsTheOldFile) {
    fProgram.Start();
    EXPECT_EQ(fProgram.Stop(), 0);
    WriteMarkedSettings();
    const fs::perms all = fs::perms::owner_all | fs::perms::group_all | fs::perms::others_all;
    fs::permissions(fHome.Config(), fs::perms::owner_read | fs::perms::owner_exec);
    fProgram.Launch(true);
    EXPECT_TRUE(fProgram.WaitForBar());
    EXPECT_EQ(fProgram.Stop(), 0);
    fs::permissions(fHome.Config(), all);
    EXPECT_EQ(fProgram.Settings().GetInt32("hotkey", -1), 33);
}

} // namespace
