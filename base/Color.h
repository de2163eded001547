#pragma once

#include "base/Types.h"

// A colour, not premultiplied. It is four bytes, in this order, in message fields.
struct rgb_color {
    uint8 red = 0;
    uint8 green = 0;
    uint8 blue = 0;
    uint8 alpha = 255;

    bool operator==(const rgb_color&) const = default;
};
static_assert(sizeof(rgb_color) == 4);

inline constexpr float B_LIGHTEN_2_TINT = 0.385f;
inline constexpr float B_LIGHTEN_1_TINT = 0.590f;
inline constexpr float B_NO_TINT = 1.0f;
inline constexpr float B_DARKEN_1_TINT = 1.147f;
inline constexpr float B_DARKEN_2_TINT = 1.295f;
inline constexpr float B_DARKEN_3_TINT = 1.407f;
inline constexpr float B_DARKEN_4_TINT = 1.555f;
inline constexpr float B_DARKEN_MAX_TINT = 2.0f;

// `color` moved towards white (tint 0) or black (tint 2), each channel in proportion; 1 leaves it
// as it is. Alpha is kept. Any thread.
rgb_color tint_color(rgb_color color, float tint);
