#include "host/x11/server/WindowRegistry.h"

namespace host {

void WindowRegistry::Add(xcb_window_t id, XWindow* window) {
    std::lock_guard lock(fLock);
    fWindows[id] = window;
}

void WindowRegistry::Remove(xcb_window_t id) {
    std::unique_lock lock(fLock);
    fWindows.erase(id);
    if (fDeliverer != std::this_thread::get_id())
        fDelivered.wait(lock, [&] { return fBusy != id; });
}

bool WindowRegistry::Contains(xcb_window_t id) const {
    std::lock_guard lock(fLock);
    return fWindows.contains(id);
}

void WindowRegistry::Deliver(xcb_window_t id, const std::function<void(XWindow&)>& deliver) {
    std::unique_lock lock(fLock);
    auto found = fWindows.find(id);
    if (found == fWindows.end())
        return;
    XWindow* window = found->second;
    fBusy = id;
    fDeliverer = std::this_thread::get_id();
    lock.unlock();
    deliver(*window);
    lock.lock();
    fBusy = XCB_WINDOW_NONE;
    lock.unlock();
    fDelivered.notify_all();
}

} // namespace host
