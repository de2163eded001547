#pragma once

#include <chrono>
#include <stop_token>

#include "base/Types.h"

// For the kernel kit's own waits.

// Shows whether the calling thread was asked to stop; empty for a thread that was not spawned by
// the kit.
std::stop_token current_stop_token();

// A duration that can be added to the clock without overflow: at most some thirty years.
inline std::chrono::microseconds wait_duration(bigtime_t timeout) {
    constexpr bigtime_t kLongest = 1'000'000'000'000'000;
    return std::chrono::microseconds(timeout < kLongest ? timeout : kLongest);
}
