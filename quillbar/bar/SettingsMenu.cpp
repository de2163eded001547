#include "kits/app/AppDefs.h"
#include "kits/app/Application.h"
#include "kits/interface/menus/MenuItem.h"
#include "kits/interface/menus/PopUpMenu.h"
#include "quillbar/bar/HotKeys.h"
#include "quillbar/bar/MainWindow.h"
#include "quillbar/base/Settings.h"

namespace {

BMenuItem* AddItem(BMenu* menu, const char* label, uint32 command, bool isMarked,
                   const BMessenger& target) {
    auto* item = new BMenuItem(label, new BMessage(command));
    menu->AddItem(item);
    item->SetMarked(isMarked);
    item->SetTarget(target);
    return item;
}

} // namespace

void QBMainWindow::BuildSettingsMenu() {
    const BMessenger window(this);
    const QBAlign align = gSettings->GetAlign();
    const bool showURL = gSettings->GetShowURL();
    const int32 hotKey = gSettings->GetHotKey();
    const bool hasOpera = ExistOpera();
    const bool hasNetPositive = ExistNetPos();

    fSettingsMenu = new BPopUpMenu("Settings", false, false, B_ITEMS_IN_COLUMN);
    fAlignHItem = AddItem(fSettingsMenu, "Align Horizontally", kQBAlignHorizontally,
                          align == kQBAlignHorizontal, window);
    fAlignVItem = AddItem(fSettingsMenu, "Align Vertically", kQBAlignVertically,
                          align == kQBAlignVertical, window);
    fSettingsMenu->AddSeparatorItem();
    AddBrowserItem("Use Opera", kQBUseOpera, kQBOpera, hasOpera, !hasNetPositive);
    AddBrowserItem("Use NetPositive", kQBUseNetPositive, kQBNetPositive, hasNetPositive, !hasOpera);
    fSettingsMenu->AddSeparatorItem();
    AddItem(fSettingsMenu, "Add Bookmark", kQBAddBookmark, false, window);

    auto* urlMenu = new BMenu("Show URL", B_ITEMS_IN_COLUMN);
    fShowURLYesItem = AddItem(urlMenu, "Yes", kQBShowURLYes, showURL, window);
    fShowURLNoItem = AddItem(urlMenu, "No", kQBShowURLNo, !showURL, window);
    fSettingsMenu->AddItem(urlMenu);

    auto* keyMenu = new BMenu("Hot Key", B_ITEMS_IN_COLUMN);
    for (int i = 0; i < kHotKeyCount; ++i) {
        const HotKey& key = kHotKeys[i];
        fHotKeyItems[i] = AddItem(keyMenu, key.label, key.command, (hotKey & key.bit) != 0, window);
    }
    fSettingsMenu->AddItem(keyMenu);

    fSettingsMenu->AddSeparatorItem();
    fOnTopItem =
        AddItem(fSettingsMenu, "Always On Top", kQBToggleOnTop, gSettings->GetOnTop(), window);
    fSettingsMenu->AddSeparatorItem();
    AddItem(fSettingsMenu, "About", B_ABOUT_REQUESTED, false, be_app_messenger);
    AddItem(fSettingsMenu, "Quit", B_QUIT_REQUESTED, false, be_app_messenger);
}

// A browser that is the only one becomes the setting, whatever was stored.
void QBMainWindow::AddBrowserItem(const char* label, uint32 command, QBBrowser browser,
                                  bool isInstalled, bool isOnly) {
    BMenuItem* item = AddItem(fSettingsMenu, label, command, false, BMessenger(this));
    if (!isInstalled) {
        item->SetEnabled(false);
    } else if (isOnly || gSettings->GetBrowser() == browser) {
        item->SetMarked(true);
        gSettings->SetBrowser(browser);
        fBrowserItem = item;
    }
}
