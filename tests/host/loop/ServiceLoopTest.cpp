#include <gtest/gtest.h>

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

#include "host/loop/ServiceLoop.h"

namespace host {
namespace {

using namespace std::chrono_literals;

// Counts calls, and waits for them.
class Calls {
public:
    void Add() {
        std::lock_guard lock(fMutex);
        ++fCount;
        fChanged.notify_all();
    }
    int Count() {
        std::lock_guard lock(fMutex);
        return fCount;
    }
    bool Reach(int count) {
        std::unique_lock lock(fMutex);
        return fChanged.wait_for(lock, 10s, [&] { return fCount >= count; });
    }

private:
    std::mutex fMutex;
    std::condition_variable fChanged;
    int fCount = 0;
};

// Waits until the service thread has done its earlier tasks.
void Settle() {
    ServiceLoop::Shared().InvokeAndWait([] {});
}

TEST(ServiceLoop, RunsTasksInTheOrderOfTheCalls) {
    ServiceLoop& loop = ServiceLoop::Shared();
    std::vector<int> order;
    for (int i = 0; i < 100; ++i)
        loop.Invoke([&, i] { order.push_back(i); });
    loop.InvokeAndWait([&] {
        EXPECT_TRUE(loop.IsCurrentThread());
        loop.InvokeAndWait([&] { order.push_back(100); });
    });
    ASSERT_EQ(101u, order.size());
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_FALSE(loop.IsCurrentThread());
}

TEST(Timer, NeverRunsOnceItsDestructorReturned) {
    for (int i = 0; i < 300; ++i) {
        auto isAlive = std::make_unique<std::atomic<bool>>(true);
        std::optional<Timer> timer(std::in_place, 0, 1, [alive = isAlive.get()] {
            EXPECT_TRUE(*alive);
            std::this_thread::sleep_for(10us);
            EXPECT_TRUE(*alive);
        });
        std::this_thread::sleep_for(std::chrono::microseconds(i));
        timer.reset();
        *isAlive = false;
        isAlive.reset();
    }
    Settle();
}

TEST(Timer, MayEndItselfAndKeepsItsFunctionUntilThatReturns) {
    Calls calls;
    std::mutex mutex;
    std::unique_ptr<Timer> timer;
    auto held = std::make_shared<int>(5);
    const std::weak_ptr<int> watched = held;
    {
        std::lock_guard lock(mutex);
        timer = std::make_unique<Timer>(0, 1000, [&, held = std::move(held)] {
            std::lock_guard inner(mutex);
            timer.reset();
            EXPECT_EQ(5, *held);
            calls.Add();
        });
    }
    ASSERT_TRUE(calls.Reach(1));
    Settle();
    EXPECT_EQ(1, calls.Count());
    EXPECT_TRUE(watched.expired());
}

TEST(Timer, EndsAnotherWhoseCallIsNotWaitedFor) {
    // The destroying thread holds a lock that other calls wait for: no deadlock.
    std::mutex mutex;
    Calls calls;
    std::optional<Timer> busy, other;
    std::unique_lock lock(mutex);
    other.emplace(10'000'000, 0, [] {});
    busy.emplace(0, 0, [&] {
        calls.Add();
        std::lock_guard inner(mutex);
    });
    ASSERT_TRUE(calls.Reach(1));
    other.reset();
    lock.unlock();
}

TEST(DescriptorWatch, RunsWhenThePeerHangsUp) {
    int ends[2];
    ASSERT_EQ(0, pipe(ends));
    Calls calls;
    std::optional<DescriptorWatch> watch;
    std::mutex mutex;
    {
        std::lock_guard lock(mutex);
        watch.emplace(ends[0], [&] {
            std::lock_guard inner(mutex);
            watch.reset();
            calls.Add();
        });
    }
    close(ends[1]);
    EXPECT_TRUE(calls.Reach(1));
    Settle();
    EXPECT_EQ(1, calls.Count());
    close(ends[0]);
}

// CPU time that the service thread used so far.
std::chrono::nanoseconds ServiceTime() {
    timespec time{};
    ServiceLoop::Shared().InvokeAndWait([&] { clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time); });
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

TEST(ServiceLoop, SleepsWhenThereIsNothingToDo) {
    int ends[2];
    ASSERT_EQ(0, pipe(ends));
    const DescriptorWatch watch(ends[0], [] {});
    const Timer timer(3'600'000'000, 0, [] {});
    Calls elapsed;
    const Timer over(0, 0, [&] { elapsed.Add(); });
    ASSERT_TRUE(elapsed.Reach(1));
    const auto before = ServiceTime();
    std::this_thread::sleep_for(300ms);
    EXPECT_LT(ServiceTime() - before, 20ms);
}

} // namespace
} // namespace host
