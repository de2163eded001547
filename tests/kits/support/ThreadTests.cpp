// Strings, and threads that are renamed, stopped and kept out.

#include <gtest/gtest.h>

#include <atomic>

#include "kits/kernel/Locker.h"
#include "kits/kernel/OS.h"
#include "kits/support/String.h"

namespace {

constexpr bigtime_t kDeadline = 10'000'000;

TEST(String, TakesPartsOfItselfAndIgnoresPlacesOutside) {
    BString string("abcdef");
    string.SetTo(string.String() + 2);
    string += string;
    EXPECT_STREQ("cdefcdef", string.String());
    EXPECT_STREQ("cdef", string.Remove(4, 99).Remove(7, 1).Remove(-1, 1).String());
    EXPECT_EQ('\0', string[4]);
    EXPECT_EQ('\0', string[-1]);
    EXPECT_EQ(B_ERROR, string.FindFirst('c', 99));
}

thread_id Start(thread_func run, void* data) {
    const thread_id thread = spawn_thread(run, "spawned", B_NORMAL_PRIORITY, data);
    EXPECT_EQ(B_OK, resume_thread(thread));
    return thread;
}

// Waits for a lock, or sleeps if there is none.
struct Sleeper {
    BLocker* lock = nullptr;
    std::atomic<bool> isRunning = false;
    status_t atOnce = B_OK;
    status_t woken = B_OK;

    static status_t Run(void* data) {
        auto* self = static_cast<Sleeper*>(data);
        if (self->lock) {
            self->lock->Unlock(); // Not its own: must do nothing.
            self->atOnce = self->lock->LockWithTimeout(1000);
        }
        self->isRunning = true;
        self->woken = self->lock ? self->lock->LockWithTimeout(kDeadline) : snooze(kDeadline);
        return should_stop();
    }
};

TEST(Thread, AskedToStopWakesFromSleepAndFromALockAndLeavesTheLineInOrder) {
    BLocker lock;
    lock.Lock();
    for (BLocker* awaited : {static_cast<BLocker*>(nullptr), &lock}) {
        Sleeper sleeper{.lock = awaited};
        const thread_id thread = Start(Sleeper::Run, &sleeper);
        while (!sleeper.isRunning)
            snooze(100);
        EXPECT_EQ(B_OK, ask_thread_to_stop(thread));
        wait_for_thread(thread, nullptr);
        EXPECT_EQ(B_INTERRUPTED, sleeper.woken);
        EXPECT_EQ(awaited ? B_TIMED_OUT : B_OK, sleeper.atOnce);
    }
    EXPECT_TRUE(lock.IsLocked());
    lock.Unlock();
    EXPECT_EQ(B_OK, lock.LockWithTimeout(0));
}

} // namespace
