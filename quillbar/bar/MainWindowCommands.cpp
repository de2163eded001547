#include <algorithm>
#include <iterator>

#include "kits/app/AppDefs.h"
#include "kits/app/Application.h"
#include "kits/app/Message.h"
#include "kits/app/MessageRunner.h"
#include "kits/app/Messenger.h"
#include "kits/app/Roster.h"
#include "kits/interface/menus/PopUpMenu.h"
#include "kits/kernel/Locker.h"
#include "kits/support/String.h"
#include "quillbar/addbookmark/BookmarkWindow.h"
#include "quillbar/bar/MainWindow.h"
#include "quillbar/bar/widgets/Bar.h"
#include "quillbar/bar/widgets/Button.h"
#include "quillbar/bar/widgets/Menu.h"
#include "quillbar/base/Browser.h"
#include "quillbar/base/Keypad.h"
#include "quillbar/base/Settings.h"
#include "quillbar/base/Trace.h"
#include "quillbar/store/Alerts.h"
#include "quillbar/store/Item.h"
#include "quillbar/store/Monitor.h"
#include "quillbar/store/Path.h"

namespace {

constexpr float kAddWindowAbove = 190; // above the bar's lower edge
constexpr bigtime_t kMappingTime = 100'000;

// The platform's raw key codes.
constexpr int32 kSettingsKey = 0x50; // "B"
constexpr int32 kMainRow[10] = {0x1b, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18, 0x19, 0x1a};

// The digit under which a table has the number, or -1.
template <typename Number>
int DigitOf(const Number (&table)[10], Number number) {
    const Number* found = std::ranges::find(table, number);
    return found == std::end(table) ? -1 : static_cast<int>(found - table);
}

// "-" of the main row, "-" and "+" of the keypad.
bool IsAddBookmarkKey(int32 key) {
    return key == 0x1c || key == 0x25 || key == 0x3a;
}

void Colour(BView* view, rgb_color color) {
    view->SetViewColor(color);
    view->Invalidate();
}

void WarnOfLaunch(const BString& name, const char* reason) {
    BString text("I could not start ");
    text << name << ": " << reason;
    AlertWarning(text.String());
}

} // namespace

void QBMainWindow::MessageReceived(BMessage* message) {
    if (HandleFolderCode(message))
        return;
    switch (message->what) {
    case kQBAlignHorizontally:
        ChooseAlign(kQBAlignHorizontal);
        break;
    case kQBAlignVertically:
        ChooseAlign(kQBAlignVertical);
        break;
    case kQBUseOpera:
        ChooseBrowser(kQBOpera, message);
        break;
    case kQBUseNetPositive:
        ChooseBrowser(kQBNetPositive, message);
        break;
    case kQBShowURLYes:
        ChooseShowURL(true);
        break;
    case kQBShowURLNo:
        ChooseShowURL(false);
        break;
    case kQBToggleAltKey:
    case kQBToggleShiftKey:
    case kQBToggleControlKey:
    case kQBToggleWindowsKey:
    case kQBToggleMenuKey:
    case kQBToggleDeleteKey:
        ToggleHotKey(message->what);
        break;
    case kQBToggleOnTop:
        ToggleOnTop();
        break;
    case kQBAddBookmark:
        OpenAddWindow(0, 0);
        break;
    case kQBAddBookmarkHere:
        OpenAddWindow(message->GetInt32("folder", 0), message->GetInt32("slot", 0));
        break;
    case kQBTakeLink:
        TakeLink(message);
        break;
    case kQBAddBookmarkGone:
        fAddWindowOpen = false;
        break;
    case kQBShowSettings:
        ShowSettingsMenu();
        break;
    case kQBLaunch:
        HandleLaunch(message);
        break;
    case B_PROGRAM_FAILED:
        WarnOfLaunch(message->GetString("name", ""), "it ended at once with an error.");
        break;
    case kQBPointAt:
        PrepareFolderMenu(static_cast<uint32>(message->GetInt32("code", 0)));
        break;
    case kQBPrepareMenus:
        PrepareMenus();
        break;
    case kQBLayOutMenus:
        LayOutMenus();
        break;
    case B_NODE_MONITOR:
        HandleNodeMonitor(message);
        break;
    case B_PASTE:
        HandlePaste(message);
        break;
    case B_MIME_DATA:
        HandleDroppedLink(message);
        break;
    case B_KEY_DOWN:
        HandleKeyDown(message);
        break;
    case B_KEY_UP:
        fKeyDown = false;
        break;
    case B_UNMAPPED_KEY_DOWN:
        HandleUnmappedKeyDown(message);
        break;
    default:
        BWindow::MessageReceived(message);
    }
}

