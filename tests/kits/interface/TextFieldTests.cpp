#include <optional>

#include "kits/interface/text/TextControl.h"
#include "kits/interface/text/TextField.h"
#include "tests/kits/interface/InterfaceTest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Peer.h"

namespace {

constexpr float kMargin = 2;

// A window with a text control that has the focus.
class TextFieldTest : public InterfaceTest {
protected:
    TextFieldTest() {
        control->SetDivider(60);
        window->AddChild(control);
        Show(window);
        WithLock(window, [&] {
            window->Activate();
            control->MakeFocus();
        });
        EXPECT_TRUE(WaitFor(window, [&] { return field->ShowsFocus(); }));
    }

    void SetText(const std::string& text, int32 caret = 0) {
        WithLock(window, [&] {
            control->SetText(text.c_str());
            field->Select(caret, caret);
        });
    }
    void Keys(std::initializer_list<uint32_t> keys) {
        for (uint32_t key : keys)
            desk.Key(key);
    }
    void Control(uint32_t key) { desk.KeyWith(XK_Control_L, key); }
    void ExpectText(const std::string& text) {
        EXPECT_TRUE(WaitFor(window, [&] { return control->Text() == text; })) << control->Text();
    }
    void ExpectSelection(int32 start, int32 end) {
        int32 from = 0;
        int32 to = 0;
        EXPECT_TRUE(WaitFor(window,
                            [&] {
                                field->GetSelection(&from, &to);
                                return from == start && to == end;
                            }))
            << from << " to " << to;
    }
    // Where the caret would be behind that text, in the field.
    BPoint Behind(const std::string& text) {
        float width = 0;
        WithLock(window, [&] { width = field->StringWidth(text.c_str()); });
        return {kMargin + width, 8};
    }
    // Presses `clicks` times and holds the last.
    void Press(BPoint where, int clicks) {
        MoveOver(field, where);
        desk.Press();
        for (int i = 1; i < clicks; i++) {
            desk.Release();
            desk.PressAgain();
        }
    }
    // Until another program gets this text when it asks for the selection.
    void ExpectOffered(const std::string& selection, const std::string& text) {
        test::Peer other(desk);
        std::optional<std::string> offered;
        EXPECT_TRUE(test::WaitUntil([&] {
            return (offered = other.Ask(selection, "UTF8_STRING")) == text;
        })) << offered.value_or("nothing");
    }
    // Another program owns a text that `work` asks for.
    void Bring(const std::string& selection, const std::string& text,
               const std::function<void()>& work) {
        test::Peer other(desk);
        other.Own(selection);
        work();
        const auto request = other.AwaitRequest();
        ASSERT_TRUE(request);
        other.Answer(*request, {text});
    }

    RecordingWindow* const window = new RecordingWindow({300, 200, 599, 289}, B_TITLED_WINDOW_LOOK);
    BTextControl* const control =
        new BTextControl({10, 10, 289, 30}, "control", "Label", "", nullptr);
    TextField* const field = control->TextView();
};

TEST_F(TextFieldTest, TypesErasesMovesAndUndoesByCharactersAndWords) {
    desk.Type("one two");
    Control(XK_Left);
    desk.Key(XK_BackSpace);
    desk.Type("X");
    ExpectText("oneXtwo");
    desk.KeyWith(XK_Shift_L, XK_Home);
    ExpectSelection(0, 4);
    Keys({XK_Right, XK_Delete});
    ExpectText("oneXwo");
    // What was typed or erased together is undone together.
    for (const auto& [key, text] : {std::pair{XK_BackSpace, "wo"},
                                    {XK_z, "oneXtwo"},
                                    {XK_y, "wo"},
                                    {XK_z, "oneXtwo"},
                                    {XK_z, "onetwo"}}) {
        Control(key);
        ExpectText(text);
    }

    // What a person sees as one character is one: a with umlaut; e with a combining acute; a byte
    // that is not UTF-8; a family of three.
    const std::string text = "\xc3\xa4"
                             "e\xcc\x81"
                             "\xff"
                             "\xf0\x9f\x91\xa8\xe2\x80\x8d\xf0\x9f\x91\xa9\xe2\x80\x8d"
                             "\xf0\x9f\x91\xa7";
    SetText(text);
    for (int32 end : {2, 5, 6, 24}) {
        desk.Key(XK_Right);
        ExpectSelection(end, end);
    }
    desk.Key(XK_BackSpace);
    ExpectText(text.substr(0, 6));
    Keys({XK_Left, XK_BackSpace});
    ExpectText("\xc3\xa4\xff");
}

TEST_F(TextFieldTest, TypesByTheLayoutAndItsSequences) {
    const auto setLayout = [](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"setxkbmap", "-option", "", "-layout"});
        EXPECT_EQ(test::ChildProcess({.arguments = arguments}).Wait(), 0);
    };
    // Russian in the second group, chosen by Shift with Caps Lock.
    setLayout({"us,ru", "-option", "grp:shift_caps_toggle"});
    Keys({XK_a, XK_q});
    desk.KeyWith(XK_Shift_L, XK_Caps_Lock);
    Keys({XK_a, XK_q});
    ExpectText("aqфй");
    setLayout({"us", "-variant", "intl", "-option", "compose:rctrl"});
    SetText("");
    Keys({XK_dead_acute, XK_e, XK_e, XK_Multi_key, XK_s, XK_s});
    ExpectText("éeß");
    // What goes into no sequence ends the one that was begun.
    Keys({XK_dead_acute, XK_q, XK_dead_acute, XK_BackSpace, XK_e});
    ExpectText("éeßqe");
    setLayout({"us"});
}

