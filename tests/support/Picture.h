#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace test {

// A copy of a part of the screen; pixels are 0xRRGGBB.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels;

    uint32_t At(int x, int y) const { return pixels.at(static_cast<size_t>(y) * width + x); }
    size_t Count(uint32_t colour) const;
    bool SavePng(const std::string& path) const;
    bool operator==(const Picture&) const = default;
};

} // namespace test
