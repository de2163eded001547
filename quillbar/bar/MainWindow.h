#pragma once

#include <memory>

#include "kits/interface/window/Window.h"
#include "quillbar/base/Commands.h"
#include "quillbar/base/SharedMessenger.h"

class BLocker;
class BMenuItem;
class BMessageRunner;
class BPopUpMenu;
class BView;
class BubbleHelper;
class QBBar;
class QBButton;
class QBMonitor;

// The bar: a drag strip and ten folder buttons in a row or a column. It owns the store and carries
// out the program's commands. The store, its menus and the settings are used on its thread.
class QBMainWindow : public BWindow {
public:
    // Only the left-top corner of `frame` is used. Builds the store and the views, and warns when
    // no browser is installed; the caller shows the window. The settings menu is built when the
    // window has been painted, before any other message is handled; then the hot key begins to
    // work.
    explicit QBMainWindow(BRect frame);

    // Keeps the window's place in the settings, and frees the store.
    ~QBMainWindow() override;

    void MessageReceived(BMessage* message) override;
    void WorkspacesChanged(uint32 oldWorkspaces, uint32 newWorkspaces) override;
    void WindowActivated(bool active) override;

    void InitWindow();

    // Lays the bar out again, with its left-top corner where it is. Does nothing if it is laid out
    // so.
    void HandleAlignChange(QBAlign align);

    // Opens the URL of a slot in the chosen browser; an alert reports a browser that cannot be
    // started or ends at once with an error. Both numbers count from one.
    void Launch(int folder, int slot);

    bool ExistOpera() const;
    bool ExistNetPos() const;

    BPopUpMenu* SettingsMenu() const { return fSettingsMenu; }

    // To the bar window.
    static SharedMessenger fMsgWindow;
    // The store, and its lock: every use of the store holds it. The lock is recursive.
    static QBMonitor* fMonitor;
    static BLocker* fLocker;

private:
    void AddViews();
    void SetFolderHelp();
    void BuildSettingsMenu();
    void AddBrowserItem(const char* label, uint32 command, bool isInstalled, bool isChosen);
    void WarnWithoutBrowser();
    void PrepareMenus();
    void LayOutMenus();
    void PrepareFolderMenu(uint32 code);

    bool HandleFolderCode(BMessage* message);
    void ShowFolderMenu(int digit);
    void ShowSettingsMenu();
    void ChooseAlign(QBAlign align);
    void ChooseBrowser(QBBrowser browser, BMessage* message);
    void ChooseShowURL(bool show);
    void ToggleHotKey(uint32 command);
    void ToggleOnTop();
    void WarnUnlessSavable();
    void HandleLaunch(BMessage* message);
    void HandleNodeMonitor(BMessage* message);
    void HandlePaste(BMessage* message);
    void HandleDroppedLink(BMessage* message);
    void TakeLink(BMessage* message);
    int32 FirstEmptySlot(int32 folder) const;
    void OpenAddWindow(int32 folder, int32 slot);
    void CloseAddWindow();
    void HandleKeyDown(BMessage* message);
    void HandleUnmappedKeyDown(BMessage* message);

    bool fKeyDown = false;
    BView* fSpareRoom = nullptr;
    BView* fMainView = nullptr;
    QBButton* fButtons[10] = {};
    BPopUpMenu* fSettingsMenu = nullptr;
    BMenuItem* fBrowserItem = nullptr;
    BMenuItem* fShowURLYesItem = nullptr;
    BMenuItem* fShowURLNoItem = nullptr;
    BMenuItem* fAlignHItem = nullptr;
    BMenuItem* fAlignVItem = nullptr;
    BMenuItem* fOnTopItem = nullptr;
    BMenuItem* fHotKeyItems[6] = {};
    bool fAddWindowOpen = false;
    bool fWarnedOfSettings = false;
    QBBar* fBar = nullptr;
    BubbleHelper* fBubbles = nullptr;
    std::unique_ptr<BMessageRunner> fLayoutRunner;
};
