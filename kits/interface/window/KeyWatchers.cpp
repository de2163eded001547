#include "kits/interface/window/KeyWatchers.h"

#include <algorithm>

#include "kits/interface/window/KeyMessages.h"

namespace {

void Watch(bool watch) {
    if (host::Display* display = host::Display::Shared())
        display->WatchSessionKeys(watch);
}

} // namespace

// Never deleted: the display thread may call until the process ends.
KeyWatchers& KeyWatchers::Shared() {
    static auto* watchers = new KeyWatchers;
    return *watchers;
}

void KeyWatchers::Add(const BMessenger& view) {
    std::lock_guard lock(fMutex);
    if (std::find(fViews.begin(), fViews.end(), view) != fViews.end())
        return;
    fViews.push_back(view);
    Watch(true);
}

void KeyWatchers::Remove(const BMessenger& view) {
    std::lock_guard lock(fMutex);
    if (std::erase(fViews, view) != 0 && fViews.empty())
        Watch(false);
}

void KeyWatchers::Tell(const host::SessionKey& key) {
    std::lock_guard lock(fMutex);
    if (fViews.empty())
        return;
    for (const BMessage& message : KeyMessages(key)) {
        for (const BMessenger& view : fViews)
            view.SendMessage(&message);
    }
}
