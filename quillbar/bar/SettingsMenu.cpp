#include "kits/app/AppDefs.h"
#include "kits/app/Application.h"
#include "kits/app/Message.h"
#include "kits/interface/controls/Alert.h"
#include "kits/interface/menus/MenuItem.h"
#include "kits/interface/menus/PopUpMenu.h"
#include "kits/kernel/Locker.h"
#include "kits/support/String.h"
#include "quillbar/bar/MainWindow.h"
#include "quillbar/base/Browser.h"
#include "quillbar/base/Settings.h"
#include "quillbar/store/Alerts.h"
#include "quillbar/store/Monitor.h"

namespace {

// A key that can be part of the hot key: its bit in the setting, its item in the menu.
struct HotKey {
    const char* label;
    uint32 command;
    int32 bit;
};

// In the order of the menu.
constexpr HotKey kHotKeys[6] = {
    {"Alt Key", kQBToggleAltKey, kQBAltKey},
    {"Shift Key", kQBToggleShiftKey, kQBShiftKey},
    {"Control Key", kQBToggleControlKey, kQBControlKey},
    {"\"Windows\" Key", kQBToggleWindowsKey, kQBWindowsKey},
    {"\"Menu\" Key", kQBToggleMenuKey, kQBMenuKey},
    {"Delete Key On Numeric Keypad", kQBToggleDeleteKey, kQBDeleteKey},
};

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
    // A browser that is the only one becomes the setting, even if the other was stored.
    const bool hasOpera = ExistOpera();
    const bool hasNetPositive = ExistNetPos();
    const QBBrowser browser = UsableBrowser(gSettings->GetBrowser(), hasOpera, hasNetPositive);
    gSettings->SetBrowser(browser);

    fSettingsMenu = new BPopUpMenu("Settings", false, false, B_ITEMS_IN_COLUMN);
    fAlignHItem = AddItem(fSettingsMenu, "Align Horizontally", kQBAlignHorizontally,
                          align == kQBAlignHorizontal, window);
    fAlignVItem = AddItem(fSettingsMenu, "Align Vertically", kQBAlignVertically,
                          align == kQBAlignVertical, window);
    fSettingsMenu->AddSeparatorItem();
    AddBrowserItem("Use Opera", kQBUseOpera, hasOpera, browser == kQBOpera);
    AddBrowserItem("Use NetPositive", kQBUseNetPositive, hasNetPositive, browser == kQBNetPositive);
    fSettingsMenu->AddSeparatorItem();
    AddItem(fSettingsMenu, "Add Bookmark", kQBAddBookmark, false, window);

    auto* urlMenu = new BMenu("Show URL", B_ITEMS_IN_COLUMN);
    fShowURLYesItem = AddItem(urlMenu, "Yes", kQBShowURLYes, showURL, window);
    fShowURLNoItem = AddItem(urlMenu, "No", kQBShowURLNo, !showURL, window);
    fSettingsMenu->AddItem(urlMenu);

    auto* keyMenu = new BMenu("Hot Key", B_ITEMS_IN_COLUMN);
    for (int i = 0; i < 6; ++i) {
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

void QBMainWindow::AddBrowserItem(const char* label, uint32 command, bool isInstalled,
                                  bool isChosen) {
    BMenuItem* item = AddItem(fSettingsMenu, label, command, false, BMessenger(this));
    if (!isInstalled) {
        item->SetEnabled(false);
    } else if (isChosen) {
        item->SetMarked(true);
        fBrowserItem = item;
    }
}

void QBMainWindow::ChooseAlign(QBAlign align) {
    fAlignHItem->SetMarked(align == kQBAlignHorizontal);
    fAlignVItem->SetMarked(align != kQBAlignHorizontal);
    HandleAlignChange(align);
    WarnUnlessSavable();
}

void QBMainWindow::ChooseBrowser(QBBrowser browser, BMessage* message) {
    gSettings->SetBrowser(browser);
    gSettings->Save(); // quillbarctl opens bookmarks in it, too
    WarnUnlessSavable();
    void* source = nullptr;
    if (message->FindPointer("source", &source) != B_OK)
        return;
    if (fBrowserItem)
        fBrowserItem->SetMarked(false);
    fBrowserItem = static_cast<BMenuItem*>(source);
    fBrowserItem->SetMarked(true);
}

void QBMainWindow::ChooseShowURL(bool show) {
    if (gSettings->GetShowURL() == show)
        return;
    gSettings->SetShowURL(show);
    fLocker->Lock();
    fMonitor->UpdateMenus();
    fLocker->Unlock();
    fShowURLYesItem->SetMarked(show);
    fShowURLNoItem->SetMarked(!show);
    WarnUnlessSavable();
}

void QBMainWindow::ToggleHotKey(uint32 command) {
    int index = 0;
    while (kHotKeys[index].command != command)
        ++index;
    const int32 bit = kHotKeys[index].bit;
    BMenuItem* item = fHotKeyItems[index];
    const bool isMarked = item->IsMarked();
    const int32 keys = gSettings->GetHotKey();
    const int32 changed = isMarked ? keys & ~bit : keys | bit;
    if (changed != 0) {
        gSettings->SetHotKey(changed);
        item->SetMarked(!isMarked);
        WarnUnlessSavable();
        return;
    }
    auto* alert =
        new BAlert("", "You must have a least one hot key set to be able to use this feature!",
                   "OK", nullptr, nullptr, B_WIDTH_AS_USUAL, B_INFO_ALERT);
    if (command == kQBToggleWindowsKey)
        alert->Go(nullptr);
    else
        alert->Go();
}

void QBMainWindow::ToggleOnTop() {
    const bool onTop = !gSettings->GetOnTop();
    gSettings->SetOnTop(onTop);
    fOnTopItem->SetMarked(onTop);
    SetFeel(onTop ? B_FLOATING_ALL_WINDOW_FEEL : B_NORMAL_WINDOW_FEEL);
    WarnUnlessSavable();
}

// Once, until they could be saved again.
void QBMainWindow::WarnUnlessSavable() {
    const status_t status = gSettings->CanBeSaved();
    const bool isNew = status != B_OK && !fWarnedOfSettings;
    fWarnedOfSettings = status != B_OK;
    if (!isNew)
        return;
    BString text("Your settings cannot be saved: ");
    text << StatusText(status) << ". They will be lost when Quillbar ends.";
    AlertWarning(text.String());
}
