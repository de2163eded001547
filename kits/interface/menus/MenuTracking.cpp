#include "kits/interface/menus/MenuTracking.h"

#include "kits/interface/menus/MenuRegistry.h"
#include "kits/interface/menus/MenuWindow.h"

void close_all_menus() {
    MenuRegistry::Shared().CancelOpen();
}

void allow_menus(bool allow) {
    MenuRegistry::Shared().Allow(allow);
}

void delete_menu_windows() {
    MenuRegistry& registry = MenuRegistry::Shared();
    registry.CancelOpen();
    registry.WaitUntilNoneIsOpen();
    BMenuWindow::DeleteKept();
}
