#pragma once

#include <memory>

#include "host/loop/ServiceLoop.h"
#include "host/x11/server/Connection.h"
#include "host/x11/server/InputGrab.h"
#include "host/x11/server/WindowRegistry.h"

namespace host {

class DisplaySink;

// Notices that the focus went to a window of another program, even while the input is grabbed. The
// display thread only.
class FocusWatch {
public:
    FocusWatch(const Connection& connection, const WindowRegistry& windows, const InputGrab& grab,
               DisplaySink* sink);

    // The window manager's active window has changed.
    void HandleActiveWindow();
    // A window of the program lost the focus while the program has the input grabbed.
    void HandleLossInGrab();

private:
    void CheckFocus(uint32 grab) const;

    const Connection& fConnection;
    const WindowRegistry& fWindows;
    const InputGrab& fGrab;
    DisplaySink* const fSink;
    xcb_window_t fLastActive = XCB_WINDOW_NONE;
    std::unique_ptr<Timer> fCheck;
};

} // namespace host
