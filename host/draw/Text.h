#pragma once

#include <future>
#include <string>
#include <string_view>
#include <vector>

#include "base/Color.h"
#include "base/Rect.h"
#include "base/Types.h"

// Measures texts as Canvas draws them at `scale` device pixels per logical pixel, in logical
// pixels. Bytes that are not UTF-8 count as a replacement mark each, a control character as the
// mark that is drawn for it. Only a TextBlock has more than one line. Any thread.

namespace host {

// The desktop's sans-serif font at a size in logical pixels.
struct FontSpec {
    float size = 12;
    bool bold = false;
};

// Distances from the baseline, all positive.
struct FontHeight {
    float ascent = 0;
    float descent = 0;
    float leading = 0;
};

// A place in a text where a caret can stand: before what a person sees as one character (a letter
// with its combining marks, say), or at the end.
struct TextStop {
    int offset; // in bytes of the text
    float x;    // where that character begins, from the left edge of the text
    float farX; // where it ends; to the left of `x` in writing that goes to the left
    bool startsWord;
    bool endsWord;
};

struct TextStops {
    std::vector<TextStop> stops; // by offset; the last one is at the end
    float width = 0;
};

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

// Reads the desktop's font settings in the background and finds the font, so that the first text in
// it need not wait for that. Returns at once; main() must not return before what it returns is
// gone, whose destructor waits.
std::future<void> PrepareFont(const FontSpec& font, double scale);

FontHeight MeasureFont(const FontSpec& font, double scale);
float MeasureText(const FontSpec& font, std::string_view text, double scale);
// The ink of the whole text, relative to its start on the baseline (top is negative above it);
// (0, 0, -1, -1) without ink.
BRect MeasureInk(const FontSpec& font, std::string_view text, double scale);
// Whatever lies beyond a few thousand bytes counts as part of the character before it.
TextStops MeasureStops(const FontSpec& font, std::string_view text, double scale);
// One line at least.
std::vector<LineSize> MeasureLines(const TextBlock& block, double scale);

// `text` cut to at most `width`, with an ellipsis at the end if it was longer.
std::string TruncateText(const FontSpec& font, std::string_view text, float width, double scale);

} // namespace host
