#include "kits/interface/window/Screen.h"

#include <cmath>

#include "host/x11/Display.h"
#include "kits/interface/window/Monitors.h"

namespace {

BRect Logical(const host::PixelRect& monitor, double scale) {
    return {static_cast<float>(std::ceil(monitor.left / scale)),
            static_cast<float>(std::ceil(monitor.top / scale)),
            static_cast<float>(std::floor(monitor.right / scale) - 1),
            static_cast<float>(std::floor(monitor.bottom / scale) - 1)};
}

} // namespace

BRect BScreen::Frame() const {
    host::Display* display = host::Display::Shared();
    return display ? Logical(display->Monitors().front(), display->Scale())
                   : BRect(0, 0, 1023, 767);
}

BRect BScreen::MonitorFrame(BPoint point) {
    host::Display* display = host::Display::Shared();
    if (display == nullptr)
        return {0, 0, 1023, 767};
    double scale = display->Scale();
    int x = DevicePlace(point.x, scale);
    int y = DevicePlace(point.y, scale);
    return Logical(NearestMonitor(display->Monitors(), {x, y, x + 1, y + 1}), scale);
}
