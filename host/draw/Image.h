#pragma once

#include <cstdint>
#include <vector>

namespace host {

// A rectangle in device pixels; right and bottom are beyond its last pixel.
struct PixelRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    bool IsEmpty() const { return right <= left || bottom <= top; }
    bool operator==(const PixelRect&) const = default;
};

// A view of a picture in memory: `height` rows of `stride` bytes, each pixel a native-endian 32-bit
// word 0xAARRGGBB with premultiplied alpha. The memory is its maker's.
struct Image {
    const std::uint8_t* pixels = nullptr;
    int width = 0;
    int height = 0;
    int stride = 0;
};

} // namespace host
