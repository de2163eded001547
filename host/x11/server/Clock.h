#pragma once

#include <chrono>

#include "base/Types.h"

namespace host {

// The clock of the events' `when`.
inline bigtime_t Now() {
    using namespace std::chrono;
    return duration_cast<microseconds>(steady_clock::now().time_since_epoch()).count();
}

// When a server's event happened, at the earliest: its milliseconds are of the same clock where the
// server runs on this machine. Where it does not, now.
inline bigtime_t TimeOf(uint32 serverTime) {
    constexpr uint32 kPlausibleAge = 5'000;
    const bigtime_t now = Now();
    const uint32 age = static_cast<uint32>(now / 1000) - serverTime;
    return age < kPlausibleAge ? (now / 1000 - age) * 1000 : now;
}

} // namespace host
