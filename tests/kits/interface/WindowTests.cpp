#include "tests/kits/interface/InterfaceTest.h"

#include <cmath>

#include "kits/interface/window/Screen.h"

namespace {

using WindowTest = InterfaceTest;

// In a process of its own: a process has one display and one scale.
void RestorePlaces(int dpi) {
    test::PrivateDesktop desktop({.dpi = dpi});
    test::Screen screen(desktop);
    if (connect_display() != B_OK)
        _exit(2);
    const int border = static_cast<int>(std::lround(dpi / 96.0));
    for (int at = 100; at < 140; at += 7) {
        // What a settings file keeps of a window at this pixel.
        const float stored = static_cast<float>(at / (dpi / 96.0));
        auto* window =
            new RecordingWindow(BRect(stored, stored + 3, stored + 232, stored + 3 + 24));
        window->Show();
        auto shown = [&] {
            auto windows = ShownWindows(screen);
            return windows.size() == 1 && windows[0].frame.x == at - border;
        };
        if (!test::WaitUntil(shown))
            _exit(3);
        if (!window->Lock() || window->Frame().left != stored ||
            window->Bounds() != BRect(0, 0, 232, 24))
            _exit(4);
        window->Quit();
        if (!test::WaitUntil([&] { return ShownWindows(screen).empty(); }))
            _exit(5);
    }
    _exit(0);
}

} // namespace

TEST_F(WindowTest, StoredPlacesComeBackToThePixelAtEveryScale) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(RestorePlaces(96), ::testing::ExitedWithCode(0), "");
    EXPECT_EXIT(RestorePlaces(120), ::testing::ExitedWithCode(0), "");
    EXPECT_EXIT(RestorePlaces(144), ::testing::ExitedWithCode(0), "");
}

TEST(Screen, AWindowOutOfReachIsMovedIntoTheNearestMonitor) {
    const std::vector<host::PixelRect> monitors = {{0, 0, 1000, 800}, {1000, 200, 1800, 800}};
    EXPECT_TRUE(IsInReach(monitors, {-280, 780, 20, 1000}, 20));
    EXPECT_FALSE(IsInReach(monitors, {-280, 781, 20, 1000}, 20));
    EXPECT_TRUE(IsInReach(monitors, {993, 100, 1007, 114}, 20));
    EXPECT_FALSE(IsInReach(monitors, {994, 100, 1008, 114}, 20));
    EXPECT_TRUE(IsInReach(monitors, {990, 193, 1010, 207}, 20)) << "three quarters on two monitors";
    EXPECT_EQ(MovedInside(monitors, {1900, 100, 2000, 150}),
              (host::PixelRect{1700, 200, 1800, 250}));
    EXPECT_EQ(MovedInside(monitors, {-500, 900, -400, 950}), (host::PixelRect{0, 750, 100, 800}));
    EXPECT_EQ(MovedInside(monitors, {5000, 300, 7000, 2000}).left, 1000);
}
