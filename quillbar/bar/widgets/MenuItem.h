#pragma once

#include "kits/interface/menus/MenuItem.h"

// The menu item of a bookmark slot: whatever it is invoked with, it sends its own message.
class QBMenuItem : public BMenuItem {
public:
    using BMenuItem::BMenuItem;

    status_t Invoke(BMessage* message = nullptr) override;
};
