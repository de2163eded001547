#pragma once

#include <memory>

#include "kits/interface/window/Window.h"

class BMenu;
class MenuTracker;

// The window of an open menu. Windows are kept and used again, so that opening a menu makes neither
// a window nor a thread.
class BMenuWindow : public BWindow {
public:
    enum : uint32 {
        kMenuChanged = '_MNC',   // the layout of the menu in the window is out of date
        kMenuCancelled = '_MNX', // for the tracker
        kMenuTimer = '_MNT',     // for the tracker
    };

    // Draws the menu, which must be laid out and not open, in a window that stays hidden, so that
    // it opens sooner. Any thread.
    static void Prepare(BMenu& menu);

    // A window that is not shown and not locked, if possible the one that has the menu's picture;
    // it is the caller's until it is given back. Any thread.
    static BMenuWindow* Take(const BMenu* menu);
    static void GiveBack(BMenuWindow* window);

    // Deletes those that are kept. The caller must hold the lock of none.
    static void DeleteKept();

    // Shows the menu, which stays its owner's, at `frame` of the screen. Locked.
    void Open(BMenu& menu, BRect frame, MenuTracker& tracker);
    // Hides the window and removes the menu from it. Locked.
    void Close();

    // The tracker sees all input of this window first. Locked.
    void SetTracker(std::shared_ptr<MenuTracker> tracker) { fTracker = std::move(tracker); }

    using BWindow::GrabInput;
    using BWindow::ReleaseInput;

    void DispatchMessage(BMessage* message, BHandler* handler) override;
    bool QuitRequested() override { return false; }

private:
    BMenuWindow();

    void Insert(BMenu& menu, BRect frame);
    void Remove();
    void SetMenuFrame(BRect frame);
    void FitMenu();

    BMenu* fMenu = nullptr;
    // Whose picture the window has. It may be deleted: one that is not knows of the picture too.
    const BMenu* fDrawn = nullptr;
    std::shared_ptr<MenuTracker> fTracker;
};

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
