#pragma once

#include <mutex>
#include <vector>

#include "host/x11/Display.h"
#include "kits/app/Messenger.h"

// The views that get the keys of the whole session by their event masks. The display is asked for
// keys while there is one. Any thread.
class KeyWatchers {
public:
    static KeyWatchers& Shared();

    // Adding one that is there, and removing one that is not, does nothing.
    void Add(const BMessenger& view);
    void Remove(const BMessenger& view);

    void Tell(const host::SessionKey& key);

private:
    KeyWatchers() = default;

    std::mutex fMutex;
    std::vector<BMessenger> fViews; // guarded by fMutex
};
