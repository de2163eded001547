#pragma once

#include <cstdlib>

#include <xcb/xcb.h>

#include "base/Types.h"

namespace host {

// Tells single presses from those of double and further clicks.
class ClickCounter {
public:
    // In microseconds, and in device pixels along each axis.
    void SetLimits(bigtime_t time, int distance) {
        fTime = time;
        fDistance = distance;
    }

    // Counts a press: 1 for the first, more for one that follows the last soon, near, in the same
    // window and with the same button.
    int32 Count(const xcb_button_press_event_t& press) {
        fCount = Continues(press) ? fCount + 1 : 1;
        fLast = press;
        return fCount;
    }

private:
    bool Continues(const xcb_button_press_event_t& press) const {
        // The server's time is a word of milliseconds that starts again after 50 days.
        const uint32 elapsed = press.time - fLast.time;
        return fCount > 0 && press.event == fLast.event && press.detail == fLast.detail &&
               elapsed * bigtime_t{1000} <= fTime &&
               std::abs(press.root_x - fLast.root_x) <= fDistance &&
               std::abs(press.root_y - fLast.root_y) <= fDistance;
    }

    bigtime_t fTime = 0;
    int fDistance = 0;
    xcb_button_press_event_t fLast{};
    int32 fCount = 0;
};

} // namespace host
