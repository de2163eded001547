#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <unordered_map>

#include <xcb/xcb.h>

namespace host {

class XWindow;

// The program's windows by the server's numbers, and which of them an event is being delivered to.
class WindowRegistry {
public:
    void Add(xcb_window_t id, XWindow* window);
    // When this has returned, no Deliver uses the window, unless it is called from within one.
    void Remove(xcb_window_t id);

    bool Contains(xcb_window_t id) const;

    // Calls `deliver` if the program has such a window. It may remove the window and must not use
    // it after that. One thread only, the display thread.
    void Deliver(xcb_window_t id, const std::function<void(XWindow&)>& deliver);

private:
    mutable std::mutex fLock;
    std::condition_variable fDelivered;
    std::unordered_map<xcb_window_t, XWindow*> fWindows;
    xcb_window_t fBusy = XCB_WINDOW_NONE;
    std::thread::id fDeliverer;
};

} // namespace host
