#pragma once

#include <future>
#include <string>
#include <string_view>
#include <vector>

#include "base/Rect.h"
#include "base/Types.h"

namespace host {

// The desktop's sans-serif font at a size in logical pixels.
struct FontSpec {
    float size = 12;
    bool bold = false;

    bool operator==(const FontSpec&) const = default;
};

// Distances from the baseline, in logical pixels, all positive.
struct FontHeight {
    float ascent = 0;
    float descent = 0;
    float leading = 0;
};

// Reads the desktop's font settings in the background and finds the font, so that the first text in
// it need not wait for that. Returns at once; main() must not return before what it returns is
// gone, whose destructor waits. Any thread.
std::future<void> PrepareFont(const FontSpec& font, double scale);

// These functions measure text as Canvas draws it at `scale` device pixels per logical pixel, and
// answer in logical pixels. Bytes of `text` that are not UTF-8 count as a replacement mark; a new
// line or another control character counts as the mark Canvas shows for it, so that text is always
// one line. Any thread.
FontHeight MeasureFont(const FontSpec& font, double scale);
float MeasureText(const FontSpec& font, std::string_view text, double scale);

// The ink of the whole text, relative to its start on the baseline; (0, 0, -1, -1) without ink.
BRect MeasureInk(const FontSpec& font, std::string_view text, double scale);

// The ink of each character's glyph, in order, relative to its own origin on the baseline (top is
// negative above it); (0, 0, -1, -1) for a character without ink.
std::vector<BRect> MeasureGlyphs(const FontSpec& font, std::string_view text, double scale);

// `text` cut to at most `width`, with an ellipsis at the end if it was longer.
std::string TruncateText(const FontSpec& font, std::string_view text, float width, double scale);

} // namespace host
