#pragma once

#include "kits/interface/menus/MenuItem.h"

// The menu item of a bookmark slot: it always sends its own message.
class QBMenuItem : public BMenuItem {
public:
    using BMenuItem::BMenuItem;

    status_t Invoke(BMessage* = nullptr) override { return BMenuItem::Invoke(); }
};
