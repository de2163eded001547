#pragma once

#include <chrono>
#include <stop_token>

#include "base/Types.h"

// What the kernel kit's own waits need.

// Tells whether the calling thread was asked to stop; one that nobody can ask has an empty token.
std::stop_token current_stop_token();

// A duration that can be added to the clock without overflow: at most some thirty years.
inline std::chrono::microseconds wait_duration(bigtime_t timeout) {
    constexpr bigtime_t kLongest = 1'000'000'000'000'000;
    return std::chrono::microseconds(timeout < kLongest ? timeout : kLongest);
}
