#include "kits/interface/window/WindowRoster.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <string>

#include "host/draw/Image.h"
#include "host/x11/Display.h"
#include "kits/app/AppDefs.h"
#include "kits/app/AppResources.h"
#include "kits/app/Application.h"
#include "kits/app/SessionHooks.h"
#include "kits/interface/window/KeyWatchers.h"
#include "kits/interface/window/Window.h"
#include "kits/interface/window/WindowState.h"

namespace {

// The window behind `messenger`, locked; or null.
BWindow* LockWindow(const BMessenger& messenger) {
    if (!messenger.LockTarget())
        return nullptr;
    BLooper* looper = nullptr;
    messenger.Target(&looper);
    return static_cast<BWindow*>(looper);
}

constexpr bigtime_t kClipboardPatience = 1'000'000;
constexpr std::chrono::seconds kLongestClosing(1); // of alerts and menus

// "Name" of the signature "application/x-Vendor.Name".
std::string ProgramName() {
    const char* resource = get_app_resources()->signature;
    std::string signature = be_app ? be_app->Signature() : resource ? resource : "";
    return signature.substr(signature.find_last_of("./") + 1);
}

std::string LowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
    return text;
}

void SetIcons(host::Display& display) {
    std::vector<host::Image> icons;
    for (const app_icon& icon : {get_app_resources()->large_icon, get_app_resources()->mini_icon}) {
        if (icon.pixels != nullptr && icon.size > 0)
            icons.push_back(
                {reinterpret_cast<const uint8*>(icon.pixels), icon.size, icon.size, icon.size * 4});
    }
    display.SetIcons(icons);
}

} // namespace

// Never deleted: the display thread may call until the process ends.
WindowRoster& WindowRoster::Shared() {
    static WindowRoster* roster = new WindowRoster;
    return *roster;
}

void WindowRoster::Add(BWindow* window) {
    std::lock_guard lock(fMutex);
    fWindows.push_back(window);
    if (window == MainWindow())
        fMainFrame = window->fState->device;
}

void WindowRoster::Remove(BWindow* window) {
    std::lock_guard lock(fMutex);
    if (window == MainWindow())
        fMainFrame = {};
    std::erase(fWindows, window);
}

BWindow* WindowRoster::MainWindow() const {
    for (BWindow* window : fWindows) {
        const auto& state = *window->fState;
        if (!state.IsMenu() && !state.IsAlert() && !state.IsBubble())
            return window;
    }
    return nullptr;
}

bool WindowRoster::AddAlert(BWindow* alert) {
    std::lock_guard lock(fMutex);
    if (fIsDismissed)
        return false;
    fAlerts.push_back(alert);
    fHasAlert = true;
    CancelOpenMenu();
    return true;
}

void WindowRoster::RemoveAlert(BWindow* alert) {
    std::lock_guard lock(fMutex);
    std::erase(fAlerts, alert);
    fHasAlert = !fAlerts.empty();
    fClosed.notify_all();
}

bool WindowRoster::AddMenu(std::function<void()> cancel) {
    std::unique_lock lock(fMutex);
    if (fIsMenuCancelled) // it is about to be gone
        fClosed.wait_for(lock, kLongestClosing, [this] { return !fCancelMenu; });
    if (fCancelMenu || !fAlerts.empty() || fIsDismissed)
        return false;
    fIsMenuCancelled = false;
    fCancelMenu = std::move(cancel);
    return true;
}

void WindowRoster::RemoveMenu() {
    std::function<void()> released; // what it holds is let go unlocked
    std::lock_guard lock(fMutex);
    released.swap(fCancelMenu);
    fClosed.notify_all();
}

void WindowRoster::CancelMenu() {
    std::lock_guard lock(fMutex);
    CancelOpenMenu();
}

void WindowRoster::CancelOpenMenu() {
    if (!fCancelMenu)
        return;
    fIsMenuCancelled = true;
    fCancelMenu();
}

void WindowRoster::SetMenuCleaner(void (*deleteWindows)()) {
    std::lock_guard lock(fMutex);
    fDeleteMenuWindows = deleteWindows;
}

void WindowRoster::PointerTaken() {
    for (const BMessenger& window : Running())
        window.SendMessage(kPressTaken);
}

void WindowRoster::PointAtAlert() {
    host::Display::Shared()->Beep();
    std::lock_guard lock(fMutex);
    if (!fAlerts.empty())
        fAlerts.back()->fState->host->Activate();
}

