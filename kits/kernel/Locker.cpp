#include "kits/kernel/Locker.h"

#include <condition_variable>

#include "kits/kernel/StopToken.h"

// A thread in the queue; it lies on that thread's stack.
struct BLocker::Waiter {
    const thread_id thread;
    std::condition_variable_any granted;
    bool isHolder = false;
};

BLocker::BLocker(const char*) {}

BLocker::~BLocker() = default;

bool BLocker::Lock() {
    return LockWithTimeout(B_INFINITE_TIMEOUT) == B_OK;
}

status_t BLocker::LockWithTimeout(bigtime_t timeout) {
    const thread_id self = find_thread(nullptr);
    std::unique_lock lock(fMutex);
    if (fHolder == self || fCount == 0) {
        fHolder = self;
        ++fCount;
        return B_OK;
    }
    if (timeout <= 0)
        return B_TIMED_OUT;
    return WaitInLine(lock, self, timeout);
}

status_t BLocker::WaitInLine(std::unique_lock<std::mutex>& lock, thread_id self,
                             bigtime_t timeout) {
    Waiter waiter{self, {}};
    fWaiters.push_back(&waiter);
    const std::stop_token token = current_stop_token();
    waiter.granted.wait_for(lock, token, wait_duration(timeout), [&] { return waiter.isHolder; });
    if (waiter.isHolder)
        return B_OK;
    fWaiters.remove(&waiter);
    return token.stop_requested() ? B_INTERRUPTED : B_TIMED_OUT;
}

// The lock is handed to the next in line: a thread that gives it back and takes it again at once,
// as a busy looper does, cannot keep the others out.
void BLocker::Unlock() {
    std::lock_guard lock(fMutex);
    if (fHolder != find_thread(nullptr) || --fCount > 0)
        return;
    if (fWaiters.empty()) {
        fHolder = B_ERROR;
        return;
    }
    Waiter& next = *fWaiters.front();
    fWaiters.pop_front();
    fHolder = next.thread;
    fCount = 1;
    next.isHolder = true;
    next.granted.notify_one();
}

thread_id BLocker::LockingThread() const {
    std::lock_guard lock(fMutex);
    return fHolder;
}

bool BLocker::IsLocked() const {
    return LockingThread() == find_thread(nullptr);
}

int32 BLocker::CountLocks() const {
    std::lock_guard lock(fMutex);
    return fCount;
}
