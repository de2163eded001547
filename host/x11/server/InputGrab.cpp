#include "host/x11/server/InputGrab.h"

#include <chrono>
#include <thread>

#include "host/x11/server/Connection.h"

namespace host {

namespace {

constexpr auto kRetryInterval = std::chrono::milliseconds(10);
constexpr uint16 kPointerEvents = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                  XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_ENTER_WINDOW |
                                  XCB_EVENT_MASK_LEAVE_WINDOW;

template <typename T>
bool IsGranted(const Reply<T>& reply) {
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

} // namespace

// A window has to be on the screen to be given the input, but a menu comes up only when it has it:
// so the root window gets it. The keyboard is first: a pointer grab that has to be given back would
// end the one that the server began with a press, and nobody would get that button's release.
InputGrab::Result InputGrab::Try(xcb_window_t window) {
    std::unique_lock lock(fLock);
    if (fOwner != window)
        return Result::Canceled;
    xcb_window_t root = fConnection.Root();
    auto keyboard = xcb_grab_keyboard(fConnection, false, root, XCB_CURRENT_TIME,
                                      XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    lock.unlock();
    Reply<xcb_grab_keyboard_reply_t> keyboardReply(
        xcb_grab_keyboard_reply(fConnection, keyboard, nullptr));
    lock.lock();
    if (fOwner != window)
        return Result::Canceled;
    if (!IsGranted(keyboardReply))
        return Result::Refused;
    auto pointer =
        xcb_grab_pointer(fConnection, false, root, kPointerEvents, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_ASYNC, XCB_WINDOW_NONE, XCB_CURSOR_NONE, XCB_CURRENT_TIME);
    lock.unlock();
    Reply<xcb_grab_pointer_reply_t> pointerReply(
        xcb_grab_pointer_reply(fConnection, pointer, nullptr));
    lock.lock();
    if (fOwner != window)
        return Result::Canceled;
    if (IsGranted(pointerReply))
        return Result::Granted;
    xcb_ungrab_keyboard(fConnection, XCB_CURRENT_TIME);
    fConnection.Flush();
    return Result::Refused;
}

status_t InputGrab::Take(xcb_window_t window, bigtime_t timeout) {
    {
        std::lock_guard lock(fLock);
        fOwner = window;
        fCount++;
    }
    bigtime_t deadline = Now() + timeout;
    Result result = Try(window);
    while (result == Result::Refused && !fConnection.IsLost() && Now() < deadline) {
        std::this_thread::sleep_for(kRetryInterval);
        result = Try(window);
    }
    if (result == Result::Granted)
        return B_OK;
    if (result == Result::Canceled || !GiveUp(window))
        return B_CANCELED;
    return fConnection.IsLost() ? B_ERROR : B_TIMED_OUT;
}

// Nothing is held: only the owner goes. False if another one is the owner already.
bool InputGrab::GiveUp(xcb_window_t window) {
    std::lock_guard lock(fLock);
    return fOwner.compare_exchange_strong(window, XCB_WINDOW_NONE);
}

void InputGrab::Release(xcb_window_t window) {
    std::lock_guard lock(fLock);
    if (!fOwner.compare_exchange_strong(window, XCB_WINDOW_NONE))
        return;
    xcb_ungrab_keyboard(fConnection, XCB_CURRENT_TIME);
    xcb_ungrab_pointer(fConnection, XCB_CURRENT_TIME);
    fConnection.Flush();
}

} // namespace host
