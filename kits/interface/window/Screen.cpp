#include "kits/interface/window/Screen.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "host/x11/Display.h"

namespace {

// The display's coordinates have 16 bits.
constexpr double kFarthest = 32000;

BRect Logical(const host::PixelRect& monitor, double scale) {
    return {static_cast<float>(std::ceil(monitor.left / scale)),
            static_cast<float>(std::ceil(monitor.top / scale)),
            static_cast<float>(std::floor(monitor.right / scale) - 1),
            static_cast<float>(std::floor(monitor.bottom / scale) - 1)};
}

std::int64_t Area(const host::PixelRect& rect) {
    return rect.IsEmpty() ? 0 : std::int64_t{rect.Width()} * rect.Height();
}

std::int64_t SquareOfDistance(const host::PixelRect& a, const host::PixelRect& b) {
    std::int64_t x = std::max({0, a.left - b.right, b.left - a.right});
    std::int64_t y = std::max({0, a.top - b.bottom, b.top - a.bottom});
    return x * x + y * y;
}

int Inside(int place, int size, int from, int to) {
    return std::max(from, std::min(place, to - size));
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

int DevicePlace(float logical, double scale) {
    if (std::isnan(logical))
        return 0;
    return static_cast<int>(std::floor(std::clamp(logical * scale, -kFarthest, kFarthest) + 0.5));
}

host::PixelRect NearestMonitor(const std::vector<host::PixelRect>& monitors,
                               const host::PixelRect& frame) {
    host::PixelRect best = monitors.front();
    std::int64_t bestArea = 0;
    std::int64_t bestDistance = std::numeric_limits<std::int64_t>::max();
    for (const host::PixelRect& monitor : monitors) {
        std::int64_t area = Area(host::Intersection(monitor, frame));
        std::int64_t distance = SquareOfDistance(monitor, frame);
        if (area > bestArea || (area == bestArea && distance < bestDistance)) {
            best = monitor;
            bestArea = area;
            bestDistance = distance;
        }
    }
    return best;
}

bool IsInReach(const std::vector<host::PixelRect>& monitors, const host::PixelRect& grip,
               int enough) {
    std::int64_t seen = 0;
    for (const host::PixelRect& monitor : monitors) {
        const host::PixelRect part = host::Intersection(monitor, grip);
        if (part.Width() >= enough && part.Height() >= enough)
            return true;
        seen += Area(part);
    }
    return 2 * seen >= Area(grip);
}

host::PixelRect MovedInside(const std::vector<host::PixelRect>& monitors,
                            const host::PixelRect& frame) {
    const host::PixelRect monitor = NearestMonitor(monitors, frame);
    const int left = Inside(frame.left, frame.Width(), monitor.left, monitor.right);
    const int top = Inside(frame.top, frame.Height(), monitor.top, monitor.bottom);
    return {left, top, left + frame.Width(), top + frame.Height()};
}
