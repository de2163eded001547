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
