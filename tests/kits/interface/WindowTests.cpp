#include "tests/kits/interface/InterfaceTest.h"

#include <cmath>
#include <limits>

#include "kits/app/AppDefs.h"
#include "kits/interface/Alert.h"
#include "kits/interface/Monitors.h"
#include "kits/interface/Screen.h"

namespace {

class WindowTest : public InterfaceTest {
protected:
    // The content of the program's one visible window, as the server has it; the border is part of
    // the server's window.
    test::Box OnServer() {
        auto windows = ShownWindows(screen);
        if (windows.empty())
            return {};
        const test::Box whole = windows.back().frame;
        return {whole.x + 1, whole.y + 1, whole.width - 2, whole.height - 2};
    }
};

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

TEST_F(WindowTest, ImpossiblePlacesAreBroughtInside) {
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (BPoint place : {BPoint(5000, 10), BPoint(-4000, -4000), BPoint(infinity, -infinity),
                         BPoint(nan, nan), BPoint(1e30f, 20)}) {
        auto* window = new RecordingWindow(BRect(place.x, place.y, place.x + 99, place.y + 49));
        WithLock(window, [&] { window->ResizeTo(99, 49); });
        Show(window);
        const test::Box whole = desktop.Frame();
        EXPECT_TRUE(test::WaitUntil([&] { return whole.Contains(OnServer()); }))
            << place.x << ", " << place.y;
        WithLock(window, [&] {
            EXPECT_TRUE(BScreen().Frame().Contains(window->Frame()));
            window->Hide();
        });
        EXPECT_TRUE(test::WaitUntil([&] { return OnServer() == test::Box{}; }));
    }
}

TEST(Monitors, AWindowIsMovedOnlyWhenNoMonitorShowsIt) {
    const std::vector<host::PixelRect> monitors = {{0, 0, 1000, 800}, {1000, 200, 1800, 800}};
    const host::PixelRect partly{-20, -20, 10, 10};
    EXPECT_EQ(BroughtInside(monitors, partly), partly);
    EXPECT_EQ(BroughtInside(monitors, {1900, 100, 2000, 150}),
              (host::PixelRect{1700, 200, 1800, 250}));
    EXPECT_EQ(BroughtInside(monitors, {-500, 900, -400, 950}), (host::PixelRect{0, 750, 100, 800}));
    EXPECT_EQ(BroughtInside(monitors, {5000, 300, 7000, 2000}).left, 1000);
}
