// Folder menus: how they open by pointer and keys, choose and close, and what is launched.

#include "tests/desktop/DesktopTest.h"
#include "tests/support/Peer.h"

using namespace test;

namespace {

using Arguments = std::vector<std::string>;

class FolderMenuTest : public DesktopTest {
protected:
    void SetUp() override {
        DesktopTest::SetUp();
        AddBookmark(3, "5 - Site", "http://five.example/");
        AddBookmark(3, "0 - First", "http://zero.example/");
        AddBookmark(3, "1 - Option", "--new-window");
        fProgram.Start();
    }
};

TEST_F(FolderMenuTest, AClickOpensItBesideTheButtonAndAnotherChooses) {
    const FolderMenu menu = OpenFolder(3);
    const Box button = fProgram.Button(3);
    // The button's right edge; the menu's border may lie around its content.
    EXPECT_NEAR(menu.Frame().x, button.x + 20, 2);
    EXPECT_NEAR(menu.Frame().y, button.y, 2);
    EXPECT_NE(menu.Label(5), menu.Label(4));
    EXPECT_NE(menu.Label(0), menu.Label(5));
    EXPECT_EQ(menu.Label(4), menu.Label(9));
    const Box place = menu.Slot(5);
    Click(place, 2);                                  // of no meaning
    fDesk.Click(place.CenterX(), menu.Slot(0).y - 4); // the separator
    Click(place, 3);
    EXPECT_EQ(fApps.WaitForLaunches(1),
              (std::vector<RecordedApps::Launch>{{"browser", {"http://five.example/"}}}));
    EXPECT_TRUE(MenusBecome(0));

    ActivateBar();
    ChooseSetting(setting::kAlignHorizontally);
    ASSERT_TRUE(WaitUntil([&] { return fProgram.IsHorizontal(); }));
    const Box below = OpenFolder(3).Frame();
    EXPECT_NEAR(below.x, fProgram.Button(3).x, 2);
    EXPECT_NEAR(below.y, fProgram.Button(3).y + 20, 2);
    CloseMenus();
}

TEST_F(FolderMenuTest, NothingInAnAddressIsTakenForMoreThanText) {
    const std::string urls[] = {"http://a.example/?q=x y&z='1'\"2\";$(touch%20x)`id`|\\%u%%f#e",
                                "http://a.example/" + std::string(3000, 'a'),
                                "http://\xc3\xa4.example/\xff"};
    size_t launches = 0;
    for (const std::string& url : urls) {
        SetUrl(BookmarkPath(3, "5 - Site"), url);
        ASSERT_TRUE(WaitUntil([&] {
            ChooseSlot(3, 5);
            const auto all = fApps.WaitForLaunches(++launches);
            return all.size() == launches && all.back().arguments == Arguments{url};
        })) << url;
    }
    ChooseSlot(3, 1); // would be read as an option
    ChooseSlot(3, 0);
    EXPECT_EQ(LastUrl(launches + 1), "http://zero.example/");
}

TEST_F(FolderMenuTest, KeypadDigitsChooseAndOtherKeysDoNot) {
    OpenFolder(3);
    for (const uint32_t key : {XK_KP_4, XK_5, XK_Return, XK_Down, XK_a})
        fDesk.Key(key);
    fDesk.Key(XK_KP_0);
    EXPECT_EQ(LastUrl(1), "http://zero.example/");
    EXPECT_TRUE(MenusBecome(0));
    OpenFolder(3);
    fDesk.Key(XK_KP_Divide);
    EXPECT_TRUE(MenusBecome(0));
    EXPECT_EQ(fApps.Launches().size(), 1u);
}

TEST_F(FolderMenuTest, LosingTheFocusOrAClickOutsideClosesIt) {
    PlainWindow other(fDesk, {500, 500, 200, 100});
    OpenFolder(3);
    other.Activate();
    EXPECT_TRUE(MenusBecome(0));
    const Box slot = OpenFolder(3).Slot(5);
    fDesk.Drag(slot.CenterX(), slot.CenterY(), 700, 700);
    EXPECT_TRUE(MenusBecome(0));
    OpenFolder(3);
    const Box bar = fProgram.DragBar();
    fDesk.Click(bar.x + 15, bar.y + 11);
    EXPECT_TRUE(MenusBecome(0));
    EXPECT_EQ(fProgram.Content(), (Box{30, 30, 22, 264}));
    EXPECT_TRUE(fApps.Launches().empty());
}

TEST_F(FolderMenuTest, AHeldGrabOfAnotherProgramKeepsItShut) {
    ActivateBar();
    Peer other(fDesk);
    ASSERT_TRUE(other.GrabKeyboard());
    Click(fProgram.Button(3));
    EXPECT_FALSE(MenusBecome(2, std::chrono::milliseconds(700)));
    EXPECT_TRUE(WaitUntil([&] { return fProgram.Menus().empty(); }));
    other.Ungrab();
    OpenFolder(3);
    CloseMenus();
}

TEST_F(FolderMenuTest, DigitsOfBothRowsOpenTheirFolderAndBTheSettings) {
    ActivateBar();
    for (const uint32_t key : {XK_a, XK_space, XK_F1, XK_Return, XK_Tab})
        fDesk.Key(key); // nothing to the bar
    const std::pair<uint32_t, int> keys[] = {{XK_1, 1},    {XK_7, 7},    {XK_0, 0},   {XK_KP_0, 0},
                                             {XK_KP_1, 1}, {XK_KP_5, 5}, {XK_KP_8, 8}};
    for (const auto& [key, digit] : keys) {
        fDesk.Key(key);
        ASSERT_TRUE(MenusBecome(1)) << digit;
        EXPECT_NEAR(fProgram.Menus()[0].frame.y, fProgram.Button(digit).y, 2) << digit;
        CloseMenus();
    }
    fDesk.Key(XK_b);
    ASSERT_TRUE(MenusBecome(1));
    const Box bar = fProgram.DragBar();
    const Box menu = fProgram.Menus()[0].frame;
    EXPECT_NEAR(menu.x, bar.x + bar.width - 1, 2);
    EXPECT_NEAR(menu.y, bar.y, 2);
    CloseMenus();
}

TEST_F(FolderMenuTest, AHeldKeyOpensItsMenuOnceAndChoosesNothing) {
    ActivateBar();
    fDesk.KeyDown(XK_KP_7);
    ASSERT_TRUE(MenusBecome(1));
    // The server repeats the key after two thirds of a second.
    EXPECT_FALSE(MenusBecome(0, std::chrono::milliseconds(1000)));
    const Box corner = fDesk.Frame();
    fDesk.Click(corner.width - 2, corner.height - 2);
    ASSERT_TRUE(MenusBecome(0));
    EXPECT_FALSE(
        WaitUntil([&] { return !fProgram.Menus().empty(); }, std::chrono::milliseconds(200)));
    fDesk.KeyUp(XK_KP_7);
    fDesk.Key(XK_3);
    ASSERT_TRUE(MenusBecome(1));
    fDesk.Key(XK_KP_5);
    EXPECT_EQ(LastUrl(1), "http://five.example/");
}

// The release goes to the menu, or would type nothing: the bar sees it all the same.
TEST_F(FolderMenuTest, AKeyThatIsLetGoOverItsMenuIsNotHeld) {
    ActivateBar();
    const auto expectAnotherOpens = [&] {
        CloseMenus();
        fDesk.Key(XK_3);
        EXPECT_TRUE(MenusBecome(1));
        CloseMenus();
    };
    fDesk.KeyDown(XK_7);
    ASSERT_TRUE(MenusBecome(1));
    EXPECT_FALSE(MenusBecome(0, std::chrono::milliseconds(1000))) << "the key repeats meanwhile";
    fDesk.KeyUp(XK_7);
    expectAnotherOpens();

    fDesk.Key(XK_Num_Lock);
    fDesk.KeyDown(XK_KP_5);
    ASSERT_TRUE(MenusBecome(1));
    fDesk.KeyDown(XK_Shift_L);
    fDesk.KeyUp(XK_KP_5);
    fDesk.KeyUp(XK_Shift_L);
    fDesk.Key(XK_Num_Lock);
    expectAnotherOpens();
}

} // namespace
