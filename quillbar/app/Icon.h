#pragma once

#include <array>
#include <utility>

#include "base/Types.h"

// The program's icon: a quill that stands on a small bar with three buttons. Drawn by the compiler;
// packaging/quillbar.svg is the same design, in the same units: a square of 32.
namespace icon {

struct Layer {
    uint32 color; // 0xRRGGBB
    bool (*covers)(double x, double y);
};

constexpr bool InBox(double x, double y, double left, double top, double right, double bottom) {
    return x >= left && x < right && y >= top && y < bottom;
}

// Places beside the quill's shaft, which runs from its tip to its nib: `along` from 0 to 1,
// `across` in units, positive to the right of the tip.
struct Beside {
    double along;
    double across;
};
constexpr double kTipX = 27, kTipY = 2, kNibX = 8, kNibY = 22;
constexpr Beside BesideShaft(double x, double y) {
    constexpr double dx = kNibX - kTipX, dy = kNibY - kTipY;
    constexpr double square = dx * dx + dy * dy;
    constexpr double length = 27.586; // the root of `square`
    return {((x - kTipX) * dx + (y - kTipY) * dy) / square,
            ((x - kTipX) * -dy + (y - kTipY) * dx) / length};
}

// The vane swells from the tip and narrows towards the nib; `room` widens it for the outline.
constexpr bool InVane(double x, double y, double room) {
    const auto [along, across] = BesideShaft(x, y);
    if (along < -room / 28 || along > 0.8 + room / 28)
        return false;
    const double swell = (along + 0.03) * (0.86 - along) * 5.4;
    const double half = swell * (across < 0 ? 4.6 : 3.6) + room;
    return across < half && across > -half;
}

constexpr bool InShaft(double x, double y) {
    const auto [along, across] = BesideShaft(x, y);
    const double half = along > 0.8 ? 0.8 : 0.5;
    return along > 0.12 && along < 1.02 && across < half && across > -half;
}

constexpr Layer kLayers[] = {
    {0x303840, [](double x, double y) { return InBox(x, y, 1, 21, 31, 31); }},
    {0xf4f4f4, [](double x, double y) { return InBox(x, y, 2, 22, 30, 30); }},
    {0x888888, [](double x, double y) { return InBox(x, y, 3, 23, 30, 30); }},
    {0xd8d8d8, [](double x, double y) { return InBox(x, y, 3, 23, 29, 29); }},
    {0x3a6ea5, [](double x, double y) { return InBox(x, y, 12, 24, 16, 28); }},
    {0x5f9a48, [](double x, double y) { return InBox(x, y, 18, 24, 22, 28); }},
    {0xc8762c, [](double x, double y) { return InBox(x, y, 24, 24, 28, 28); }},
    {0x303840, [](double x, double y) { return InVane(x, y, 0.9); }},
    {0xe8f0fa, [](double x, double y) { return InVane(x, y, 0); }},
    {0xa9c3e2, [](double x, double y) { return InVane(x, y, 0) && BesideShaft(x, y).across < 0; }},
    {0x303840, [](double x, double y) { return InShaft(x, y); }},
};

// The colour of one pixel, averaged over the points of a grid in it.
constexpr uint32 PixelAt(int column, int row, double unit) {
    constexpr int kGrid = 4;
    uint32 red = 0, green = 0, blue = 0, covered = 0;
    for (int i = 0; i < kGrid * kGrid; ++i) {
        const int down = i / kGrid;
        const int across = i % kGrid;
        const double x = (column + (across + 0.5) / kGrid) * unit;
        const double y = (row + (down + 0.5) / kGrid) * unit;
        const Layer* top = nullptr;
        for (const Layer& layer : kLayers) {
            if (layer.covers(x, y))
                top = &layer;
        }
        if (!top)
            continue;
        red += top->color >> 16 & 0xff;
        green += top->color >> 8 & 0xff;
        blue += top->color & 0xff;
        ++covered;
    }
    if (covered == 0)
        return 0;
    const uint32 alpha = covered * 255 / (kGrid * kGrid);
    return alpha << 24 | red / covered << 16 | green / covered << 8 | blue / covered;
}

template <int Size, int Row>
constexpr std::array<uint32, Size> DrawRow() {
    std::array<uint32, Size> pixels{};
    for (int column = 0; column < Size; ++column)
        pixels[column] = PixelAt(column, Row, 32.0 / Size);
    return pixels;
}

// One constant a row: compilers bound the work that goes into a single one.
template <int Size, int Row>
inline constexpr auto kRow = DrawRow<Size, Row>();

template <int Size, int... Rows>
constexpr std::array<uint32, size_t{Size} * Size> JoinRows(std::integer_sequence<int, Rows...>) {
    const std::array<uint32, Size> rows[] = {kRow<Size, Rows>...};
    std::array<uint32, size_t{Size} * Size> pixels{};
    for (int i = 0; i < Size * Size; ++i)
        pixels[i] = rows[i / Size][i % Size];
    return pixels;
}

} // namespace icon

// `Size` times `Size` words 0xAARRGGBB, not premultiplied.
template <int Size>
constexpr std::array<uint32, size_t{Size} * Size> DrawIcon() {
    return icon::JoinRows<Size>(std::make_integer_sequence<int, Size>());
}
