#include <gtest/gtest.h>

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <optional>
#include <thread>

#include "host/loop/ServiceLoop.h"
#include "tests/support/Wait.h"

namespace host {
namespace {

using namespace std::chrono_literals;

bool Reaches(const std::atomic<int>& calls, int count) {
    return test::WaitUntil([&] { return calls >= count; });
}

// Waits until the service thread has done its earlier tasks.
void Settle() {
    ServiceLoop::Shared().InvokeAndWait([] {});
}

TEST(Timer, NeverRunsOnceItsDestructorReturned) {
    for (int round = 0; round < 20; ++round) {
        std::atomic<bool> isRunning = false;
        std::atomic<int> calls = 0;
        std::optional<Timer> timer(std::in_place, 0, 1, [&] {
            isRunning = true;
            ++calls;
            std::this_thread::sleep_for(2ms);
            isRunning = false;
        });
        ASSERT_TRUE(Reaches(calls, 1));
        timer.reset();
        EXPECT_FALSE(isRunning);
        const int before = calls;
        Settle();
        EXPECT_EQ(before, calls);
    }
}

TEST(Timer, EndsAnotherWhoseCallIsNotWaitedFor) {
    // The destroying thread holds a lock that other calls wait for: no deadlock.
    std::mutex mutex;
    std::atomic<int> calls = 0;
    std::optional<Timer> busy, other;
    std::unique_lock lock(mutex);
    other.emplace(10'000'000, 0, [] {});
    busy.emplace(0, 0, [&] {
        ++calls;
        std::lock_guard inner(mutex);
    });
    ASSERT_TRUE(Reaches(calls, 1));
    other.reset();
    lock.unlock();
}

TEST(DescriptorWatch, MayEndItselfAndKeepsItsFunctionUntilThatReturns) {
    int ends[2];
    ASSERT_EQ(0, pipe(ends));
    std::atomic<int> calls = 0;
    std::optional<DescriptorWatch> watch;
    auto held = std::make_shared<int>(5);
    const std::weak_ptr<int> watched = held;
    // Where it is called, too: it may not be called before it is made.
    ServiceLoop::Shared().InvokeAndWait([&] {
        watch.emplace(ends[0], [&, held = std::move(held)] {
            watch.reset();
            EXPECT_EQ(5, *held);
            ++calls;
        });
    });
    close(ends[1]); // The peer hangs up.
    EXPECT_TRUE(Reaches(calls, 1));
    Settle();
    EXPECT_EQ(1, calls);
    EXPECT_TRUE(watched.expired());
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
    std::atomic<int> elapsed = 0;
    const Timer over(0, 0, [&] { ++elapsed; });
    ASSERT_TRUE(Reaches(elapsed, 1));
    const auto before = ServiceTime();
    std::this_thread::sleep_for(300ms);
    EXPECT_LT(ServiceTime() - before, 20ms);
}

} // namespace
} // namespace host
