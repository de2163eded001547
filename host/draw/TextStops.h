#pragma once

#include <string_view>
#include <vector>

#include "host/draw/Font.h"

namespace host {

// A place in a text where a caret can stand: before what a person sees as one character (a letter
// with its combining marks, say), or at the end.
struct TextStop {
    int offset; // in bytes of the text
    float x;    // where that character begins, from the left edge of the text, in logical pixels
    float farX; // where it ends; to the left of `x` in writing that goes to the left
    bool startsWord;
    bool endsWord;
};

struct TextStops {
    std::vector<TextStop> stops; // by offset; the last one is at the end
    float width = 0;             // in logical pixels
};

// Of one line of text as Canvas draws it at `scale` device pixels per logical pixel. A byte that is
// not UTF-8 counts as a character, as does all that lies beyond a few thousand bytes together with
// the character before it. Any thread.
TextStops MeasureStops(const FontSpec& font, std::string_view text, double scale);

} // namespace host
