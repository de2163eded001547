// However the program ends, its settings are on disk and it does not take long.

#include <csignal>
#include <thread>

#include "tests/desktop/DesktopTest.h"

using namespace test;
namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds kLimit{5};

enum class Ending { Signal, Close, LostDisplay };
enum class Moment { Idle, FolderMenu, SubMenu, Alert };

class QuitTest : public OwnDesktopTest,
                 public testing::WithParamInterface<std::tuple<Ending, Moment>> {
protected:
    QuitTest()
        : OwnDesktopTest({}) {}
};

TEST_P(QuitTest, SavesAndEndsInTime) {
    const auto [ending, moment] = GetParam();
    fProgram.Start();
    ActivateBar();
    ChooseSetting(setting::kAlwaysOnTop); // so that there is something to save
    ASSERT_TRUE(
        WaitUntil([&] { return fDesk.HasState(fProgram.Bar().id, "_NET_WM_STATE_ABOVE"); }));
    if (moment == Moment::FolderMenu) {
        OpenFolder(3);
    } else if (moment == Moment::SubMenu) {
        OpenSettings();
        for (int i = 0; i < setting::kHotKey; ++i)
            fDesk.Key(XK_Down);
        fDesk.Key(XK_Right);
        ASSERT_TRUE(MenusBecome(2));
    } else if (moment == Moment::Alert) {
        ChooseSetting(setting::kHotKey, setting::kWindowsKey);
        ASSERT_TRUE(AlertOpens());
    }
    const int signals[] = {SIGTERM, SIGINT, SIGHUP, SIGTERM};
    if (ending == Ending::Signal)
        fProgram.Signal(signals[static_cast<int>(moment)]);
    else if (ending == Ending::Close)
        fDesk.Close(fProgram.Bar().id);
    else
        fDesk.KillServer();
    EXPECT_EQ(fProgram.WaitForEnd(kLimit), ending == Ending::LostDisplay ? 1 : 0);
    EXPECT_TRUE(fProgram.Settings().GetBool("ontop", false));
    EXPECT_EQ(fProgram.Settings().GetPoint("pos", BPoint(0, 0)), BPoint(30, 30));
}

INSTANTIATE_TEST_SUITE_P(, QuitTest,
                         testing::Combine(testing::Values(Ending::Signal, Ending::Close,
                                                          Ending::LostDisplay),
                                          testing::Values(Moment::Idle, Moment::FolderMenu,
                                                          Moment::SubMenu, Moment::Alert)));

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

// As a user who can make no file beside the settings.
TEST_F(SaveTest, InAClosedFolderTheFileItselfIsWrittenOrTheLossIsReported) {
    fProgram.Start();
    EXPECT_EQ(fProgram.Stop(), 0);
    fs::remove(fProgram.SettingsFile());
    fs::permissions(fHome.Config(), fs::perms::owner_read | fs::perms::owner_exec);
    const auto startAndChoose = [&] {
        fProgram.Launch(true);
        ASSERT_TRUE(fProgram.WaitForBar());
        ActivateBar();
        ChooseSetting(setting::kAlwaysOnTop);
    };
    startAndChoose();
    DismissAlert();
    EXPECT_EQ(fProgram.Stop(), 0);
    EXPECT_EQ(fProgram.Errors(), "quillbar: the settings cannot be saved: Permission denied\n");

    WriteMarkedSettings();
    startAndChoose();
    ActivateBar();
    EXPECT_TRUE(fProgram.Alerts().empty());
    EXPECT_EQ(fProgram.Stop(), 0);
    EXPECT_EQ(fProgram.Settings().GetInt32("hotkey", -1), 33);
    EXPECT_TRUE(fProgram.Settings().GetBool("ontop", false));
}

} // namespace
