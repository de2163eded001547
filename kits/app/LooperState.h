#pragma once

#include <atomic>

#include "kits/app/Looper.h"
#include "kits/kernel/Locker.h"

// What of a looper outlives it, for threads that post to it or wait for its lock when it is
// deleted.
struct BLooper::State {
    BLocker lock;
    BMessageQueue queue;
    std::atomic<thread_id> thread = B_BAD_THREAD_ID;
    // Guarded by `lock`.
    bool isDeleted = false;

    // B_BAD_VALUE, and not locked, if the looper is deleted.
    status_t LockUnlessDeleted(bigtime_t timeout);
    // Gives back a lock however often it was taken.
    void UnlockFully();
};