TEST_F(TextFieldTest, SelectsWithTheMouseAndScrolls) {
    SetText("one two, three");
    ClickAt(field, Behind("one t") + BPoint(1, 0));
    ExpectSelection(5, 5);
    Press(Behind("one two, t"), 2);
    ExpectSelection(9, 14);
    MoveOver(field, Behind("one t"));
    ExpectSelection(4, 14);
    desk.Release();
    Press(Behind("one t"), 3);
    ExpectSelection(0, 14);
    desk.Release();

    const std::string text = "the beginning " + std::string(200, 'm') + " the end";
    SetText(text);
    const float right = field->Bounds().right;
    EXPECT_TRUE(WaitForPixel(field, {kMargin, 8}, 0x000000)) << "the caret";
    EXPECT_TRUE(WaitForPixel(field, {kMargin, 8}, 0xffffff)) << "it blinks";
    desk.Key(XK_End);
    EXPECT_TRUE(WaitForPixel(field, {right - kMargin, 8}, 0x000000)) << "the caret";
    Press({right - Behind("the end").x - 1, 8}, 1);
    ExpectSelection(215, 215);
    MoveOver(field, BPoint(-300, 8));
    ExpectSelection(0, 215);
    desk.Release();
    ExpectOffered("PRIMARY", text.substr(0, 215));
}

TEST_F(TextFieldTest, CutsCopiesAndPastesWhatOthersOffer) {
    desk.Type("one two");
    desk.KeyWith(XK_Shift_L, XK_Home);
    desk.KeyWith(XK_Alt_L, XK_x);
    ExpectText("");
    ExpectOffered("CLIPBOARD", "one two");
    Control(XK_v);
    ExpectText("one two");
    desk.KeyDown(XK_Shift_L);
    Control(XK_Left);
    desk.KeyUp(XK_Shift_L);
    Control(XK_c);
    desk.Key(XK_Home);
    desk.KeyWith(XK_Alt_L, XK_v);
    ExpectText("twoone two");

    const auto paste = [&] { Control(XK_v); };
    SetText("");
    Bring("CLIPBOARD", "a\r\nb\tc\x01 d\xff\n", paste);
    ExpectText("a b c d\xef\xbf\xbd");
    SetText("ab");
    Bring("PRIMARY", "-", [&] { ClickAt(field, Behind("a"), 2); });
    ExpectText("a-b");
    // Four kilobytes are the end, but for a longer text that the program set.
    std::string text;
    while (text.size() < 5000)
        text += "\xe2\x82\xac";
    SetText("");
    Bring("CLIPBOARD", text, paste);
    ExpectText(text.substr(0, 4095));
    SetText(text);
    desk.Type("x");
    desk.Key(XK_Delete);
    ExpectText(text.substr(3));
}

TEST_F(TextFieldTest, ItsMenuOpensByButtonAndKeysAndOffersWhatCanBeDone) {
    const auto choose = [&](std::initializer_list<uint32_t> keys) {
        Keys(keys);
        desk.Key(XK_Return);
        ASSERT_TRUE(WaitForMenus(0));
    };
    const auto expectMenuBehind = [&](const std::string& text) {
        ASSERT_TRUE(WaitForMenus(1));
        EXPECT_NEAR(desk.Shown("POPUP_MENU")[0].frame.x, OnScreen(field, Behind(text)).x, 3);
    };
    desk.Type("one two");
    ExpectText("one two");
    desk.Key(XK_Menu);
    expectMenuBehind("one two");
    choose({XK_Down});
    ExpectText("one ");
    desk.KeyWith(XK_Shift_L, XK_F10);
    expectMenuBehind("one ");
    choose({XK_Down, XK_Down});
    MoveOver(field, {50, 8});
    desk.Press(3);
    ASSERT_TRUE(WaitForMenus(1));
    desk.Release(3); // the open menu's: it stays
    choose({XK_Up});
    ExpectSelection(0, 7);
}

} // namespace
