// First start, what the window manager is told, and what lasts over a restart.

#include "base/Color.h"
#include "tests/desktop/DesktopTest.h"

using namespace test;

namespace {

constexpr uint32_t kGrey = 0xd8d8d8;

class StartTest : public DesktopTest {};

TEST_F(StartTest, FirstStartMakesTheFoldersAndStandsAtItsPlace) {
    PlainWindow other(fDesk, {400, 300, 200, 100});
    other.Activate();
    fProgram.Start();
    EXPECT_EQ(fProgram.Content(), (Box{30, 30, 22, 264}));
    for (int digit = 0; digit < 10; ++digit)
        EXPECT_TRUE(
            std::filesystem::is_directory(fProgram.Root() / (std::to_string(digit) + " -")));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(fProgram.Root()), {}), 10);
    EXPECT_FALSE(std::filesystem::exists(fProgram.SettingsFile()));

    // What the window manager is told.
    const WindowInfo bar = fProgram.Bar();
    EXPECT_EQ(bar.title, "Quillbar");
    EXPECT_FALSE(fDesk.Cardinals(bar.id, "WM_CLASS").empty());
    EXPECT_EQ(fDesk.Cardinals(bar.id, "_NET_WM_DESKTOP"), std::vector<uint32_t>{0xffffffff});
    EXPECT_EQ(fDesk.Cardinals(bar.id, "_NET_FRAME_EXTENTS"), std::vector<uint32_t>(4, 0));
    EXPECT_FALSE(fDesk.HasState(bar.id, "_NET_WM_STATE_SKIP_TASKBAR"));
    EXPECT_FALSE(fDesk.HasState(bar.id, "_NET_WM_STATE_ABOVE"));
    EXPECT_FALSE(fDesk.Cardinals(bar.id, "_NET_WM_ICON").empty());
    EXPECT_EQ(fDesk.ActiveWindow(), other.Id());
}

TEST_F(StartTest, TheBarIsDrawnAsBevelsOnItsColour) {
    fProgram.Start();
    ActivateBar();
    ASSERT_TRUE(WaitUntil([&] { return fDesk.Pixel(32, 46) == kGrey; }));
    const Picture bar = fDesk.Settled({29, 29, 24, 266});
    const uint32_t light = 0xffffff, dark = 0x888888;
    for (int y = 0; y < bar.height; ++y)
        EXPECT_EQ(bar.At(0, y) + bar.At(23, y), 0u) << y;
    for (int digit = 0; digit < 10; ++digit) {
        const int top = 1 + 14 + 25 * digit;
        EXPECT_EQ(bar.At(2, top + 19), light) << digit;
        EXPECT_EQ(bar.At(3, top + 20), dark) << digit;
        EXPECT_EQ(bar.At(22, top + 10), dark) << digit;
        EXPECT_EQ(bar.At(3, top + 1), kGrey) << digit;
        EXPECT_GT(fDesk.Grab(fProgram.Button(digit)).Count(0), 5u) << "label " << digit;
    }
    // The close box: a sunken frame around a raised one.
    const uint32_t diagonal[] = {dark, light, kGrey, kGrey, kGrey, kGrey, kGrey, dark, light};
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(bar.At(3 + i, 3 + i), diagonal[i]) << i;
}

TEST_F(StartTest, EverySettingLastsOverARestart) {
    AddBookmark(2, "1 - Site", "http://a.long.example/with/a/long/path");
    BMessage settings;
    const rgb_color blue = {100, 150, 200, 255};
    settings.AddData("color", B_RGB_COLOR_TYPE, &blue, sizeof blue);
    fProgram.WriteSettings(settings);
    fProgram.Start();
    ActivateBar();
    const Box bar = fProgram.DragBar();
    fDesk.Drag(bar.x + 15, bar.y + 10, bar.x + 15 + 417, bar.y + 10 + 123);
    ASSERT_TRUE(WaitUntil([&] { return fProgram.Content().x == 447; }));
    ChooseSetting(setting::kAlignHorizontally);
    ASSERT_TRUE(WaitUntil([&] { return fProgram.IsHorizontal(); }));
    const int width = OpenFolder(2).Frame().width;
    CloseMenus();
    ChooseSetting(setting::kShowUrl, setting::kNo);
    ChooseSetting(setting::kHotKey, setting::kAltKey);
    ChooseSetting(setting::kAlwaysOnTop);
    const auto isAbove = [&] { return fDesk.HasState(fProgram.Bar().id, "_NET_WM_STATE_ABOVE"); };
    ASSERT_TRUE(WaitUntil(isAbove)); // the menu closes before the bar gets its choice
    EXPECT_EQ(fProgram.Stop(), 0);
    EXPECT_EQ(fProgram.Settings().GetInt32("hotkey", -1), 9);

    fProgram.Start();
    EXPECT_EQ(fProgram.Content(), (Box{447, 153, 233, 25}));
    EXPECT_TRUE(WaitUntil(isAbove));
    ActivateBar();
    const Box button = fProgram.Button(4);
    EXPECT_TRUE(WaitUntil([&] { return fDesk.Pixel(button.x + 2, button.y + 2) == 0x6496c8; }));
    EXPECT_LT(OpenFolder(2).Frame().width, width);
    CloseMenus();
    ChooseSetting(setting::kShowUrl, setting::kYes);
    EXPECT_EQ(OpenFolder(2).Frame().width, width);
    CloseMenus();
    ChooseSetting(setting::kAlwaysOnTop);
    EXPECT_TRUE(WaitUntil([&] { return !isAbove(); }));
}

} // namespace
