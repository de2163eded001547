#include "host/x11/windows/FocusWatch.h"

#include "host/x11/Display.h"

namespace host {

namespace {

// While the focus moves from one window to the next, window managers park it with windows of their
// own for a moment.
constexpr bigtime_t kSettlingTime = 150'000;

} // namespace

FocusWatch::FocusWatch(const Connection& connection, const WindowRegistry& windows,
                       const InputGrab& grab, DisplaySink* sink)
    : fConnection(connection)
    , fWindows(windows)
    , fGrab(grab)
    , fSink(sink) {}

void FocusWatch::HandleActiveWindow() {
    auto active = fConnection.ReadValues(fConnection.AskForValues(
        fConnection.Root(), fConnection[kNetActiveWindow], XCB_ATOM_WINDOW));
    // None, or back to the one that had it before: the focus is on its way, perhaps to a window of
    // ours that was just clicked.
    if (active.empty() || active[0] == XCB_WINDOW_NONE || active[0] == fLastActive)
        return;
    fLastActive = active[0];
    if (!fWindows.Contains(fLastActive))
        fSink->FocusLeftProgram();
}

void FocusWatch::HandleLossInGrab() {
    fCheck = std::make_unique<Timer>(kSettlingTime, 0,
                                     [this, grab = fGrab.Count()] { CheckFocus(grab); });
}

void FocusWatch::CheckFocus(uint32 grab) const {
    const auto focus = fConnection.Ask<xcb_get_input_focus, xcb_get_input_focus_reply>();
    // A later menu opened with the focus where it is now.
    if (!focus || !fGrab.IsHeld() || fGrab.Count() != grab)
        return;
    bool isWindow = focus->focus != XCB_INPUT_FOCUS_NONE &&
                    focus->focus != XCB_INPUT_FOCUS_POINTER_ROOT &&
                    focus->focus != fConnection.Root();
    if (isWindow && !fWindows.Contains(focus->focus))
        fSink->FocusLeftProgram();
}

} // namespace host
