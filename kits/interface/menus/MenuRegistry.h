#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>

class MenuTracker;

// Which menu is open; there is one at most. Any thread.
class MenuRegistry {
public:
    static MenuRegistry& Shared();

    // Makes it the open one. False if another is, or if none may open.
    bool Add(std::shared_ptr<MenuTracker> tracker);
    void Remove();

    void CancelOpen();
    void Allow(bool allow);
    void WaitUntilNoneIsOpen();

private:
    MenuRegistry() = default;

    std::mutex fMutex;
    // Guarded by fMutex.
    std::condition_variable fRemoved;
    bool fAllowed = true;
    std::shared_ptr<MenuTracker> fOpen;
};
