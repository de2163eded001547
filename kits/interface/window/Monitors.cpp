#include "kits/interface/window/Monitors.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace {

// The display's coordinates have 16 bits.
constexpr double kFarthest = 32000;

std::int64_t SharedArea(const host::PixelRect& a, const host::PixelRect& b) {
    std::int64_t width = std::min(a.right, b.right) - std::max(a.left, b.left);
    std::int64_t height = std::min(a.bottom, b.bottom) - std::max(a.top, b.top);
    return std::max<std::int64_t>(width, 0) * std::max<std::int64_t>(height, 0);
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
        std::int64_t area = SharedArea(monitor, frame);
        std::int64_t distance = SquareOfDistance(monitor, frame);
        if (area > bestArea || (area == bestArea && distance < bestDistance)) {
            best = monitor;
            bestArea = area;
            bestDistance = distance;
        }
    }
    return best;
}

host::PixelRect BroughtInside(const std::vector<host::PixelRect>& monitors, host::PixelRect frame) {
    host::PixelRect monitor = NearestMonitor(monitors, frame);
    if (SharedArea(monitor, frame) > 0)
        return frame;
    int left = Inside(frame.left, frame.Width(), monitor.left, monitor.right);
    int top = Inside(frame.top, frame.Height(), monitor.top, monitor.bottom);
    return {left, top, left + frame.Width(), top + frame.Height()};
}
