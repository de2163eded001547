#pragma once

#include <string>
#include <vector>

#include "base/Color.h"
#include "host/draw/Font.h"

namespace host {

// Text of several lines, in parts with a font and a colour each.
struct TextBlock {
    struct Run {
        int start; // in bytes of the text; the run ends where the next one starts
        FontSpec font;
        rgb_color color;
    };

    std::string text;
    std::vector<Run> runs; // by start; the first one starts at 0
    float width = -1;      // lines are wrapped to it at words; negative: only new lines end lines
};

struct LineSize {
    float width;
    float height;
};

// The lines of `block` as Canvas draws it at `scale` device pixels per logical pixel, one at least,
// in logical pixels. Any thread.
std::vector<LineSize> MeasureLines(const TextBlock& block, double scale);

} // namespace host