void QBMainWindow::WindowActivated(bool active) {
    for (QBButton* button : fButtons)
        button->Invalidate();
    fBar->Invalidate();
    be_app_messenger.SendMessage(active ? kQBWindowActive : kQBWindowInactive);
}

void QBMainWindow::WorkspacesChanged(uint32, uint32 newWorkspaces) {
    SetWorkspaces(newWorkspaces);
}

bool QBMainWindow::HandleFolderCode(BMessage* message) {
    const int digit = DigitOf(QBFolder, message->what);
    int32 slot = 0;
    if (digit < 0)
        return false;
    if (message->FindInt32("slot", &slot) != B_OK)
        ShowFolderMenu(digit);
    else if (slot >= 1 && slot <= 10)
        Launch(digit + 1, slot);
    return true;
}

// The store stays locked while the menu is up, so that it does not change under it.
void QBMainWindow::ShowFolderMenu(int digit) {
    fLocker->Lock();
    QBButton* button = fButtons[digit];
    const BRect bounds = button->Bounds();
    const bool isRow = gSettings->GetAlign() == kQBAlignHorizontal;
    const BPoint point = button->ConvertToScreen(isRow ? bounds.LeftBottom() : bounds.RightTop());
    Trace(__PRETTY_FUNCTION__, "Showing menu");
    fMonitor->fPaths[digit]->Refresh();
    fMonitor->fPaths[digit]->Menu()->Go(point, true, true, false);
    Trace(__PRETTY_FUNCTION__, "Menu shown");
    fLocker->Unlock();
}

void QBMainWindow::ShowSettingsMenu() {
    const BPoint point = fBar->ConvertToScreen(fBar->Bounds().RightTop());
    fSettingsMenu->Go(point, true, true, false);
}

// Until the window is on the screen the window manager and the display server need the processor
// for it. A menu that is opened before lays itself out.
void QBMainWindow::PrepareMenus() {
    BuildSettingsMenu();
    const BMessage layOut(kQBLayOutMenus);
    fLayoutRunner = std::make_unique<BMessageRunner>(BMessenger(this), &layOut, kMappingTime, 1);
}

void QBMainWindow::LayOutMenus() {
    fLocker->Lock();
    for (QBPath* folder : fMonitor->fPaths)
        folder->Menu()->PrepareLayout();
    fLocker->Unlock();
    fSettingsMenu->PrepareLayout();
    // The start is over, and has left many small holes.
    BApplication::ReleaseFreeMemory();
}

// A press may follow.
void QBMainWindow::PrepareFolderMenu(uint32 code) {
    const int digit = DigitOf(QBFolder, code);
    if (digit < 0 || fLocker->LockWithTimeout(0) != B_OK)
        return;
    fMonitor->fPaths[digit]->Menu()->PrepareLayout();
    fLocker->Unlock();
}

// Of the hot key. An empty slot is passed over in silence.
void QBMainWindow::HandleLaunch(BMessage* message) {
    const int8 folder = message->GetInt8("folder", 0);
    const int8 slot = message->GetInt8("slot", 0);
    if (folder < 1 || folder > 10 || slot < 1 || slot > 10)
        return;
    fLocker->Lock();
    if (fMonitor->fPaths[folder - 1]->Items()[slot - 1]->IsValid())
        Launch(folder, slot);
    fLocker->Unlock();
}

void QBMainWindow::HandleNodeMonitor(BMessage* message) {
    fLocker->Lock();
    fMonitor->HandleNodeMessage(message);
    SetFolderHelp();
    fLocker->Unlock();
    if (fAddWindowOpen)
        QBBookmarkWindow::fMsgWindow.Send(B_NODE_MONITOR);
}

