#include "kits/interface/menus/MenuWindow.h"

#include <mutex>
#include <vector>

#include "kits/app/Message.h"
#include "kits/interface/menus/Menu.h"
#include "kits/interface/menus/MenuPlacement.h"
#include "kits/interface/menus/MenuTracker.h"
#include "kits/interface/window/Screen.h"
#include "kits/interface/window/WindowRoster.h"

namespace {

struct KeptWindows {
    std::mutex mutex;
    std::vector<BMenuWindow*> windows;
};

// Never deleted: a thread may open a menu until the process ends.
KeptWindows& Kept() {
    static auto* kept = new KeptWindows;
    return *kept;
}

} // namespace

BMenuWindow::BMenuWindow()
    : BWindow(BRect(0, 0, 199, 299), "menu", kMenuWindowLook, kMenuWindowFeel,
              B_NOT_RESIZABLE | B_NOT_CLOSABLE) {
    Unlock();
    WindowRoster::Shared().SetMenuCleaner(DeleteKept);
}

void BMenuWindow::Prepare() {
    KeptWindows& kept = Kept();
    std::lock_guard lock(kept.mutex);
    if (kept.windows.empty())
        kept.windows.push_back(new BMenuWindow);
}

BMenuWindow* BMenuWindow::Take() {
    KeptWindows& kept = Kept();
    std::lock_guard lock(kept.mutex);
    if (kept.windows.empty())
        return new BMenuWindow;
    BMenuWindow* window = kept.windows.back();
    kept.windows.pop_back();
    return window;
}

void BMenuWindow::GiveBack(BMenuWindow* window) {
    KeptWindows& kept = Kept();
    std::lock_guard lock(kept.mutex);
    kept.windows.push_back(window);
}

void BMenuWindow::DeleteKept() {
    KeptWindows& kept = Kept();
    std::vector<BMenuWindow*> windows;
    {
        std::lock_guard lock(kept.mutex);
        windows.swap(kept.windows);
    }
    for (BMenuWindow* window : windows) {
        if (window->Lock())
            window->Quit();
    }
}

void BMenuWindow::Open(BMenu& menu, BRect frame, MenuTracker& tracker) {
    fMenu = &menu;
    menu.fTracker = &tracker;
    menu.fSelected = nullptr;
    menu.fScroll = 0;
    SetMenuFrame(frame);
    AddChild(&menu);
    menu.Invalidate();
    // The first Show() gives back one lock, which must not be the caller's.
    if (!fHasRun)
        Lock();
    fHasRun = true;
    Show();
}

void BMenuWindow::Close() {
    if (!fMenu)
        return;
    if (!IsHidden())
        Hide();
    RemoveChild(fMenu);
    fMenu->fTracker = nullptr;
    fMenu->fSelected = nullptr;
    fMenu = nullptr;
}

void BMenuWindow::DispatchMessage(BMessage* message, BHandler* handler) {
    if (message->what == kMenuChanged) {
        FitMenu();
        return;
    }
    // It may let go of the window while it handles the message.
    const std::shared_ptr<MenuTracker> tracker = fTracker;
    if (!tracker || !tracker->HandleMessage(*message))
        BWindow::DispatchMessage(message, handler);
}

void BMenuWindow::SetMenuFrame(BRect frame) {
    MoveTo(frame.LeftTop());
    ResizeTo(frame.Width(), frame.Height());
    fMenu->MoveTo(0, 0);
    fMenu->ResizeTo(frame.Width(), frame.Height());
}

void BMenuWindow::FitMenu() {
    if (!fMenu)
        return;
    fMenu->Layout();
    const BPoint corner = Frame().LeftTop();
    SetMenuFrame(PlaceMenu(corner, fMenu->ContentWidth(), fMenu->ContentHeight(),
                           BScreen::MonitorFrame(corner)));
    fMenu->ScrollTo(fMenu->fScroll);
    fMenu->Invalidate();
}
