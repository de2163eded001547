// The help bubbles of the folder buttons.

#include "tests/desktop/DesktopTest.h"

using namespace test;

namespace {

constexpr int kBorder = 1;

class BubbleTest : public DesktopTest {
protected:
    void SetUp() override {
        DesktopTest::SetUp();
        for (const std::string& name :
             {std::string("3 - Some Folder"), "5 - \xff\n" + std::string(245, 'W')})
            std::filesystem::create_directories(fProgram.Root() / name);
    }
    std::vector<WindowInfo> Bubbles() const { return fDesk.Shown("TOOLTIP"); }
    bool Goes() const {
        return WaitUntil([&] { return Bubbles().empty(); });
    }
    // The bubble that comes up, elsewhere than the last one; empty if none does.
    Box Rest(int digit, int aside = 0) {
        const Box last = fLast;
        const Box button = fProgram.Button(digit);
        fDesk.MoveTo(button.CenterX() + aside, button.CenterY());
        const bool isUp = WaitUntil([&] {
            for (const WindowInfo& bubble : Bubbles())
                // One that is about to be hidden is above the screen.
                fLast = bubble.frame.y >= 0 ? bubble.frame : fLast;
            return fLast != last;
        });
        return isUp ? fLast : Box();
    }

    Box fLast;
};

TEST_F(BubbleTest, ShowsAFoldersNameUntilThePointerMovesOrAMenuOpens) {
    fProgram.Start();
    PlainWindow other(fDesk, {500, 500, 100, 100});
    other.Activate();
    const Box button = fProgram.Button(3);
    const auto start = std::chrono::steady_clock::now();
    const Box one = Rest(3);
    EXPECT_EQ(one.x, button.CenterX() - kBorder);
    EXPECT_EQ(one.y, button.CenterY() + 20 - kBorder);
    EXPECT_TRUE(WaitUntil([&] { return fDesk.Grab(one).Count(0xf0f064) > 100; }));
    EXPECT_TRUE(fDesk.HasKeyboard(other.Id()));

    // It stays 21 tenths of a second, after seven, and comes once for a place.
    EXPECT_TRUE(Goes());
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(2800));
    EXPECT_FALSE(WaitUntil([&] { return !Bubbles().empty(); }, std::chrono::milliseconds(1200)));

    Rest(3, 2);
    fDesk.MoveTo(button.CenterX() + 1, button.CenterY());
    EXPECT_TRUE(Goes());
    ASSERT_EQ(Rest(3, 1).width, one.width);
    fDesk.Press();
    fDesk.Release();
    EXPECT_TRUE(MenusBecome(1));
    EXPECT_TRUE(Goes());
    CloseMenus();

    const std::filesystem::path root = fProgram.Root();
    std::filesystem::rename(root / "3 - Some Folder", root / "3 - Another, Longer Name");
    int aside = 1;
    EXPECT_TRUE(WaitUntil([&] {
        aside = -aside;
        return Rest(3, aside).width > one.width + 20;
    }));
    EXPECT_GT(Rest(5).width, 1280);
}

} // namespace
