#pragma once

#include <vector>

#include "host/draw/Image.h"

// The device pixel at a logical coordinate of the screen; one that is not a number, or absurdly far
// away, becomes a usable one.
int DevicePlace(float logical, double scale);

// The monitor that covers most of `frame`, or else the one nearest to it; `monitors` has one at
// least.
host::PixelRect NearestMonitor(const std::vector<host::PixelRect>& monitors,
                               const host::PixelRect& frame);

// `frame` itself if one of the monitors shows some of it, else moved wholly into the nearest one;
// its left-top corner is there in any case.
host::PixelRect BroughtInside(const std::vector<host::PixelRect>& monitors, host::PixelRect frame);
