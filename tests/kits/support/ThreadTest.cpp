#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <pthread.h>

#include "kits/kernel/Locker.h"
#include "kits/kernel/OS.h"

namespace {

constexpr bigtime_t kDeadline = 10'000'000;

status_t ReturnData(void* data) {
    return static_cast<status_t>(*static_cast<int*>(data));
}

TEST(Thread, GivesItsResultToTheOneWhoWaits) {
    int data = 42;
    status_t result = 0;
    const thread_id thread = spawn_thread(ReturnData, "worker", B_NORMAL_PRIORITY, &data);
    EXPECT_EQ(thread, find_thread("worker"));
    EXPECT_EQ(B_OK, resume_thread(thread));
    wait_for_thread(thread, &result);
    // It may have ended before it was waited for, and is forgotten then.
    EXPECT_TRUE(result == 42 || result == 0);
    EXPECT_EQ(B_BAD_THREAD_ID, rename_thread(thread, "gone"));
    EXPECT_EQ(B_BAD_THREAD_ID, wait_for_thread(thread, &result));
    EXPECT_EQ(B_BAD_THREAD_ID, resume_thread(thread));
    EXPECT_EQ(B_NAME_NOT_FOUND, find_thread("worker"));
    // Waiting for oneself would never end.
    EXPECT_EQ(B_BAD_THREAD_ID, wait_for_thread(find_thread(nullptr), nullptr));
    // One that nobody resumed is started by the one who waits.
    EXPECT_EQ(B_OK, wait_for_thread(spawn_thread(ReturnData, nullptr, B_NORMAL_PRIORITY, &data),
                                    &result));
    EXPECT_EQ(42, result);
}

TEST(Thread, IsRenamedAlsoBeforeItBeginsToRun) {
    const auto saysItsName = [](void*) -> status_t {
        while (!should_stop())
            snooze(kDeadline);
        char name[16] = {};
        pthread_getname_np(pthread_self(), name, sizeof(name));
        return strcmp(name, "renamed") == 0;
    };
    for (int round = 0; round < 100; ++round) {
        const thread_id thread = spawn_thread(saysItsName, "spawned", B_NORMAL_PRIORITY, nullptr);
        resume_thread(thread);
        rename_thread(thread, "renamed");
        ask_thread_to_stop(thread);
        status_t isRenamed = true; // unless it has ended already
        wait_for_thread(thread, &isRenamed);
        ASSERT_TRUE(isRenamed);
    }
}

struct Sleeper {
    std::atomic<bool> isRunning = false;
    BLocker* lock = nullptr;
    status_t woken = B_OK;

    static status_t Run(void* data) {
        auto* self = static_cast<Sleeper*>(data);
        self->isRunning = true;
        self->woken = self->lock ? self->lock->LockWithTimeout(kDeadline) : snooze(kDeadline);
        return should_stop();
    }

    void StopAndExpectInterrupted() {
        const thread_id thread = spawn_thread(Run, "sleeper", B_NORMAL_PRIORITY, this);
        resume_thread(thread);
        while (!isRunning)
            snooze(100);
        EXPECT_EQ(B_OK, ask_thread_to_stop(thread));
        wait_for_thread(thread, nullptr);
        EXPECT_EQ(B_INTERRUPTED, woken);
    }
};

TEST(Thread, AskedToStopWakesFromSleep) {
    Sleeper().StopAndExpectInterrupted();
}

TEST(Thread, AskedToStopWakesFromALockAndLeavesTheLineInOrder) {
    BLocker lock;
    lock.Lock();
    Sleeper sleeper;
    sleeper.lock = &lock;
    sleeper.StopAndExpectInterrupted();
    lock.Unlock();
    EXPECT_EQ(B_OK, lock.LockWithTimeout(0));
    EXPECT_EQ(B_BAD_THREAD_ID, ask_thread_to_stop(find_thread(nullptr)));
}

struct Contender {
    BLocker& lock;
    int64& counter;

    static status_t Run(void* data) {
        auto* self = static_cast<Contender*>(data);
        for (int i = 0; i < 2000; ++i) {
            self->lock.Lock();
            self->lock.Lock();
            ++self->counter;
            self->lock.Unlock();
            self->lock.Unlock();
        }
        return B_OK;
    }
};

TEST(Locker, LetsOneThreadInAtATime) {
    BLocker lock;
    int64 counter = 0;
    Contender contender{lock, counter};
    thread_id threads[4];
    for (thread_id& thread : threads) {
        thread = spawn_thread(Contender::Run, "contender", B_NORMAL_PRIORITY, &contender);
        resume_thread(thread);
    }
    for (const thread_id thread : threads)
        wait_for_thread(thread, nullptr);
    lock.Lock();
    EXPECT_EQ(8000, counter);
    lock.Unlock();
}

TEST(Locker, TimesOutWhileAnotherHoldsIt) {
    BLocker lock;
    lock.Lock();
    struct Attempt {
        BLocker& lock;
        status_t now;
        status_t later;
        static status_t Run(void* data) {
            auto* self = static_cast<Attempt*>(data);
            self->lock.Unlock(); // Not its own: must do nothing.
            self->now = self->lock.LockWithTimeout(0);
            self->later = self->lock.LockWithTimeout(1000);
            return B_OK;
        }
    } attempt{lock, B_OK, B_OK};
    EXPECT_EQ(B_OK,
              wait_for_thread(spawn_thread(Attempt::Run, "attempt", B_NORMAL_PRIORITY, &attempt),
                              nullptr));
    EXPECT_EQ(B_TIMED_OUT, attempt.now);
    EXPECT_EQ(B_TIMED_OUT, attempt.later);
    EXPECT_TRUE(lock.IsLocked());
    lock.Unlock();
}

} // namespace
