#pragma once

#include <list>
#include <mutex>

#include "kits/kernel/OS.h"

// A lock that its holder may take again; it is free when it was given back as often. Threads get it
// in the order in which they asked. Any thread. Nobody may hold it or wait for it when it is
// destroyed.
class BLocker {
public:
    // `name` is for the reader of the code.
    explicit BLocker(const char* name = nullptr);
    ~BLocker();

    BLocker(const BLocker&) = delete;
    BLocker& operator=(const BLocker&) = delete;

    // Waits for the lock. False if the thread was asked to stop while it waited.
    bool Lock();
    // B_TIMED_OUT if it was not free within `timeout` microseconds (0 does not wait), B_INTERRUPTED
    // if the thread was asked to stop while it waited.
    status_t LockWithTimeout(bigtime_t timeout);
    // By the holder only; does nothing for others.
    void Unlock();

    // The thread that holds it, or B_ERROR.
    thread_id LockingThread() const;
    // Whether the calling thread holds it.
    bool IsLocked() const;
    // How often the holder has taken it.
    int32 CountLocks() const;

private:
    struct Waiter;

    status_t WaitInLine(std::unique_lock<std::mutex>& lock, thread_id self, bigtime_t timeout);

    mutable std::mutex fMutex;
    // Guarded by fMutex.
    thread_id fHolder = B_ERROR;
    int32 fCount = 0;
    std::list<Waiter*> fWaiters;
};
