#include "kits/interface/menus/MenuRegistry.h"

#include "kits/interface/menus/MenuTracker.h"

// Never deleted: a thread may open or close menus until the process ends.
MenuRegistry& MenuRegistry::Shared() {
    static auto* registry = new MenuRegistry;
    return *registry;
}

bool MenuRegistry::Add(std::shared_ptr<MenuTracker> tracker) {
    std::lock_guard lock(fMutex);
    if (fOpen || !fAllowed)
        return false;
    fOpen = std::move(tracker);
    return true;
}

void MenuRegistry::Remove() {
    std::lock_guard lock(fMutex);
    fOpen = nullptr;
    fRemoved.notify_all();
}

void MenuRegistry::CancelOpen() {
    std::lock_guard lock(fMutex);
    if (fOpen)
        fOpen->Cancel();
}

void MenuRegistry::Allow(bool allow) {
    std::lock_guard lock(fMutex);
    fAllowed = allow;
}

void MenuRegistry::WaitUntilNoneIsOpen() {
    std::unique_lock lock(fMutex);
    fRemoved.wait(lock, [this] { return fOpen == nullptr; });
}
