#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
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

// Empty if they have no pixel in common.
inline PixelRect Intersection(const PixelRect& a, const PixelRect& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

inline PixelRect Moved(const PixelRect& rect, int right, int down) {
    return {rect.left + right, rect.top + down, rect.right + right, rect.bottom + down};
}

// A view of a picture in memory: `height` rows of `stride` bytes, each pixel a native-endian 32-bit
// word 0xAARRGGBB with premultiplied alpha. The memory is its maker's.
struct Image {
    std::uint32_t At(int x, int y) const {
        std::uint32_t pixel;
        std::memcpy(&pixel, pixels + std::ptrdiff_t{y} * stride + std::ptrdiff_t{x} * 4,
                    sizeof(pixel));
        return pixel;
    }

    const std::uint8_t* pixels = nullptr;
    int width = 0;
    int height = 0;
    int stride = 0;
};

} // namespace host
