#include <X11/keysym.h>
#include <atomic>
#include <chrono>

#include "tests/kits/interface/MenuDesktop.h"

using test::Box;
using test::WaitUntil;

namespace {

using MenuKeys = MenuTest;

TEST_F(MenuKeys, ArrowsPassOverWhatCannotBeChosenAndGoAround) {
    AddThree();
    menu.AddItem(new BMenuItem("Off", nullptr), 1);
    menu.ItemAt(1)->SetEnabled(false);
    menu.AddSeparatorItem();
    Open();
    robot.Key(XK_Down);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(0)));
    robot.Key(XK_Down);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(2)));
    robot.Key(XK_Up);
    robot.Key(XK_Up);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(3)));
    robot.Key(XK_Down);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(0)));
    robot.Key(XK_End);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(3)));
    robot.Key(XK_Home);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(0)));
}

TEST_F(MenuKeys, EnterAndSpaceChoose) {
    AddThree();
    for (uint32_t key : {XK_Return, XK_space, XK_KP_Enter}) {
        Open();
        robot.Key(XK_Up);
        robot.Key(key);
        EXPECT_EQ(Answer(), menu.ItemAt(2));
    }
}

TEST_F(MenuKeys, AResumedPointerTakesTheSelectionBack) {
    AddThree();
    Open();
    PointAt(menu.ItemAt(0));
    ASSERT_TRUE(WaitForHighlight(menu.ItemAt(0)));
    robot.Key(XK_End);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(2)));
    const Box place = Place(menu.ItemAt(1));
    robot.MoveTo(place.x + 3, place.CenterY());
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(1)));
}

TEST_F(MenuKeys, ALetterChoosesTheOnlyItemThatStartsWithIt) {
    AddThree();
    Open();
    robot.Type("o");
    EXPECT_EQ(Answer(), menu.ItemAt(0));
}

TEST_F(MenuKeys, ALetterOfSeveralItemsSelectsThemInTurn) {
    AddThree();
    Open();
    robot.Type("t");
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(1)));
    robot.Type("t");
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(2)));
    robot.Type("T");
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(1)));
    robot.Key(XK_Return);
    EXPECT_EQ(Answer(), menu.ItemAt(1));
}

TEST_F(MenuKeys, SubmenusOpenAndCloseByArrows) {
    AddThree();
    BMenu* submenu = AddSubmenu("Sub", 3);
    Open();
    robot.Key(XK_End);
    robot.Key(XK_Right);
    ASSERT_TRUE(WaitForMenus(2));
    EXPECT_TRUE(WaitForHighlight(submenu->ItemAt(0)));
    robot.Key(XK_Left);
    ASSERT_TRUE(WaitForMenus(1));
    robot.Key(XK_Return);
    ASSERT_TRUE(WaitForMenus(2));
    robot.Key(XK_Down);
    EXPECT_TRUE(WaitForHighlight(submenu->ItemAt(1)));
    robot.Key(XK_Return);
    EXPECT_EQ(Answer(), submenu->ItemAt(1));
}

TEST_F(MenuKeys, EscapeClosesOneMenuAtATime) {
    AddThree();
    AddSubmenu("Sub", 3);
    Open();
    robot.Key(XK_Up);
    robot.Key(XK_Right);
    ASSERT_TRUE(WaitForMenus(2));
    robot.Key(XK_Escape);
    ASSERT_TRUE(WaitForMenus(1));
    robot.Key(XK_Escape);
    EXPECT_EQ(Answer(), nullptr);
    EXPECT_TRUE(Menus().empty());
    EXPECT_TRUE(IsInputFree());
}

TEST_F(MenuKeys, TheSelectionStaysVisibleInATallMenu) {
    for (int i = 0; i < 200; i++)
        Add("Item " + std::to_string(i));
    Open();
    const Box frame = Menus().at(0).frame;
    robot.Key(XK_End);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(199)));
    EXPECT_TRUE(frame.Contains(Place(menu.ItemAt(199))));
    robot.Key(XK_Page_Up);
    robot.Key(XK_Page_Up);
    EXPECT_TRUE(WaitUntil([&] { return frame.Contains(Place(menu.ItemAt(130))); }));
    robot.Key(XK_Home);
    EXPECT_TRUE(WaitForHighlight(menu.ItemAt(0)));
}

// A menu with keys of its own, as a program makes it.
class OwnKeys : public BPopUpMenu {
public:
    OwnKeys()
        : BPopUpMenu("own", false, false) {}

    void KeyDown(const char*, int32) override {
        const int32 key = Window()->CurrentMessage()->GetInt32("key", -1);
        keys++;
        if (key == 0x58)
            ItemAt(0)->Invoke();
        if (key == 0x58 || key == 0x23)
            Hide();
    }

    std::atomic<int> keys = 0;
};

class OwnMenuKeys : public MenuTest {
protected:
    OwnMenuKeys() {
        fOwn.AddItem(new BMenuItem("One", new BMessage('one ')));
        fOwn.ItemAt(0)->SetTarget(fCatcher);
    }
    ~OwnMenuKeys() override {
        fCatcher->Lock();
        fCatcher->Quit();
    }
    std::future<BMenuItem*> Go() {
        auto answer = std::async(std::launch::async,
                                 [this] { return fOwn.Go(BPoint(100, 100), true, true); });
        EXPECT_TRUE(WaitForMenus(1));
        return answer;
    }

    MessageCatcher* fCatcher = MessageCatcher::Start();
    OwnKeys fOwn;
};

TEST_F(OwnMenuKeys, SeeTheRawKeyAndMayInvokeAndClose) {
    auto answer = Go();
    robot.Key(XK_KP_1);
    EXPECT_EQ(answer.get(), nullptr);
    EXPECT_EQ(fCatcher->WaitFor(1).size(), 1u);
    EXPECT_TRUE(IsInputFree());
}

TEST_F(OwnMenuKeys, ReplaceThoseOfTheMenu) {
    auto answer = Go();
    robot.Key(XK_Down);
    robot.Key(XK_Return);
    robot.Key(XK_Escape);
    EXPECT_TRUE(WaitUntil([&] { return fOwn.keys == 3; }));
    robot.Key(XK_KP_Divide);
    EXPECT_EQ(answer.get(), nullptr);
    EXPECT_TRUE(fCatcher->Caught().empty());
}

TEST_F(OwnMenuKeys, AKeyThatOpenedTheMenuDoesNotChooseByRepeating) {
    auto* window = new OpeningWindow(fOwn, BPoint(150, 0));
    ShowActive(window);
    robot.Click(350, 350);
    ASSERT_TRUE(WaitForMenus(1));
    robot.Key(XK_KP_Divide);
    ASSERT_TRUE(WaitForMenus(0));

    robot.KeyDown(XK_KP_1);
    ASSERT_TRUE(WaitForMenus(1));
    const int before = fOwn.keys;
    // Longer than the server waits before it repeats.
    EXPECT_FALSE(WaitUntil([&] { return fOwn.keys != before; }, std::chrono::milliseconds(1000)));
    robot.KeyUp(XK_KP_1);
    robot.Key(XK_KP_1);
    EXPECT_EQ(fCatcher->WaitFor(1).size(), 1u);
}

} // namespace
