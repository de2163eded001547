#pragma once

#include "kits/interface/menus/Menu.h"

// A menu that the program opens.
//
// It closes when an item is chosen, with Escape, with a click beside it (which does nothing else),
// when the focus goes to another program, when the monitors change, and when the program quits. A
// click leaves it open for a second click that chooses; pressing, moving to an item and releasing
// chooses too. The release of a click that was under way when the menu opened never chooses, unless
// the pointer was moved in between.
class BPopUpMenu : public BMenu {
public:
    explicit BPopUpMenu(const char* name, bool radioMode = true, bool labelFromMarked = true,
                        menu_layout layout = B_ITEMS_IN_COLUMN);

    // Opens the menu with its left-top corner at `where` on the screen, or as near to it as it can
    // be inside that monitor. Pointer and keyboard belong to the menu while it is open.
    //
    // Waits until it is closed, and answers the chosen item, or null. With `deliversMessage` the
    // item has been invoked then. Without `openAnyway` the menu opens only if a mouse button is
    // down. With `async` the call returns null at once and the chosen item is invoked later, by the
    // menu's thread, if `deliversMessage`.
    //
    // Null at once if another menu is open, if menus may not open (a modal alert is up, the program
    // quits), or if there is nothing in it; null after 0.3 s if another program holds pointer or
    // keyboard. Any thread; locks that the caller holds are not needed.
    //
    // After SetAsyncAutoDestruct() an `async` call owns the menu, even if it does not open.
    BMenuItem* Go(BPoint where, bool deliversMessage = false, bool openAnyway = false,
                  bool async = false);

    // Whether a menu that was opened with `async` deletes itself when it is closed.
    void SetAsyncAutoDestruct(bool on) { fAsyncAutoDestruct = on; }

private:
    bool fAsyncAutoDestruct = false;
};
