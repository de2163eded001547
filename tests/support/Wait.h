#pragma once

#include <chrono>
#include <thread>

namespace test {

inline constexpr std::chrono::milliseconds kDeadline{10'000};

// Asks `holds` every few milliseconds until it is true. False if it still is not after `deadline`.
template <typename Predicate>
bool WaitUntil(Predicate holds, std::chrono::milliseconds deadline = kDeadline) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!holds()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
    }
    return true;
}

} // namespace test
