// Menus that belong to a window: those of a menu bar and of menu fields, and their shortcuts.

#include "kits/interface/controls/Box.h"
#include "kits/interface/controls/Button.h"
#include "kits/interface/menus/MenuBar.h"
#include "kits/interface/menus/MenuField.h"
#include "tests/kits/interface/MenuTest.h"

using test::Box;
using test::Picture;
using test::WaitUntil;

namespace {

class WindowMenuTest : public MenuTest {
protected:
    WindowMenuTest() {
        file->AddItem(new BMenuItem("Open", new BMessage('open')));
        edit->AddItem(new BMenuItem("Undo", new BMessage('undo')));
        for (BMenu* one : {file, edit})
            bar->AddItem(one);
        for (const char* digit : {"2", "3", "4"})
            digits->AddItem(new BMenuItem(digit, new BMessage('dig\0' + digit[0])));
        group->AddChild(field);
        for (BView* view : std::initializer_list<BView*>{bar, group, button})
            window->AddChild(view);
        Show(window);
        Activate(window);
    }

    bool Receives(uint32 what) {
        return WaitUntil([&] { return window->CountReceived(what) == 1; });
    }

    static constexpr int kTitleX[] = {320, 356};
    static constexpr int kTitleY = 310;

    RecordingWindow* const window = new RecordingWindow(BRect(300, 300, 599, 499));
    BMenuBar* const bar = new BMenuBar(BRect(0, 0, 299, 5), "bar");
    BMenu* const file = new BMenu("File");
    BMenu* const edit = new BMenu("Edit");
    BPopUpMenu* const digits = new BPopUpMenu("Digits");
    BBox* const group = new BBox(BRect(10, 60, 289, 119), "group");
    BMenuField* const field =
        new BMenuField(BRect(10, 20, 209, 40), "field", "Choose", digits, true);
    BButton* const button =
        new BButton(BRect(10, 130, 109, 160), "button", "Press", new BMessage('prss'));
};

TEST_F(WindowMenuTest, TheBarsMenusFollowThePointerAndKeys) {
    desk.MoveTo(kTitleX[0], kTitleY);
    desk.Press();
    ASSERT_TRUE(WaitForOpen(file));
    desk.MoveTo(kTitleX[1], kTitleY);
    ASSERT_TRUE(WaitForOpen(edit));
    // Released over a title a menu stays; over an item it chooses.
    desk.Release();
    desk.MoveTo(kTitleX[0], kTitleY);
    ASSERT_TRUE(WaitForOpen(file));
    Click(file->ItemAt(0));
    EXPECT_TRUE(WaitForMenus(0));
    EXPECT_TRUE(Receives('open'));
    // Arrows go around. F10 opens the bar at its first item.
    WithLock(window, [&] { button->MakeFocus(true); });
    desk.Key(XK_F10);
    ASSERT_TRUE(WaitForOpen(file));
    EXPECT_TRUE(WaitForHighlight(file->ItemAt(0)));
    for (const auto& [key, opened] :
         {std::pair{XK_Right, edit}, {XK_Right, file}, {XK_Left, edit}}) {
        desk.Key(key);
        ASSERT_TRUE(WaitForOpen(opened));
    }
    EXPECT_TRUE(WaitForHighlight(edit->ItemAt(0)));
    desk.Key(XK_Return);
    EXPECT_TRUE(Receives('undo'));
    EXPECT_TRUE(WaitForMenus(0));
    // A second press on the title closes the menu.
    desk.Click(kTitleX[0], kTitleY);
    ASSERT_TRUE(WaitForOpen(file));
    desk.Click(kTitleX[0], kTitleY);
    EXPECT_TRUE(WaitForMenus(0));
    EXPECT_TRUE(Receives('open') && Receives('undo'));
}

TEST_F(WindowMenuTest, AFieldShowsItsMarkedItemAndOpensItOverTheBox) {
    WithLock(window, [&] {
        EXPECT_EQ(field->ShownLabel(), "Digits");
        digits->ItemAt(1)->SetMarked(true);
        EXPECT_EQ(field->ShownLabel(), "3");
    });
    MoveOver(field, BPoint(150, 10));
    desk.Press();
    desk.Release();
    ASSERT_TRUE(WaitForOpen(digits));
    EXPECT_TRUE(WaitForHighlight(digits->ItemAt(1))) << "not under the pointer";
    Click(digits->ItemAt(2));
    EXPECT_TRUE(Receives('dig4'));
    EXPECT_TRUE(desk.IsInputFree());
    // By keys the marked item is selected first.
    WithLock(window, [&] { field->MakeFocus(true); });
    desk.Key(XK_space);
    ASSERT_TRUE(WaitForOpen(digits));
    EXPECT_TRUE(WaitForHighlight(digits->ItemAt(2)));
    desk.Key(XK_Up);
    desk.Key(XK_space);
    EXPECT_TRUE(Receives('dig3'));
    EXPECT_TRUE(WaitFor(window, [&] { return field->ShownLabel() == "3"; }));
    // Control-Tab goes from group to group.
    desk.KeyWith(XK_Control_L, XK_Tab);
    EXPECT_TRUE(WaitFor(window, [&] { return button->IsFocus(); }));
    desk.KeyWith(XK_Control_L, XK_Tab);
    EXPECT_TRUE(WaitFor(window, [&] { return field->IsFocus(); }));
}

TEST_F(WindowMenuTest, AFieldsLongLabelStaysClearOfItsArrow) {
    BRect box;
    WithLock(window, [&] {
        digits->ItemAt(0)->SetMarked(true);
        box = field->ConvertToScreen(field->Bounds());
    });
    // The right end of the box: the gap is left of its arrow.
    const int width = 40;
    const Box end = {static_cast<int>(box.right) - width + 1, static_cast<int>(box.top) + 4, width,
                     12};
    constexpr int kArrow = width - 1 - 9;
    for (size_t length = 30; length < 45; length++) {
        WithLock(window, [&] {
            digits->ItemAt(0)->SetLabel(std::string(length, 'l').c_str());
            field->Invalidate();
        });
        window->Settle();
        const Picture seen = desk.Settled(end);
        for (int x = kArrow - 3; x < kArrow; x++) {
            for (int y = 1; y < end.height; y++)
                EXPECT_EQ(seen.At(x, y), seen.At(x, 0)) << length;
        }
    }
}

TEST(MenuShortcut, KeysStandForDigitsByPlaceAndForLettersByWhatTheyType) {
    EXPECT_EQ(ShortcutCharacter(0x14, "#"), '3');
    EXPECT_EQ(ShortcutCharacter(0x58, "1"), '1'); // keypad
    EXPECT_EQ(ShortcutCharacter(0x2b, "Y"), 'y');
    EXPECT_EQ(ShortcutCharacter(0x2b, "\xd0\xb5"), 't'); // Cyrillic
    EXPECT_EQ(ShortcutCharacter(0x02, "\x10"), 0);
    EXPECT_EQ(ShortcutLabel('3', B_COMMAND_KEY | B_SHIFT_KEY), "Alt+Shift+3");
}

} // namespace
