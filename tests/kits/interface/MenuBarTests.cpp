// Menus that belong to a window: those of a menu bar and of menu fields, and their shortcuts.

#include <X11/keysym.h>

#include <algorithm>

#include "kits/app/AppDefs.h"
#include "kits/interface/controls/Box.h"
#include "kits/interface/controls/Button.h"
#include "kits/interface/menus/MenuBar.h"
#include "kits/interface/menus/MenuField.h"
#include "tests/kits/interface/MenuDesktop.h"

using test::Box;
using test::WaitUntil;

namespace {

class WindowMenus : public MenuTest {
protected:
    WindowMenus() {
        file = new BMenu("File");
        file->AddItem(new BMenuItem("Open", new BMessage('open'), 'T'));
        file->AddItem(new BMenuItem("Print", new BMessage('prnt'), 'p', B_SHIFT_KEY));
        edit = new BMenu("Edit");
        edit->AddItem(new BMenuItem("Undo", new BMessage('undo'), '3', B_SHIFT_KEY));
        bar = new BMenuBar(BRect(0, 0, 299, 5), "bar");
        window->AddChild(bar);
        bar->AddItem(file);
        bar->AddItem(edit);

        auto* popUp = new BPopUpMenu("Digits");
        for (char digit : {'2', '3', '4'})
            popUp->AddItem(new BMenuItem(std::string("Digit ").append(1, digit).c_str(),
                                         new BMessage('dig\0' + static_cast<uint32>(digit)),
                                         digit));
        group = new BBox(BRect(10, 60, 289, 119), "group");
        group->SetLabel("Group");
        field = new BMenuField(BRect(10, 20, 209, 40), "field", "Choose", popUp, true);
        group->AddChild(field);
        window->AddChild(group);
        button = new BButton(BRect(10, 130, 109, 160), "button", "Default", new BMessage('dflt'));
        other = new BButton(BRect(120, 130, 219, 160), "other", "Other", new BMessage('othr'));
        window->AddChild(button);
        window->AddChild(other);
        button->MakeDefault(true);
        Show(window);
        window->Activate();
        EXPECT_TRUE(WaitFor(window, [&] { return window->IsActive(); }));
    }

    std::vector<uint32> Received() {
        std::vector<uint32> found;
        WithLock(window, [&] {
            const auto isKey = [](uint32 what) {
                return what == B_KEY_DOWN || what == B_KEY_UP || what == B_UNMAPPED_KEY_DOWN ||
                       what == B_UNMAPPED_KEY_UP || what == B_MODIFIERS_CHANGED;
            };
            std::remove_copy_if(window->received.begin(), window->received.end(),
                                std::back_inserter(found), isKey);
        });
        return found;
    }
    bool WaitForMessages(const std::vector<uint32>& expected) {
        return WaitUntil([&] { return Received() == expected; });
    }
    // The window waits while a menu is open, so it is looked at from outside.
    Box TitlePlace(int title) const { return {300 + 20 + 36 * title, 300 + 10, 1, 1}; }
    bool WaitForOpen(BMenu* opening) {
        return WaitUntil([&] {
            const bool isOpen = BMessenger(opening).LockTarget();
            if (isOpen)
                opening->Window()->Unlock();
            return isOpen;
        });
    }
    void Press(uint32_t modifier, uint32_t key) {
        robot.KeyDown(modifier);
        robot.Key(key);
        robot.KeyUp(modifier);
    }

