#pragma once

#include <mutex>

#include "kits/app/Messenger.h"

// A messenger to a window that may come and go, for senders on other threads. Any thread.
class SharedMessenger {
public:
    void Set(const BMessenger& messenger) {
        const std::lock_guard lock(fMutex);
        fMessenger = messenger;
    }
    // When it has returned no Send() to the window is under way.
    void Clear() { Set(BMessenger()); }

    // Without a target while there is no window.
    BMessenger Get() const {
        const std::lock_guard lock(fMutex);
        return fMessenger;
    }
    // Do nothing while there is no window.
    void Send(uint32 what) const {
        const std::lock_guard lock(fMutex);
        fMessenger.SendMessage(what);
    }
    status_t Send(const BMessage& message) const {
        const std::lock_guard lock(fMutex);
        return fMessenger.SendMessage(&message);
    }

private:
    mutable std::mutex fMutex;
    BMessenger fMessenger; // guarded by fMutex
};
