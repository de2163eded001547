#include "kits/interface/menus/PopUpMenu.h"

#include "kits/interface/menus/MenuTracker.h"

BPopUpMenu::BPopUpMenu(const char* name, bool radioMode, bool labelFromMarked, menu_layout layout)
    : BMenu(name, layout) {
    SetRadioMode(radioMode);
    SetLabelFromMarked(labelFromMarked);
}

BMenuItem* BPopUpMenu::Go(BPoint where, bool deliversMessage, bool openAnyway, bool async) {
    const bool isGivenAway = async && fAsyncAutoDestruct;
    std::shared_ptr<MenuTracker> tracker;
    if (CountItems() > 0) {
        tracker = MenuTracker::Open(*this, where, openAnyway, async && deliversMessage, nullptr,
                                    isGivenAway);
    }
    if (!tracker && isGivenAway)
        delete this;
    if (!tracker || async)
        return nullptr;
    BMenuItem* chosen = tracker->Wait();
    if (chosen && deliversMessage)
        chosen->Invoke();
    return chosen;
}
