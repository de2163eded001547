#pragma once

#include <memory>

#include <xcb/xcb.h>

#include "host/loop/ServiceLoop.h"

namespace host {

class Connection;
class DisplaySink;
class XDisplay;

// Notices that a person has turned away from the program to another one's windows. That ends what
// has the session's input grabbed: under Wayland no press in another program's window ends it,
// since an X server does not see those. The display thread.
class GrabWatch {
public:
    GrabWatch(XDisplay& display, DisplaySink* sink);

    // The window manager names another active window.
    void HandleActiveWindow();
    // A window of the program lost the focus while the program has the input.
    void HandleFocusLoss();
    // The pointer went to the bare root window, or left it for a window of any program.
    void HandleRootCrossing(const xcb_enter_notify_event_t& event, bool entered);

private:
    void CheckFocus(uint32 grab) const;

    XDisplay& fDisplay;
    const Connection& fConnection;
    DisplaySink* const fSink;
    xcb_window_t fLastActive = XCB_WINDOW_NONE; // the window manager's
    std::unique_ptr<Timer> fFocusCheck;
    std::unique_ptr<Timer> fAway;
};

} // namespace host
