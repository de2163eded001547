#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "base/Rect.h"
#include "kits/app/MessageRunner.h"
#include "kits/app/Messenger.h"

class BMenu;
class BMenuItem;
class BMenuWindow;
class BMessage;

// A title that a menu hangs below; the place is the title's, on the screen.
struct MenuTitle {
    BMenu* menu;
    BRect frame;
};

// One menu that is open, with its sub-menus, from BPopUpMenu::Go() until it is closed; or one after
// the other of those of a menu bar.
//
// All input comes to the first menu's window, which has grabbed it, and is handled by that window's
// thread. It locks the windows of sub-menus one at a time, after its own; nothing else is locked,
// in particular no looper of the program.
class MenuTracker : public std::enable_shared_from_this<MenuTracker> {
public:
    // Opens the menu, with `selected` (may be null) selected; null if it cannot be opened. With
    // `invokes` the chosen item is invoked by the menu's thread, and with `deletes` an opened menu
    // is deleted by it once it is closed. Any thread.
    static std::shared_ptr<MenuTracker> Open(BMenu& menu, BPoint where, bool openAnyway,
                                             bool invokes, BMenuItem* selected = nullptr,
                                             bool deletes = false);
    // Opens the menu of `titles[first]`; those of the others follow as the pointer or the arrow
    // keys go there. The titles' menus stay what they are until it is closed. With `selectsItem`
    // the first item is selected.
    static std::shared_ptr<MenuTracker> OpenTitle(std::vector<MenuTitle> titles, size_t first,
                                                  bool selectsItem);

    // Waits until another title's menu than that of `shown` is open, and answers which; nothing
    // once the menus are closed.
    std::optional<size_t> WaitForTitle(size_t shown);

    // Waits until the menu is closed. The chosen item, or null.
    BMenuItem* Wait();

    // Closes the menu without a choice. Returns at once; nothing more can be chosen. Any thread.
    void Cancel();

    // The rest is for the thread of the first menu's window.

    // False if the message is not for the tracker.
    bool HandleMessage(const BMessage& message);

    // The keys of a menu that does not handle them itself.
    void KeyDown(BMenu& menu, const char* bytes, int32 numBytes);

private:
    struct Level {
        BMenuWindow* window;
        BMenu* menu;
    };

    // The purpose of the running timer.
    enum class Timer { OpenSubmenu, StopAiming, Scroll, StopSwallowing };

    MenuTracker(const BMenu& first, bool invokes);

    static bool Register(const std::shared_ptr<MenuTracker>& tracker);
    // Takes the input; false, and the end of the tracker, if the menu cannot be opened.
    bool Begin(bool openAnyway);
    void OpenMenu(BMenu& menu, BPoint where, BMenuItem* selected);

    // Titles.
    std::optional<size_t> TitleAt(BPoint where) const;
    void ShowTitle(size_t index, bool selects);
    bool FollowTitles(BPoint where);
    void StepTitle(int step);
    bool HandleInput(const BMessage& message);
    void UpdateSubmenus();

    // Pointer (MenuTrackerPointer.cpp).
    void StartAt(BPoint where, uint32 buttons);
    void PointerMoved(BPoint where);
    void ButtonPressed(BPoint where, uint32 buttons);
    void ButtonReleased(BPoint where, uint32 buttons);
    void ReleasedAt(BPoint where, uint32 released, bool wasOpening);
    void WheelTurned(float delta);
    void NotePlace(BPoint where);
    bool IsAiming(BPoint before, BPoint where);
    void Follow(BPoint where);
    void FollowInMenu(size_t level, BPoint where);
    void StartSwallowing();
    void ScrollAtArrow();
    std::optional<size_t> LevelAt(BPoint where) const;

    // Keys (MenuTrackerKeys.cpp).
    void KeyPressed(const BMessage& message);
    size_t KeyLevel() const;
    void SelectFrom(BMenu& menu, int32 index, int32 step);
    void SelectPage(BMenu& menu, int32 step);
    void SelectByLetter(size_t level, const char* bytes, int32 numBytes);

    void Choose(size_t level, BMenuItem& item);
    void OpenSubmenu(size_t level, BMenuItem& item, bool selectFirst);
    void CloseAbove(size_t level);
    void HideAll();
    void Finish(BMenuItem* chosen);

    void StartTimer(Timer timer, bigtime_t delay, bool repeats = false);
    void StopTimer();
    void TimerFired();

    const bool fInvokes;
    std::vector<MenuTitle> fTitles; // constant once the menu is open
    BMenuWindow* const fWindow;
    const BMessenger fMessenger; // to fWindow
    std::atomic<bool> fCancelled = false;

    // With fWindow locked. The first level is that of the menu that opened first.
    std::vector<Level> fLevels;
    std::unique_ptr<BMenu> fOwned; // that is deleted at the end
    bool fFinished = false;
    BPoint fOrigin; // where the pointer was when the menu opened
    BPoint fPointer;
    BPoint fAimFrom;          // where the pointer was last on the item whose sub-menu is open
    uint32 fButtons = 0;      // that are down
    bool fPressSeen = false;  // a button was pressed since the menu opened
    bool fDragged = false;    // the pointer was moved on purpose since it opened
    bool fEntered = false;    // it has been over a menu
    bool fSwallowing = false; // closed by a press whose release must reach nobody
    int32 fPressedKey = -1;   // the last key that went down since the menu opened
    std::unique_ptr<BMessageRunner> fRunner;
    Timer fTimer = Timer::OpenSubmenu;
    int32 fTimerSerial = 0;

    std::mutex fMutex;
    // Guarded by fMutex.
    std::condition_variable fClosed;
    bool fIsClosed = false;
    size_t fShownTitle = 0;
    BMenuItem* fChosen = nullptr;
};
