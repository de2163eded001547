#include <X11/keysym.h>

#include "tests/kits/interface/TextControlTest.h"

TEST_F(TextControlTest, TypesErasesAndMovesByCharactersAndWords) {
    robot.Type("one two");
    Key(XK_Left, {XK_Control_L});
    Key(XK_BackSpace);
    robot.Type("X");
    WaitForText("oneXtwo");
    Key(XK_Home, {XK_Shift_L});
    WaitForSelection(0, 4);
    Key(XK_Right);
    Key(XK_Delete);
    WaitForText("oneXwo");
    Key(XK_BackSpace, {XK_Control_L});
    WaitForText("wo");
    // Arrows up and down and other letters with Control are nothing to a field.
    Key(XK_Up);
    Key(XK_q, {XK_Control_L});
    Key(XK_End);
    robot.Type("!");
    WaitForText("wo!");
}

TEST_F(TextControlTest, TakesWhatAPersonSeesAsOneCharacterAsOne) {
    // a with umlaut; e with a combining acute; a byte that is not UTF-8; a family of three
    const std::string text = "\xc3\xa4"
                             "e\xcc\x81"
                             "\xff"
                             "\xf0\x9f\x91\xa8\xe2\x80\x8d\xf0\x9f\x91\xa9\xe2\x80\x8d"
                             "\xf0\x9f\x91\xa7";
    SetText(text);
    for (int32 end : {2, 5, 6, 24}) {
        Key(XK_Right);
        WaitForSelection(end, end);
    }
    Key(XK_BackSpace);
    WaitForText(text.substr(0, 6));
    Key(XK_Left);
    Key(XK_BackSpace);
    WaitForText("\xc3\xa4\xff");
}

TEST_F(TextControlTest, SelectsWithTheMouse) {
    SetText("one two, three");
    ClickAt(field, BPoint(PlaceOf(5) + 1, 8));
    WaitForSelection(5, 5);
    robot.KeyDown(XK_Shift_L);
    ClickAt(field, BPoint(PlaceOf(2) + 1, 8));
    robot.KeyUp(XK_Shift_L);
    WaitForSelection(2, 5);

    Press(field, BPoint(PlaceOf(10), 8), 2);
    WaitForSelection(9, 14);
    MoveOver(field, BPoint(PlaceOf(5), 8));
    WaitForSelection(4, 14);
    robot.Release();
    Press(field, BPoint(PlaceOf(5), 8), 3);
    WaitForSelection(0, 14);
    robot.Release();
    WaitForOffered("PRIMARY", "one two, three");
    Key(XK_Left, {XK_Shift_L});
    WaitForSelection(0, 13);
    WaitForOffered("PRIMARY", "one two, thre");
}

TEST_F(TextControlTest, ScrollsToWhereTheCaretIsAndWhereTheMouseDrags) {
    const std::string text = "the beginning " + std::string(200, 'm') + " the end";
    SetText(text);
    const float right = field->Bounds().right - kMargin;
    EXPECT_TRUE(WaitForPixel(field, {kMargin, 8}, 0x000000)) << "the caret";
    Key(XK_End);
    EXPECT_TRUE(WaitForPixel(field, {right, 8}, 0x000000)) << "the caret";
    Press(field, BPoint(right - PlaceBefore("the end") - 1, 8), 1);
    WaitForSelection(215, 215);
    MoveOver(field, BPoint(-300, 8));
    WaitForSelection(0, 215);
    robot.Release();
    // It is cut at its middle and still whole.
    WaitForOffered("PRIMARY", text.substr(0, 215));
}

TEST_F(TextControlTest, CutsCopiesAndPastes) {
    robot.Type("one two");
    Key(XK_Home, {XK_Shift_L});
    Key(XK_x, {XK_Alt_L});
    WaitForText("");
    WaitForOffered("CLIPBOARD", "one two");
    Key(XK_v, {XK_Control_L});
    WaitForText("one two");
    Key(XK_Left, {XK_Control_L, XK_Shift_L});
    Key(XK_c, {XK_Control_L});
    Key(XK_Home);
    Key(XK_v, {XK_Alt_L});
    WaitForText("twoone two");
    Key(XK_z, {XK_Control_L});
    WaitForText("one two");

    // From another program, and not as it is.
    Key(XK_a, {XK_Control_L});
    Bring("CLIPBOARD",
          "a\r\nb\tc\x01"
          "d\xff"
          "e\n",
          [&] { Key(XK_v, {XK_Control_L}); });
    WaitForText("a b cd\xef\xbf\xbd"
                "e");
    WithLock(window, [&] { first->SetText("ab"); });
    Bring("PRIMARY", "-", [&] { ClickAt(field, BPoint(PlaceOf(1), 8), 2); });
    WaitForText("a-b");
}

