#include "host/x11/server/InputGrab.h"

#include <chrono>
#include <thread>

#include "host/x11/server/Clock.h"

namespace host {

namespace {

constexpr auto kRetryInterval = std::chrono::milliseconds(10);
constexpr uint16 kPointerEvents =
    XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION;

template <typename T>
bool IsGranted(const Reply<T>& reply) {
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

} // namespace

// A window has to be on the screen to be given the input, but a menu comes up only when it has it:
// so the root window gets it.
bool InputGrab::Try() const {
    xcb_window_t root = fConnection.Root();
    auto pointer =
        xcb_grab_pointer(fConnection, false, root, kPointerEvents, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_ASYNC, XCB_WINDOW_NONE, XCB_CURSOR_NONE, XCB_CURRENT_TIME);
    auto keyboard = xcb_grab_keyboard(fConnection, false, root, XCB_CURRENT_TIME,
                                      XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    Reply<xcb_grab_pointer_reply_t> pointerReply(
        xcb_grab_pointer_reply(fConnection, pointer, nullptr));
    Reply<xcb_grab_keyboard_reply_t> keyboardReply(
        xcb_grab_keyboard_reply(fConnection, keyboard, nullptr));
    bool hasPointer = IsGranted(pointerReply);
    bool hasKeyboard = IsGranted(keyboardReply);
    if (hasPointer && !hasKeyboard)
        xcb_ungrab_pointer(fConnection, XCB_CURRENT_TIME);
    if (hasKeyboard && !hasPointer)
        xcb_ungrab_keyboard(fConnection, XCB_CURRENT_TIME);
    fConnection.Flush();
    return hasPointer && hasKeyboard;
}

status_t InputGrab::Take(xcb_window_t window, bigtime_t timeout) {
    fOwner = window;
    fCount++;
    bigtime_t deadline = Now() + timeout;
    while (!Try()) {
        if (fConnection.IsLost() || Now() >= deadline) {
            fOwner.compare_exchange_strong(window, XCB_WINDOW_NONE);
            return fConnection.IsLost() ? B_ERROR : B_TIMED_OUT;
        }
        std::this_thread::sleep_for(kRetryInterval);
    }
    return B_OK;
}

void InputGrab::Release(xcb_window_t window) {
    if (!fOwner.compare_exchange_strong(window, XCB_WINDOW_NONE))
        return;
    xcb_ungrab_keyboard(fConnection, XCB_CURRENT_TIME);
    xcb_ungrab_pointer(fConnection, XCB_CURRENT_TIME);
    fConnection.Flush();
}

} // namespace host