    RecordingWindow* window = new RecordingWindow(BRect(300, 300, 599, 499));
    BMenuBar* bar;
    BMenu* file;
    BMenu* edit;
    BBox* group;
    BMenuField* field;
    BButton* button;
    BButton* other;
};

TEST_F(WindowMenus, TheBarsMenusFollowThePointerAndTheArrowKeys) {
    WithLock(window, [&] { EXPECT_GT(bar->Bounds().Height(), 14); });
    robot.MoveTo(TitlePlace(0).x, TitlePlace(0).y);
    robot.Press();
    ASSERT_TRUE(WaitForOpen(file));
    const Box frame = Menus().at(0).frame;
    const uint32_t highlight = screen.Pixel(TitlePlace(0).x - 12, TitlePlace(0).y);
    robot.MoveTo(TitlePlace(1).x, TitlePlace(1).y);
    ASSERT_TRUE(WaitForOpen(edit));
    EXPECT_GT(Menus().at(0).frame.x, frame.x);
    EXPECT_EQ(Menus().at(0).frame.y, frame.y);
    EXPECT_TRUE(WaitUntil(
        [&] { return screen.Pixel(TitlePlace(1).x - 12, TitlePlace(1).y) == highlight; }));
    EXPECT_NE(screen.Pixel(TitlePlace(0).x - 12, TitlePlace(0).y), highlight);
    // Released over a title a menu stays; over an item it chooses.
    robot.Release();
    robot.MoveTo(TitlePlace(0).x, TitlePlace(0).y);
    ASSERT_TRUE(WaitForOpen(file));
    Click(file->ItemAt(0));
    EXPECT_TRUE(WaitForMenus(0));
    EXPECT_TRUE(WaitForMessages({'open'}));
    // So do keys, which go around.
    robot.Click(TitlePlace(0).x, TitlePlace(0).y);
    ASSERT_TRUE(WaitForOpen(file));
    robot.Key(XK_Right);
    ASSERT_TRUE(WaitForOpen(edit));
    robot.Key(XK_Right);
    ASSERT_TRUE(WaitForOpen(file));
    robot.Key(XK_Left);
    ASSERT_TRUE(WaitForOpen(edit));
    EXPECT_TRUE(WaitForHighlight(edit->ItemAt(0)));
    robot.Key(XK_Return);
    EXPECT_TRUE(WaitForMessages({'open', 'undo'}));
    EXPECT_TRUE(WaitForMenus(0));
    // A second press on the title closes the menu.
    robot.Click(TitlePlace(0).x, TitlePlace(0).y);
    ASSERT_TRUE(WaitForOpen(file));
    robot.Click(TitlePlace(0).x, TitlePlace(0).y);
    EXPECT_TRUE(WaitForMenus(0));
    EXPECT_TRUE(IsInputFree());
    EXPECT_TRUE(WaitForMessages({'open', 'undo'}));
}

TEST_F(WindowMenus, F10OpensTheBarAtItsFirstItem) {
    WithLock(window, [&] { other->MakeFocus(true); });
    robot.Key(XK_F10);
    ASSERT_TRUE(WaitForOpen(file));
    EXPECT_TRUE(WaitForHighlight(file->ItemAt(0)));
    robot.Key(XK_Return);
    EXPECT_TRUE(WaitForMessages({'open'}));
    EXPECT_TRUE(WaitForMenus(0));
}

TEST_F(WindowMenus, ShortcutsInvokeEnabledItemsBeforeTheFocusGetsTheKey) {
    WithLock(window, [&] { other->MakeFocus(true); });
    Press(XK_Alt_L, XK_t);
    Press(XK_Alt_L, XK_3);
    robot.KeyDown(XK_Shift_L);
    Press(XK_Alt_L, XK_3);
    Press(XK_Alt_L, XK_t); // not with Shift
    robot.KeyUp(XK_Shift_L);
    Press(XK_Control_L, XK_t); // nor with another modifier
    EXPECT_TRUE(WaitForMessages({'open', 'dig3', 'undo'}));
    WithLock(window, [&] {
        EXPECT_EQ(field->ShownLabel(), "Digit 3");
        file->ItemAt(0)->SetEnabled(false);
        window->received.clear();
    });
    Press(XK_Alt_L, XK_t);
    Press(XK_Alt_L, XK_2);
    EXPECT_TRUE(WaitForMessages({'dig2'}));
    // The window's thread draws the shortcuts in the menu, behind all labels.
    robot.Click(TitlePlace(0).x, TitlePlace(0).y);
    ASSERT_TRUE(WaitForOpen(file));
    const Box item = Place(file->ItemAt(1));
    EXPECT_GT(item.width, 120);
    const uint32_t background = screen.Pixel(item.x + 2, item.y + 2);
    EXPECT_TRUE(WaitUntil([&] {
        const auto end = screen.Grab({item.x + item.width - 40, item.y, 40, item.height});
        return end.Count(background) < end.pixels.size();
    }));
    robot.Key(XK_Escape);
    EXPECT_TRUE(WaitForMenus(0));
}

TEST_F(WindowMenus, AFieldShowsItsMarkedItemAndOpensItOverTheBox) {
    WithLock(window, [&] {
        EXPECT_EQ(field->ShownLabel(), "Digits");
        field->Menu()->ItemAt(1)->SetMarked(true);
        EXPECT_EQ(field->ShownLabel(), "Digit 3");
    });
    const BPoint inBox = OnScreen(field, BPoint(150, 10));
    robot.Click(static_cast<int>(inBox.x), static_cast<int>(inBox.y));
    ASSERT_TRUE(WaitForOpen(field->Menu()));
    EXPECT_TRUE(WaitForHighlight(field->Menu()->ItemAt(1))) << "not under the pointer";
    Click(field->Menu()->ItemAt(2));
    EXPECT_TRUE(WaitForMessages({'dig4'}));
    EXPECT_TRUE(IsInputFree());
    WithLock(window, [&] { EXPECT_EQ(field->ShownLabel(), "Digit 4"); });

    // By keys the marked item is selected first. Changes of its label show.
    WithLock(window, [&] {
        field->Menu()->ItemAt(2)->SetLabel("Four");
        field->MakeFocus(true);
    });
    robot.Key(XK_space);
    ASSERT_TRUE(WaitForOpen(field->Menu()));
    EXPECT_TRUE(WaitForHighlight(field->Menu()->ItemAt(2)));
    robot.Key(XK_Up);
    robot.Key(XK_space);
    EXPECT_TRUE(WaitForMessages({'dig4', 'dig3'}));
    EXPECT_TRUE(IsInputFree());
}

TEST_F(WindowMenus, EnterIsTheDefaultButtonsAndTabGoesFromGroupToGroup) {
    WithLock(window, [&] { other->MakeFocus(true); });
    robot.Key(XK_Return);
    robot.Key(XK_space);
    EXPECT_TRUE(WaitForMessages({'dflt', 'othr'}));
    robot.Key(XK_Tab);
    EXPECT_TRUE(WaitFor(window, [&] { return field->IsFocus(); }));
    robot.Key(XK_Return);
    EXPECT_TRUE(WaitForMessages({'dflt', 'othr', 'dflt'}));
    EXPECT_TRUE(Menus().empty());
    Press(XK_Control_L, XK_Tab);
    EXPECT_TRUE(WaitFor(window, [&] { return button->IsFocus(); }));
    Press(XK_Control_L, XK_Tab);
    EXPECT_TRUE(WaitFor(window, [&] { return field->IsFocus(); }));
}

TEST(MenuShortcut, KeysStandForDigitsByPlaceAndForLettersByWhatTheyType) {
    EXPECT_EQ(ShortcutCharacter(0x14, "#"), '3');
    EXPECT_EQ(ShortcutCharacter(0x58, "1"), '1'); // keypad
    EXPECT_EQ(ShortcutCharacter(0x2b, "Y"), 'y');
    EXPECT_EQ(ShortcutCharacter(0x2b, "\xd0\xb5"), 't'); // Cyrillic
    EXPECT_EQ(ShortcutCharacter(0x02, "\x10"), 0);
    EXPECT_EQ(ShortcutLabel('t', B_COMMAND_KEY), "Alt+T");
    EXPECT_EQ(ShortcutLabel('3', B_COMMAND_KEY | B_SHIFT_KEY), "Alt+Shift+3");
}

} // namespace
