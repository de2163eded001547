#include "host/x11/keys/ClickCounter.h"

#include <cstdlib>

namespace host {

bool ClickCounter::Continues(const xcb_button_press_event_t& press) const {
    // The server's time is a word of milliseconds that starts again after 50 days.
    uint32 elapsed = press.time - fLast.time;
    return fCount > 0 && press.event == fLast.event && press.detail == fLast.detail &&
           elapsed * bigtime_t{1000} <= fTime &&
           std::abs(press.root_x - fLast.root_x) <= fDistance &&
           std::abs(press.root_y - fLast.root_y) <= fDistance;
}

int32 ClickCounter::Count(const xcb_button_press_event_t& press) {
    fCount = Continues(press) ? fCount + 1 : 1;
    fLast = press;
    return fCount;
}

} // namespace host
