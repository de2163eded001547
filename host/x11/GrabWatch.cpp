#include "host/x11/GrabWatch.h"

#include "host/x11/XDisplay.h"

namespace host {

namespace {

// While the focus moves from one window to the next, window managers park it with windows of their
// own for a moment.
constexpr bigtime_t kFocusSettlingTime = 150'000;

// As long a pointer may stray from the program before that counts as leaving it.
constexpr bigtime_t kStrayTime = 1'000'000;

} // namespace

GrabWatch::GrabWatch(XDisplay& display, DisplaySink* sink)
    : fDisplay(display)
    , fConnection(display.Server())
    , fSink(sink) {}

void GrabWatch::HandleActiveWindow() {
    auto active = fConnection.ReadValues(fConnection.AskForValues(
        fConnection.Root(), fConnection[kNetActiveWindow], XCB_ATOM_WINDOW));
    // None, or back to the one that had it before: the focus is on its way, perhaps to a window of
    // ours that was just clicked.
    if (active.empty() || active[0] == XCB_WINDOW_NONE || active[0] == fLastActive)
        return;
    fLastActive = active[0];
    if (!fDisplay.Windows().Contains(fLastActive))
        fSink->FocusLeftProgram();
}

// The window manager reports no active window while the program has the input grabbed.
void GrabWatch::HandleFocusLoss() {
    fFocusCheck = std::make_unique<Timer>(
        kFocusSettlingTime, 0, [this, grab = fDisplay.Grab().Count()] { CheckFocus(grab); });
}

// Under Wayland no window has the focus while a program of Wayland has the keyboard.
void GrabWatch::CheckFocus(uint32 grab) const {
    const auto focus = fConnection.Ask<xcb_get_input_focus, xcb_get_input_focus_reply>();
    // A later menu opened with the focus where it is now.
    if (!focus || !fDisplay.Grab().IsHeld() || fDisplay.Grab().Count() != grab)
        return;
    if (!fDisplay.Windows().Contains(focus->focus))
        fSink->FocusLeftProgram();
}

// Under Wayland the server says that the pointer is over the root while it is over the desktop or
// windows that are no X windows, and hears nothing of it until it comes back.
void GrabWatch::HandleRootCrossing(const xcb_enter_notify_event_t& event, bool entered) {
    if (event.mode != XCB_NOTIFY_MODE_NORMAL || !fConnection.IsXWayland())
        return;
    fAway = nullptr;
    if (!entered || !fDisplay.Grab().IsHeld())
        return;
    fAway = std::make_unique<Timer>(kStrayTime, 0, [this, grab = fDisplay.Grab().Count()] {
        if (fDisplay.Grab().IsHeld() && fDisplay.Grab().Count() == grab)
            fSink->FocusLeftProgram();
    });
}

} // namespace host
