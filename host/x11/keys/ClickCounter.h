#pragma once

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
    int32 Count(const xcb_button_press_event_t& press);

private:
    bool Continues(const xcb_button_press_event_t& press) const;

    bigtime_t fTime = 0;
    int fDistance = 0;
    xcb_button_press_event_t fLast{};
    int32 fCount = 0;
};

} // namespace host
