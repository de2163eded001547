#pragma once

#include <mutex>

#include "kits/app/Messenger.h"
#include "kits/interface/window/Window.h"

class BMenu;
class BMenuBar;
class BMenuItem;
class QBAddBookmarkView;

// The Add Bookmark window: a bookmark's texts, and the folder and the slot that it is to fill. It
// reads the store with the store locked and changes nothing but files; the store follows them. It
// closes itself when the bookmark was added. There is one at most.
class QBBookmarkWindow : public BWindow {
public:
    // Only the left-top corner of `frame` is used, and the window is then placed in the middle of
    // the screen. Folder and slot count from one; 0 if none is chosen yet. The caller shows it.
    QBBookmarkWindow(BRect frame, long folder, long slot);

    // Tells the bar window that another one may be opened.
    ~QBBookmarkWindow() override;

    void MessageReceived(BMessage* message) override;

    // Builds the contents; by the constructor.
    void InitWindow();

    // Fills in the folder's name and, if a slot is chosen, its texts. A folder must be chosen.
    void UpdateScreen();

    // Labels the slots with what is in the chosen folder, and marks the chosen one.
    void UpdateSlotStrings();

    // To the window; without a target while there is none. Any thread.
    static BMessenger Target();

    // Tells the window, if there is one, that the store has changed. Any thread.
    static void TellStoreChanged();

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
    void BrowseFolder(int32 digit);
    void StoreChanged();
    void ShowInTracker();
    void AddBookmark();

    BMenuBar* fMenuBar;
    BMenu* fFileMenu;
    QBAddBookmarkView* fAddView;
    int32 fFolder;
    int32 fSlot;

    // To the window while there is one, else null. Guarded by fMsgLock: the bar window sends while
    // this one may be closing.
    static BMessenger* fMsgWindow;
    static std::mutex fMsgLock;
};