void WindowRoster::Dismiss() {
    std::lock_guard lock(fMutex);
    fIsDismissed = true;
    CancelOpenMenu();
    for (BWindow* alert : fAlerts)
        alert->PostMessage(B_QUIT_REQUESTED);
}

void WindowRoster::Allow() {
    std::lock_guard lock(fMutex);
    fIsDismissed = false;
}

// Windows whose threads run; a window that was never shown belongs to its builder.
std::vector<BMessenger> WindowRoster::Running() const {
    std::lock_guard lock(fMutex);
    std::vector<BMessenger> running;
    for (BWindow* window : fWindows) {
        if (!window->fState->IsMenu() && !window->fState->IsAlert() && window->Thread() >= 0)
            running.emplace_back(window);
    }
    return running;
}

bool WindowRoster::QuitWindows() {
    std::vector<BMessenger> windows = Running();
    for (const BMessenger& messenger : windows) {
        BWindow* window = LockWindow(messenger);
        if (window == nullptr)
            continue;
        bool agrees = window->QuitRequested();
        window->Unlock();
        if (!agrees)
            return false;
    }
    for (const BMessenger& messenger : windows) {
        if (BWindow* window = LockWindow(messenger))
            window->Quit();
    }
    CancelMenu();
    std::unique_lock lock(fMutex);
    fClosed.wait(lock, [this] { return !fCancelMenu; });
    const auto deleteMenuWindows = fDeleteMenuWindows;
    lock.unlock();
    if (deleteMenuWindows != nullptr)
        deleteMenuWindows();
    lock.lock();
    // Alerts were dismissed and are about to be gone.
    fClosed.wait_for(lock, kLongestClosing, [this] { return fAlerts.empty(); });
    lock.unlock();
    // After the last window nothing is copied any more.
    host::Display::Shared()->SaveClipboard(kClipboardPatience);
    return true;
}

bool WindowRoster::Wake(const std::string& startupId) {
    std::lock_guard lock(fMutex);
    CancelOpenMenu();
    BWindow* window = fAlerts.empty() ? MainWindow() : fAlerts.back();
    if (window != nullptr)
        window->fState->host->BringUp(startupId);
    return fAlerts.empty();
}

BMessenger WindowRoster::WindowAt(int32 index) const {
    std::lock_guard lock(fMutex);
    const auto at = static_cast<size_t>(index);
    return at < fWindows.size() ? BMessenger(fWindows[at]) : BMessenger();
}

host::PixelRect WindowRoster::MainFrame() const {
    std::lock_guard lock(fMutex);
    return fMainFrame;
}

void WindowRoster::FrameChanged(const BWindow* window, const host::PixelRect& frame) {
    std::lock_guard lock(fMutex);
    if (window == MainWindow())
        fMainFrame = frame;
}

void WindowRoster::FocusLeftProgram() {
    CancelMenu();
}

void WindowRoster::MonitorsChanged() {
    CancelMenu();
    for (const BMessenger& window : Running())
        window.SendMessage(kBringInside);
}

void WindowRoster::SettingsChanged() {
    CancelMenu();
    std::lock_guard lock(fMutex);
    for (BWindow* window : fWindows)
        window->PostMessage(kSettingsChanged);
}

void WindowRoster::SetActiveAlert(const EventTranslator* alert, bool active) {
    if (active)
        fActiveAlert = alert;
    else
        fActiveAlert.compare_exchange_strong(alert, nullptr);
}

// A key that an alert gets is an answer to the alert, and nothing else.
void WindowRoster::SessionKeyChanged(const host::SessionKey& key) {
    if (fActiveAlert == nullptr)
        KeyWatchers::Shared().Notify(key);
}

void WindowRoster::DisplayLost() {
    BApplication::QuitFromOutside(true);
}

status_t connect_display() {
    WindowRoster& roster = WindowRoster::Shared();
    std::string name = ProgramName();
    status_t status = host::Display::Open(&roster, LowerCase(name).c_str(), name.c_str());
    if (status != B_OK)
        return status;
    SetIcons(*host::Display::Shared());
    set_session_hooks({.dismiss = [&roster] { roster.Dismiss(); },
                       .allow = [&roster] { roster.Allow(); },
                       .quit_windows = [&roster] { return roster.QuitWindows(); },
                       .wake = [&roster](const std::string& id) { return roster.Wake(id); },
                       .window_at = [&roster](int32 index) { return roster.WindowAt(index); }});
    return B_OK;
}
