#pragma once

#include "base/Color.h"
#include "base/Types.h"

// The format of a bitmap's pixels.
enum color_space : uint32 {
    B_RGBA32 = 0x2008, // colour and alpha
    B_CMAP8 = 0x0004,  // one byte, an index into the palette
};

// How drawing meets what is there.
enum drawing_mode {
    B_OP_COPY = 0,   // takes its place; into a bitmap with alpha also the colour's alpha
    B_OP_ALPHA = 10, // covers it in proportion to alpha
};

enum source_alpha {
    B_PIXEL_ALPHA = 0,    // each pixel's own
    B_CONSTANT_ALPHA = 1, // besides that, the high colour's
};

enum alpha_function {
    B_ALPHA_COMPOSITE = 1,
};

inline constexpr rgb_color B_TRANSPARENT_COLOR{0x77, 0x74, 0x77, 0};

// The palette of B_CMAP8: red, green and blue in six even steps each, then grey in 39 steps, and
// last the transparent pixel.
inline constexpr uint8 B_TRANSPARENT_MAGIC_CMAP8 = 0xff;
