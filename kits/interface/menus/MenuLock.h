#pragma once

#include "kits/interface/menus/MenuWindow.h"

// Keeps a menu's window locked.
class MenuLock {
public:
    explicit MenuLock(BMenuWindow& window)
        : fWindow(window) {
        fWindow.Lock();
    }
    ~MenuLock() { fWindow.Unlock(); }
    MenuLock(const MenuLock&) = delete;
    MenuLock& operator=(const MenuLock&) = delete;

private:
    BMenuWindow& fWindow;
};