void QBMainWindow::HandlePaste(BMessage* message) {
    const void* data = nullptr;
    ssize_t size = 0;
    if (message->FindData("RGBColor", B_RGB_COLOR_TYPE, &data, &size) != B_OK ||
        size < static_cast<ssize_t>(sizeof(rgb_color)))
        return;
    const rgb_color color = *static_cast<const rgb_color*>(data);
    for (BView* button : fButtons)
        Colour(button, color);
    Colour(fSpareRoom, color);
    Colour(fMainView, color);
    Colour(fBar, color);
    gSettings->SetColor(color);
    WarnUnlessSavable();
}

void QBMainWindow::HandleDroppedLink(BMessage* message) {
    const char* url = nullptr;
    const char* name = message->GetString("be:clip_name", "");
    if (!message->WasDropped())
        return;
    if (message->FindString("be:url", &url) != B_OK) {
        BString text("There is no web address in ");
        text << name << ".";
        AlertWarning(text.String());
        return;
    }
    const uint32 code = static_cast<uint32>(message->GetInt32("code", 0));
    const int32 folder = DigitOf(QBFolder, code) + 1;
    BMessage link(kQBTakeLink);
    link.AddInt32("folder", folder);
    link.AddInt32("slot", folder > 0 ? FirstEmptySlot(folder) : 0);
    link.AddString("url", url);
    link.AddString("name", name);
    TakeLink(&link);
}

// A window that is just closing refuses it, or sends it back: then the next one gets it.
void QBMainWindow::TakeLink(BMessage* message) {
    OpenAddWindow(message->GetInt32("folder", 0), message->GetInt32("slot", 0));
    if (QBBookmarkWindow::fMsgWindow.Send(*message) != B_OK)
        PostMessage(message);
}

// 0 if there is none.
int32 QBMainWindow::FirstEmptySlot(int32 folder) const {
    fLocker->Lock();
    QBItem** slots = fMonitor->fPaths[folder - 1]->Items();
    const auto found =
        std::find_if(slots, slots + 10, [](QBItem* slot) { return !slot->IsValid(); });
    fLocker->Unlock();
    return found == slots + 10 ? 0 : static_cast<int32>(found - slots) + 1;
}

void QBMainWindow::OpenAddWindow(int32 folder, int32 slot) {
    if (fAddWindowOpen)
        return;
    const BRect frame = Frame();
    auto* window = new QBBookmarkWindow(BRect(frame.right, frame.bottom - kAddWindowAbove, 0, 0),
                                        folder, slot, {*fMonitor, *fLocker, fMsgWindow});
    window->Show();
    fAddWindowOpen = true;
}

void QBMainWindow::CloseAddWindow() {
    QBBookmarkWindow::CloseNow();
}

void QBMainWindow::HandleKeyDown(BMessage* message) {
    if (fKeyDown)
        return;
    fKeyDown = true;
    int32 key = 0;
    if (message->FindInt32("key", &key) != B_OK)
        return;
    const int digit = std::max(DigitOf(kMainRow, key), DigitOfKeypad(key));
    if (digit >= 0)
        fButtons[digit]->Invoke();
    else if (IsAddBookmarkKey(key))
        OpenAddWindow(0, 0);
    else if (key == kSettingsKey)
        fBar->Invoke();
}

void QBMainWindow::HandleUnmappedKeyDown(BMessage* message) {
    int32 key = 0;
    if (message->FindInt32("key", &key) == B_OK && DigitOfKeypad(key) == 5)
        fButtons[5]->Invoke();
}

bool QBMainWindow::ExistOpera() const {
    return HasBrowser(kQBOpera);
}

bool QBMainWindow::ExistNetPos() const {
    return HasBrowser(kQBNetPositive);
}

void QBMainWindow::Launch(int folder, int slot) {
    fLocker->Lock();
    const BString url = fMonitor->fPaths[folder - 1]->Items()[slot - 1]->Url();
    fLocker->Unlock();
    // The slot may have been emptied under its open menu.
    if (url.IsEmpty())
        return;

    const QBBrowser chosen = gSettings->GetBrowser();
    const status_t status = OpenInBrowser(chosen, url.String(), BMessenger(this));
    // An address that could be read as an option is passed over in silence.
    if (status != B_OK && status != B_BAD_VALUE)
        WarnOfLaunch(BrowserName(chosen), LaunchReason(status));
}
