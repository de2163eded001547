#include "base/Color.h"

namespace {

uint8 TintChannel(uint8 channel, float tint) {
    const float value = channel;
    const float tinted = tint < 1 ? 255 - (255 - value) * tint : value * (2 - tint);
    if (tinted <= 0)
        return 0;
    return tinted >= 255 ? 255 : static_cast<uint8>(tinted);
}

} // namespace

rgb_color tint_color(rgb_color color, float tint) {
    return {TintChannel(color.red, tint), TintChannel(color.green, tint),
            TintChannel(color.blue, tint), color.alpha};
}
