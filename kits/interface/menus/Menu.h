#pragma once

#include <memory>
#include <vector>

#include "kits/interface/menus/MenuItem.h"
#include "kits/interface/window/View.h"

class BMenuField;
class BMenuWindow;
class MenuTracker;

enum menu_layout {
    B_ITEMS_IN_ROW = 0, // of a menu bar
    B_ITEMS_IN_COLUMN = 1,
};

// A list of items, one of which can be chosen. It is a view of a window of its own while it is open
// (Window() is null while it is not), and it is opened by a BPopUpMenu, itself or as its sub-menu.
//
// A closed menu has no lock: one thread at a time uses it. While it is open, items may be
// relabelled, marked, enabled and added with its window locked, and it is laid out
// again; it must not be deleted, and none of its items removed.
//
// The user chooses with the pointer, or with these keys: arrows, Home, End, Page Up and Page Down
// select; Enter and Space choose; Right and Left open and close sub-menus; a letter chooses the
// item whose label starts with it, or, where several do, selects them in turn; Escape closes a
// sub-menu, or the menu.
class BMenu : public BView {
public:
    explicit BMenu(const char* name, menu_layout layout = B_ITEMS_IN_COLUMN);
    // Deletes the items. Not while it is open.
    ~BMenu() override;

    // The menu owns the item. False if it is in a menu already, or the index is beyond the end.
    bool AddItem(BMenuItem* item);
    bool AddItem(BMenuItem* item, int32 index);
    // As an item with the sub-menu's name; the menu owns both.
    bool AddItem(BMenu* submenu);
    bool AddItem(BMenu* submenu, int32 index);
    bool AddSeparatorItem();
    // The caller owns the item again. False or null if it is not here.
    bool RemoveItem(BMenuItem* item);
    BMenuItem* RemoveItem(int32 index);

    BMenuItem* ItemAt(int32 index) const; // null if there is none
    int32 CountItems() const { return static_cast<int32>(fItems.size()); }
    int32 IndexOf(BMenuItem* item) const; // B_ERROR if it is not here
    BMenuItem* FindMarked();              // the first in this menu, or null

    // In radio mode one item is marked at a time: the one that was chosen or marked last.
    void SetRadioMode(bool on) { fRadioMode = on; }
    bool IsRadioMode() const { return fRadioMode; }
    // Whether the item that the menu is in takes the label of the item marked last.
    void SetLabelFromMarked(bool on) { fLabelFromMarked = on; }
    bool IsLabelFromMarked() const { return fLabelFromMarked; }

    // Gives all items of this menu the target. The result of the first that refuses.
    status_t SetTargetForItems(const BMessenger& target);

    // The item that this menu is the sub-menu of, or null.
    BMenuItem* Superitem() const { return fSuperitem; }

    // Measures what has changed, here and in sub-menus, and draws each in a hidden window, so that
    // opening takes less time. A program calls it when it has nothing better to do; without that
    // the same is done when the menu opens. An open menu is left alone.
    void PrepareLayout();

    // While the menu is open, the keys of the session go to the menu that was opened last: also
    // those that type nothing (`numBytes` is 0), so that an own menu can go by the key's code. The
    // raw code is the field "key" of the current message of the first menu's window. The repeating
    // of a key that was held before the menu opened is left out.
    void KeyDown(const char* bytes, int32 numBytes) override;

    // Closes the whole menu without a choice if it is open.
    void Hide() override;

    void Draw(BRect updateRect) override;
    void SetFont(const BFont* font, uint32 mask = B_FONT_ALL) override;

protected:
    // A view of a window that is not a menu's.
    BMenu(BRect frame, const char* name, uint32 resizingMode, uint32 flags);

private:
    friend class BMenuBar;
    friend class BMenuField;
    friend class BMenuItem;
    friend class BMenuWindow;
    friend class BPopUpMenu;
    friend class MenuTracker;

    enum class Part { None, Items, UpArrow, DownArrow };

    void ItemChanged(bool size);
    void ItemMarked(BMenuItem* marked);

    // Items without a target, here and below, get this one.
    void GiveDefaultTarget(const BMessenger& target);
    // Invokes the enabled item whose shortcut the key is; items without a target send to `window`.
    // False if no item has that key.
    bool InvokeShortcut(const BMessage& keyDown, const BMessenger& window);
    // The item that the key of this character with these modifiers invokes, here or below; or null.
    BMenuItem* ItemOfShortcut(char character, uint32 modifiers) const;

    // Layout and scrolling. Lengths count pixels, as a rectangle's do not.
    void Layout();
    float ContentWidth() const { return fContentWidth; }
    float ContentHeight() const { return fContentHeight; }
    float RoomBehindLabels() const;
    bool NeedsScrolling() const;
    BRect Viewport() const;
    float MaxScroll() const;
    bool ScrollTo(float offset);
    void ScrollToShow(const BMenuItem& item);
    Part PartAt(BPoint where) const;
    BMenuItem* SelectableAt(BPoint where) const;

    void DrawFrame();
    void DrawScrollArrow(BRect frame, bool up);

    // The next item that can be selected from `index` in the direction of `step`, around the ends.
    BMenuItem* NextSelectable(int32 index, int32 step) const;
    BMenuItem* Selected() const { return fSelected; }
    void Select(BMenuItem* item);

    std::vector<BMenuItem*> fItems;
    BMenuItem* fSuperitem = nullptr;
    BMenuField* fField = nullptr; // that shows what is marked
    BMenuItem* fSelected = nullptr;
    bool fRadioMode = false;
    bool fLabelFromMarked = false;

    bool fLaidOut = false;
    double fScale = 0; // of the display when it was laid out
    const BMenuWindow* fDrawnIn =
        nullptr; // has the picture of what is laid out, unless another has been drawn there
    bool fDrawing = false;
    float fContentWidth = 0;
    float fContentHeight = 0;
    float fShortcutWidth = 0;
    float fScroll = 0; // how far the items are moved up

    // Not null while the menu is open. Written with its window locked.
    MenuTracker* fTracker = nullptr;
};
