#pragma once

#include <cstdint>
#include <cstring>
#include <ostream>
#include <set>
#include <vector>

#include "host/draw/Canvas.h"

namespace host {

inline std::ostream& operator<<(std::ostream& out, const PixelRect& rect) {
    return out << '(' << rect.left << ' ' << rect.top << ' ' << rect.right << ' ' << rect.bottom
               << ')';
}

inline constexpr rgb_color kBlack{0, 0, 0};
inline constexpr rgb_color kRed{255, 0, 0};
inline constexpr rgb_color kBlue{0, 0, 255};
inline constexpr uint32 kWhitePixel = 0xffffff;
inline constexpr uint32 kBlackPixel = 0x000000;
inline constexpr uint32 kRedPixel = 0xff0000;
inline constexpr uint32 kBluePixel = 0x0000ff;

inline uint32 PixelAt(const Image& image, int x, int y) {
    uint32 pixel;
    std::memcpy(&pixel, image.pixels + y * image.stride + x * 4, sizeof(pixel));
    return pixel & 0xffffff;
}

inline std::vector<uint32> Copy(const Image& image) {
    std::vector<uint32> pixels;
    for (int y = 0; y < image.height; y++) {
        for (int x = 0; x < image.width; x++)
            pixels.push_back(PixelAt(image, x, y));
    }
    return pixels;
}

inline std::set<uint32> ColorsOf(const Image& image) {
    auto pixels = Copy(image);
    return {pixels.begin(), pixels.end()};
}

// The smallest rectangle around all pixels that are not white.
inline PixelRect InkOf(const Image& image) {
    PixelRect ink{image.width, image.height, 0, 0};
    for (int y = 0; y < image.height; y++) {
        for (int x = 0; x < image.width; x++) {
            if (PixelAt(image, x, y) == kWhitePixel)
                continue;
            ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1),
                   std::max(ink.bottom, y + 1)};
        }
    }
    return ink;
}

} // namespace host
