#pragma once

#include <string>
#include <string_view>

#include "base/Rect.h"
#include "kits/app/Invoker.h"
#include "kits/interface/drawing/InterfaceDefs.h"

class BMenu;
class MenuTracker;

// A line of a menu: a label and the message that is sent when it is chosen, or a menu that opens
// beside it. It belongs to its menu once it was added, and its message and its sub-menu to it.
//
// A menu that is not open has no lock of its own: its items are used by one thread at a time. Items
// of an open menu are used with the menu's window locked.
class BMenuItem : public BInvoker {
public:
    // The label is copied. In a menu of a menu bar or a menu field, the key of the character
    // `shortcut` (a digit, or a letter in either case), pressed with the Command key and
    // `modifiers`, invokes the item while its window has the keyboard.
    BMenuItem(const char* label, BMessage* message, char shortcut = 0, uint32 modifiers = 0);
    // Named like the sub-menu.
    explicit BMenuItem(BMenu* submenu, BMessage* message = nullptr);
    // Takes itself out of its menu.
    ~BMenuItem() override;

    // Costs no measuring: the menu is laid out again when it is next shown, or soon if it is open.
    virtual void SetLabel(const char* label);
    const char* Label() const { return fLabel.c_str(); }
    // A disabled item cannot be chosen, and looks it.
    virtual void SetEnabled(bool enabled);
    bool IsEnabled() const { return fEnabled; }
    // A mark is a tick before the label. In a menu in radio mode, marking one unmarks the others.
    virtual void SetMarked(bool marked);
    bool IsMarked() const { return fMarked; }

    // Null if there is none.
    BMenu* Submenu() const { return fSubmenu; }
    // The menu it is in, or null.
    BMenu* Menu() const { return fMenu; }
    // In the menu's coordinates; not valid before the menu was laid out.
    BRect Frame() const;
    // Highlighted, since the pointer or the keyboard is at it.
    bool IsSelected() const;

    // Sends a copy of `message`, or of its own message for null, with "when" (int64), "source"
    // (pointer, this item) and "index" (int32, its place in the menu) added. B_BAD_VALUE if there
    // is no message.
    status_t Invoke(BMessage* message = nullptr) override;

protected:
    friend class BMenu;
    friend class BMenuField;
    friend class MenuTracker;

    // The room that DrawContent() needs, in logical pixels. Asked again after SetLabel() and after
    // the menu's font has changed.
    virtual void GetContentSize(float* width, float* height);
    // Draws the highlight, the mark, the arrow, and what DrawContent() draws.
    virtual void Draw();
    // Draws the label. The menu's high colour is the text's, its font the menu's.
    virtual void DrawContent();
    // The item was selected, or is not any more: has it drawn again.
    virtual void Highlight(bool highlight);
    // The left-top corner of the content, in the menu's coordinates.
    BPoint ContentLocation() const;

    // Whether it can be chosen or opened.
    virtual bool IsSelectable() const { return fEnabled; }

private:
    void Changed(bool size);
    void Measure();
    float Baseline() const;
    void DrawMark();
    void DrawSubmenuArrow();
    void DrawShortcut();

    std::string fLabel;
    char fShortcut = 0;
    uint32 fModifiers = 0;
    bool fEnabled = true;
    bool fMarked = false;
    BMenu* fMenu = nullptr;
    BMenu* fSubmenu = nullptr;

    // Kept by the menu's layout, in logical pixels; the place is as if nothing was scrolled.
    bool fMeasured = false;
    float fContentWidth = 0;
    float fShortcutWidth = 0;
    float fHeight = 0;
    float fTop = 0;
};

// A line between groups of items. It is never chosen.
class BSeparatorItem : public BMenuItem {
public:
    BSeparatorItem();

protected:
    void GetContentSize(float* width, float* height) override;
    void Draw() override;
    bool IsSelectable() const override { return false; }
};

// The shortcuts of items, for the kit.

// The character that the key of a B_KEY_DOWN message stands for in shortcuts: letters are small
// ones; 0 for none. A key of the main row of digits stands for its digit, whatever it types in this
// keyboard layout or with Shift, and one that types no ASCII character for the letter at its place.
char ShortcutCharacter(int32 key, std::string_view bytes);

// How a menu shows a shortcut: "Alt+Shift+3".
std::string ShortcutLabel(char shortcut, uint32 modifiers);
