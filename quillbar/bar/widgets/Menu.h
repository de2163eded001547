#pragma once

#include "kits/interface/menus/PopUpMenu.h"

// The pop-up menu of a folder. A slot is chosen with the keypad's digits; Escape and the keypad's
// slash close it; every other key is ignored.
class QBMenu : public BPopUpMenu {
public:
    using BPopUpMenu::BPopUpMenu;

    void KeyDown(const char* bytes, int32 numBytes) override;

private:
    void Choose(char digit);
};
