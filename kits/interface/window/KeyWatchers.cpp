#include "kits/interface/window/KeyWatchers.h"

#include <algorithm>

#include "kits/interface/window/EventTranslator.h"

// Never deleted: the display thread may call until the process ends.
KeyWatchers& KeyWatchers::Shared() {
    static auto* watchers = new KeyWatchers;
    return *watchers;
}

void KeyWatchers::Add(const BMessenger& view) {
    std::lock_guard lock(fMutex);
    if (std::ranges::find(fWatchers, view, &Watcher::view) != fWatchers.end())
        return;
    fWatchers.push_back({view, find_thread(nullptr)});
    host::Display::Shared()->WatchSessionKeys(true);
}

void KeyWatchers::Remove(const BMessenger& view) {
    std::lock_guard lock(fMutex);
    bool isRemoved =
        std::erase_if(fWatchers, [&](const Watcher& one) { return one.view == view; }) != 0;
    if (isRemoved && fWatchers.empty())
        host::Display::Shared()->WatchSessionKeys(false);
}

void KeyWatchers::SetWaiting(bool isWaiting) {
    std::lock_guard lock(fMutex);
    for (Watcher& one : fWatchers) {
        if (one.thread == find_thread(nullptr))
            one.isWaiting = isWaiting;
    }
}

void KeyWatchers::Notify(const host::SessionKey& key) {
    std::lock_guard lock(fMutex);
    if (fWatchers.empty())
        return;
    for (const BMessage& message : KeyMessages(key)) {
        for (const Watcher& one : fWatchers) {
            if (!one.isWaiting)
                one.view.SendMessage(&message);
        }
    }
}
