#pragma once

#include "kits/interface/window/Window.h"
#include "quillbar/addbookmark/SaveBookmark.h"
#include "quillbar/base/SharedMessenger.h"

class BLocker;
class BMenu;
class BMenuBar;
class BMenuItem;
class QBAddBookmarkView;
class QBMonitor;

// What the Add Bookmark window uses of the bar, which outlives it.
struct QBBarAccess {
    QBMonitor& store;
    BLocker& lock; // of the store
    const SharedMessenger& bar;
};

// The Add Bookmark window: a bookmark's texts, and the folder and the slot that it is to fill. It
// reads the store with the store locked and changes nothing but files; the store follows them. It
// closes itself when the bookmark was added; when it could not be, it says why and stays as it is.
// There is one at most.
//
// A link that was dropped on the bar fills in name and URL, which then stay whatever slot is
// chosen; a note says when that slot, or the whole folder, is full. Typed texts are not lost to a
// link: the window asks.
class QBBookmarkWindow : public BWindow {
public:
    // Only the left-top corner of `frame` is used, and the window is then placed in the middle of
    // the screen. Folder and slot count from one; 0 if none is chosen yet. The caller shows it.
    QBBookmarkWindow(BRect frame, long folder, long slot, const QBBarAccess& bar);

    // Tells the bar window that another one may be opened.
    ~QBBookmarkWindow() override;

    void MessageReceived(BMessage* message) override;

    // Builds the contents; by the constructor.
    void InitWindow();

    // Fills in the folder's name and, if a slot is chosen, its texts. A folder must be chosen.
    void UpdateScreen();

    // Labels the slots with what is in the chosen folder, and marks the chosen one.
    void UpdateSlotStrings();

    // To the window, while there is one.
    static SharedMessenger fMsgWindow;

    // Closes the window, if there is one, and returns when it uses the store no more. Any thread
    // but the window's; the caller must not hold the store.
    static void CloseNow();

private:
    void AddMenu();
    BMenuItem* FolderItem(int32 digit) const;
    BMenuItem* SlotItem(int32 digit) const;
    void UpdateFolderStrings();
    void UpdateAll();

    bool HandleCode(BMessage* message);
    void HandleFolderCode(int32 digit, BMessage* message);
    void Choose(int32 folder, int32 slot);
    void TakeLink(const BMessage& message);
    QBBookmarkText Texts() const;
    void FillIn(const char* name, const char* url, const char* keywords);
    bool MayLoseTexts() const;
    void UpdateNote();
    void BrowseFolder(int32 digit);
    void StoreChanged();
    void ShowInTracker();
    void AddBookmark();

    QBBarAccess fBar;
    BMenuBar* fMenuBar = nullptr;
    BMenu* fFileMenu = nullptr;
    QBAddBookmarkView* fAddView = nullptr;
    int32 fFolder;
    int32 fSlot;
    // The texts could not be saved: no change on disk takes them away.
    bool fKeepsTexts = false;
    // They are a dropped link's: neither does another slot.
    bool fHoldsLink = false;
    // As the window itself filled them in.
    QBBookmarkText fFilledIn{};
};
