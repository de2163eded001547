#pragma once

#include <functional>
#include <string>

#include "kits/app/Messenger.h"

// The application object's way to the windows. The interface kit sets these functions when it
// connects to the display; before that they do nothing.
struct session_hooks {
    // Closes open menus and alerts as if cancelled and lets none open until the process ends. Any
    // thread; must not wait for a looper.
    std::function<void()> dismiss = [] {};

    // Takes `dismiss` back, after a quit was refused. Any thread; must not wait for a looper.
    std::function<void()> allow = [] {};

    // Asks each window in turn whether it may quit, and quits them all unless one refuses; false
    // if one refuses. The application's thread.
    std::function<bool()> quit_windows = [] { return true; };

    // Brings the program's main window back: unminimised, active, with no menu open. `startupId`
    // names the click or key behind that to the desktop; it may be empty, or anything. False if an
    // alert waits for its answer: then that one is brought up. Service thread; must not wait for
    // a looper.
    std::function<bool(const std::string& startupId)> wake = [](const std::string&) {
        return true;
    };

    // The program's windows in the order of their construction; no target behind the last. Any
    // thread; must not wait for a looper.
    std::function<BMessenger(int32 index)> window_at = [](int32) { return BMessenger(); };
};

// Replaces the hooks. Any thread.
void set_session_hooks(session_hooks hooks);

// A copy of the hooks. Any thread.
session_hooks get_session_hooks();
