#pragma once

#include <mutex>
#include <vector>

#include "host/x11/Display.h"
#include "kits/app/Messenger.h"
#include "kits/kernel/OS.h"

// The views that get the keys of the whole session by their event masks. The display is asked for
// keys while there is one. Any thread.
class KeyWatchers {
public:
    static KeyWatchers& Shared();

    // Adding one that is there, and removing one that is not, does nothing. Add is called by the
    // view's own thread.
    void Add(const BMessenger& view);
    void Remove(const BMessenger& view);

    // The calling thread waits in an alert and handles nothing: keys that are typed meanwhile must
    // neither pile up for its views nor come to them late.
    void SetWaiting(bool isWaiting);

    void Notify(const host::SessionKey& key);

private:
    struct Watcher {
        BMessenger view;
        thread_id thread;
        bool isWaiting = false;
    };

    KeyWatchers() = default;

    std::mutex fMutex;
    std::vector<Watcher> fWatchers; // guarded by fMutex
};
