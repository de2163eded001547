#pragma once

#include <atomic>
#include <mutex>

#include "host/x11/server/Connection.h"

namespace host {

// The program's hold on all pointer and keyboard input. At most one window has it. Any thread.
class InputGrab {
public:
    explicit InputGrab(const Connection& connection)
        : fConnection(connection) {}

    // As HostWindow::GrabInput and ReleaseInput. B_CANCELED if the input is released, or taken for
    // another window, while this one waits for it.
    status_t Take(xcb_window_t window, bigtime_t timeout);
    void Release(xcb_window_t window);

    bool IsHeld() const { return fOwner != XCB_WINDOW_NONE; }

    // How often it was taken so far.
    uint32 Count() const { return fCount; }

    // The window that an event is for: while input is held the server sends it to the root window.
    xcb_window_t TargetOf(xcb_window_t event) const {
        return event == fConnection.Root() ? fOwner.load() : event;
    }

private:
    enum class Result { Granted, Refused, Canceled };

    Result Try(xcb_window_t window);
    bool GiveUp(xcb_window_t window);

    const Connection& fConnection;
    // Held while the owner changes and the request for that is sent, so that the server gets the
    // requests in the order of the owners. Not held while an answer is waited for.
    std::mutex fLock;
    // Set before the server is asked: the events that the grab causes are known as its own.
    std::atomic<xcb_window_t> fOwner = XCB_WINDOW_NONE;
    std::atomic<uint32> fCount = 0;
};

} // namespace host