TEST_F(TextControlTest, TakesChangesBackAndMakesThemAgainByWords) {
    robot.Type("one two");
    WaitForText("one two");
    Key(XK_z, {XK_Control_L});
    WaitForText("one ");
    Key(XK_z, {XK_Alt_L});
    WaitForText("");
    Key(XK_z, {XK_Control_L, XK_Shift_L});
    Key(XK_y, {XK_Control_L});
    WaitForText("one two");
    Key(XK_a, {XK_Control_L});
    robot.Type("n");
    WaitForText("n");
    Key(XK_z, {XK_Control_L});
    WaitForText("one two");
    WaitForSelection(0, 7);
    Key(XK_Right);
    Key(XK_BackSpace);
    Key(XK_BackSpace);
    WaitForText("one t");
    Key(XK_z, {XK_Control_L});
    WaitForText("one two");
}

TEST_F(TextControlTest, TheSecondaryButtonOffersWhatCanBeDone) {
    const auto choose = [&](std::initializer_list<uint32_t> keys) {
        const auto menus = [&] {
            return screen.Windows([](const test::WindowInfo& info) {
                return info.viewable && info.HasType("_NET_WM_WINDOW_TYPE_POPUP_MENU");
            });
        };
        const BPoint place = OnScreen(field, {50, 8});
        robot.Click(static_cast<int>(place.x), static_cast<int>(place.y), 3);
        ASSERT_TRUE(test::WaitUntil([&] { return menus().size() == 1; }));
        for (uint32_t key : keys)
            Key(key);
        Key(XK_Return);
        ASSERT_TRUE(test::WaitUntil([&] { return menus().empty(); }));
    };
    robot.Type("one two");
    WaitForText("one two");
    choose({XK_Down});
    WaitForText("one ");
    choose({XK_Down, XK_Down});
    WaitForText("one two");
    choose({XK_Up});
    WaitForSelection(0, 7);
    choose({XK_Up, XK_Up, XK_Up, XK_Up, XK_Up});
    WaitForText("");
    choose({XK_Up});
    WaitForText("one two");
    choose({XK_Up});
    choose({XK_Up, XK_Up});
    WaitForText("");
}

TEST_F(TextControlTest, TheMenuKeyAndShiftF10OpenTheMenuAtTheCaret) {
    SetText("caret", 5);
    const auto menus = [&](size_t count) {
        return test::WaitUntil([&] { return screen.Shown("POPUP_MENU").size() == count; });
    };
    for (const bool isMenuKey : {true, false}) {
        if (isMenuKey)
            Key(XK_Menu);
        else
            Key(XK_F10, {XK_Shift_L});
        ASSERT_TRUE(menus(1));
        const BPoint caret = OnScreen(field, BPoint(PlaceOf(5), 0));
        EXPECT_NEAR(screen.Shown("POPUP_MENU")[0].frame.x, caret.x, 3);
        robot.Key(XK_Escape);
        ASSERT_TRUE(menus(0));
    }
    EXPECT_TRUE(WaitForText("caret"));
}

TEST_F(TextControlTest, TheCaretBlinksWhileTheWindowIsActive) {
    SetText("");
    const auto isSeen = [&] { return PixelAt(field, {kMargin, 8}) == 0x000000; };
    EXPECT_TRUE(test::WaitUntil(isSeen));
    EXPECT_TRUE(test::WaitUntil([&] { return !isSeen(); }));
    EXPECT_TRUE(test::WaitUntil(isSeen));
    test::PlainWindow other(desktop, {20, 20, 50, 50});
    other.Activate();
    EXPECT_TRUE(test::WaitUntil([&] { return !isSeen(); }));
    EXPECT_TRUE(WaitFor(window, [&] { return !field->ShowsFocus(); }));
    WithLock(window, [&] { window->Activate(); });
    EXPECT_TRUE(test::WaitUntil(isSeen));
}

TEST_F(TextControlTest, TakesFourKilobytesAndKeepsALongerTextThatWasSet) {
    std::string text;
    while (text.size() < 5000)
        text += "\xe2\x82\xac";
    Bring("CLIPBOARD", text, [&] { Key(XK_v, {XK_Control_L}); });
    WaitForText(text.substr(0, 4095));
    SetText(text);
    robot.Type("x");
    Key(XK_Delete);
    WaitForText(text.substr(3));
    Key(XK_End);
    WaitForSelection(static_cast<int32>(text.size() - 3), static_cast<int32>(text.size() - 3));
}

TEST_F(TextControlTest, TabGoesFromFieldToFieldAndEnterSendsWhatChanged) {
    robot.Type("some");
    Key(XK_Return);
    EXPECT_TRUE(WaitFor(window, [&] {
        return std::count(window->received.begin(), window->received.end(), kFirstChanged) == 1;
    }));
    Key(XK_Tab);
    EXPECT_TRUE(WaitFor(window, [&] { return second->TextView()->ShowsFocus(); }));
    robot.Type("more");
    EXPECT_TRUE(WaitFor(window, [&] { return second->Text() == std::string("more"); }));
    Key(XK_Tab, {XK_Shift_L});
    EXPECT_TRUE(WaitFor(window, [&] { return field->ShowsFocus(); }));
    WaitForSelection(0, 4);
    WithLock(window, [&] { second->SetEnabled(false); });
    robot.Type("x");
    Key(XK_Tab);
    EXPECT_TRUE(WaitFor(window, [&] { return field->ShowsFocus(); }));
    WaitForText("x");
}
