#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/draw/Text.h"
#include "kits/interface/drawing/Font.h"

// The text of a field and where its characters are when it is drawn on one line. Places are logical
// pixels from the line's left end, offsets count bytes; between characters only: an offset inside
// one stands for the character's beginning. Window's thread.
class TextLine {
public:
    using Range = std::pair<int32, int32>;

    const std::string& Text() const { return fText; }
    int32 Length() const { return static_cast<int32>(fText.size()); }
    void SetText(std::string_view text);
    // The range must lie within the text.
    void Replace(Range range, std::string_view text);
    void SetFont(const BFont& font);

    float Width() const { return Measured().width; }
    float PlaceOf(int32 offset) const;
    // The nearest place for a caret.
    int32 OffsetAt(float x) const;
    // The character that covers `x`, or the nearest one.
    int32 CharacterAt(float x) const;

    // The nearest offset at or behind this one that is not inside a character.
    int32 Snapped(int32 offset) const;
    // The next offsets to the sides, or the text's ends.
    int32 Before(int32 offset) const;
    int32 After(int32 offset) const;
    int32 WordBefore(int32 offset) const;
    int32 WordAfter(int32 offset) const;
    // The word there, or what is between two words.
    Range WordAt(int32 offset) const;

    // The stretches, from left to right each, that the characters of `range` take.
    std::vector<std::pair<float, float>> StretchesIn(Range range) const;

private:
    const host::TextStops& Measured() const;
    template <typename Holds>
    int32 FindBefore(int32 offset, Holds holds) const;
    template <typename Holds>
    int32 FindAfter(int32 offset, Holds holds) const;

    std::string fText;
    BFont fFont;
    mutable std::optional<host::TextStops> fMeasured;
    mutable double fMeasuredAt = 0; // this scale
};
