#include "kits/interface/menus/MenuWindow.h"

#include <algorithm>
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
    WindowRoster::Shared().SetMenuCleaner(DeleteKept);
    Run();
}

// Fonts make a glyph when it is first drawn, and the window's picture and the memory behind it are
// made then: together twice as much as the drawing itself.
void BMenuWindow::Prepare(BMenu& menu) {
    BMenuWindow* window = Take(&menu);
    {
        const MenuLock lock(*window);
        const BRect frame(0, 0, menu.ContentWidth() - 1, menu.ContentHeight() - 1);
        window->Insert(menu, frame.OffsetToCopy(window->Frame().LeftTop()));
        window->Remove();
    }
    GiveBack(window);
}

BMenuWindow* BMenuWindow::Take(const BMenu* menu) {
    KeptWindows& kept = Kept();
    std::lock_guard lock(kept.mutex);
    if (kept.windows.empty())
        return new BMenuWindow;
    auto found = std::ranges::find(kept.windows, menu, &BMenuWindow::fDrawn);
    if (found == kept.windows.end())
        --found;
    BMenuWindow* window = *found;
    kept.windows.erase(found);
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
    menu.fTracker = &tracker;
    Insert(menu, frame);
    Show();
}

void BMenuWindow::Close() {
    if (!fMenu)
        return;
    if (!IsHidden())
        Hide();
    fMenu->fTracker = nullptr;
    fMenu->Select(nullptr);
    fMenu->ScrollTo(0);
    Remove();
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

void BMenuWindow::Insert(BMenu& menu, BRect frame) {
    const bool isDrawn =
        fDrawn == &menu && menu.fDrawnIn == this && Bounds() == frame.OffsetToCopy(B_ORIGIN);
    fMenu = &menu;
    fDrawn = &menu;
    menu.fDrawnIn = this;
    SetMenuFrame(frame);
    AddChild(&menu);
    if (isDrawn)
        Validate();
    else
        menu.Invalidate();
}

// The picture becomes what the menu's next opening begins with.
void BMenuWindow::Remove() {
    UpdateHidden();
    RemoveChild(fMenu);
    fMenu = nullptr;
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
