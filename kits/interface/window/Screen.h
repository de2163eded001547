#pragma once

#include <vector>

#include "base/Rect.h"
#include "host/draw/Image.h"

// The screen that the program's windows are on. Frames are in whole logical pixels. Any thread.
// Without a display every frame is (0, 0, 1023, 767).
class BScreen {
public:
    // The primary monitor.
    BRect Frame() const;

    // The monitor that `point` (on the screen) is on, or the nearest one. An addition to the
    // platform, which knew one monitor.
    static BRect MonitorFrame(BPoint point);
};

// For the kit, in device pixels of the screen. `monitors` is never empty.

// The pixel at a logical coordinate; 0 for one that is not a number. Clamped to what a window's
// place can be.
int DevicePlace(float logical, double scale);

// The monitor that covers most of `frame`, or else the nearest one.
host::PixelRect NearestMonitor(const std::vector<host::PixelRect>& monitors,
                               const host::PixelRect& frame);

// Whether a person can take hold of `grip`: the monitors show half of it, or one of them shows a
// part that is `enough` wide and high.
bool IsInReach(const std::vector<host::PixelRect>& monitors, const host::PixelRect& grip,
               int enough);

// `frame` moved wholly into the nearest monitor; of a larger one the left-top corner is inside.
host::PixelRect MovedInside(const std::vector<host::PixelRect>& monitors,
                            const host::PixelRect& frame);
