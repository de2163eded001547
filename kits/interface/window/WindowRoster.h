#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <vector>

#include "host/x11/Display.h"
#include "kits/app/Messenger.h"

class BWindow;
class EventTranslator;

// All windows of the program, and what happens to all of them at once. It lives as long as the
// process. Any thread may call; nothing here waits for a looper but QuitWindows().
class WindowRoster : public host::DisplaySink {
public:
    static WindowRoster& Shared();

    // The program's main window is the first one that is not an alert, a menu or a bubble.
    void Add(BWindow* window);
    void Remove(BWindow* window);

    // An alert opens: menus close, and none opens until it is gone. False while all are dismissed.
    bool AddAlert(BWindow* alert);
    void RemoveAlert(BWindow* alert);
    bool HasAlert() const { return fHasAlert; }
    // A menu opens. `cancel` closes it as if the user had; it is called by any thread and must
    // return at once. False if another menu is open, an alert is, or all are dismissed. A menu that
    // was cancelled is waited for.
    bool AddMenu(std::function<void()> cancel);
    // It is closed: `cancel` is not called any more.
    void RemoveMenu();
    void CancelMenu();
    // `deleteWindows` is called when the program's windows have quit and no menu is open.
    void SetMenuCleaner(void (*deleteWindows)());
    // A menu's window has the pointer: presses in the others have ended.
    void PointerTaken();
    // Shows the user that it is an alert that waits for an answer.
    void PointAtAlert();

    // The hooks of the application object.
    void Dismiss();
    void Allow();
    bool QuitWindows();
    bool Wake(const std::string& startupId);
    BMessenger WindowAt(int32 index) const;

    // Where the main window is, for what belongs to it, in device pixels; empty without one.
    host::PixelRect MainFrame() const;
    void FrameChanged(const BWindow* window, const host::PixelRect& frame);

    // Of an alert's window, which has the focus or loses it.
    void SetActiveAlert(const EventTranslator* alert, bool active);

    // Display thread.
    void FocusLeftProgram() override;
    void MonitorsChanged() override;
    void SettingsChanged() override;
    void SessionKeyChanged(const host::SessionKey& key) override;
    void DisplayLost() override;

private:
    WindowRoster() = default;

    BWindow* MainWindow() const;
    void CancelOpenMenu();
    std::vector<BMessenger> Running() const;

    std::atomic<bool> fHasAlert = false;
    std::atomic<const EventTranslator*> fActiveAlert = nullptr;
    mutable std::mutex fMutex;
    // Guarded by fMutex.
    std::condition_variable fClosed; // an alert or a menu
    std::vector<BWindow*> fWindows;
    std::vector<BWindow*> fAlerts;
    std::function<void()> fCancelMenu; // of the open menu
    bool fIsMenuCancelled = false;
    void (*fDeleteMenuWindows)() = nullptr;
    host::PixelRect fMainFrame;
    bool fIsDismissed = false;
};
