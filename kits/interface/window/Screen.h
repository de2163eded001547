#pragma once

#include "base/Rect.h"

// The screen the program's windows are on. Frames are in logical pixels and whole. Any thread.
// Without a display everything is (0, 0, 1023, 767).
class BScreen {
public:
    // The primary monitor.
    BRect Frame() const;

    // The monitor that `point` (on the screen) is on, or the one nearest to it. An addition to the
    // platform, which knew one monitor.
    static BRect MonitorFrame(BPoint point);
};
