#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/draw/TextStops.h"
#include "kits/interface/drawing/Font.h"

// The text of a field and where its characters are when it is drawn on one line. Places are logical
// pixels from the line's left end, offsets count bytes; between characters only: an offset inside
// one stands for the character's beginning.
//
// The text is measured in pieces of some hundred bytes, each when it is asked for, so that a change
// to a long text costs no more than one to a short text.
class TextLine {
public:
    // What is drawn together.
    struct Part {
        std::string_view text;
        float x;
    };
    using Range = std::pair<int32, int32>;

    const std::string& Text() const { return fText; }
    int32 Length() const { return static_cast<int32>(fText.size()); }
    void SetText(std::string_view text);
    void Replace(Range range, std::string_view text);
    void SetFont(const BFont& font);

    // Or, for a wider line, some width that is not less than `enough`.
    float Width(float enough) const;
    float PlaceOf(int32 offset) const;
    // The nearest place for a caret.
    int32 OffsetAt(float x) const;
    // The character that covers `x`, or the nearest one.
    int32 CharacterAt(float x) const;

    // The nearest offset at or behind this one that is not inside a character.
    int32 Snapped(int32 offset) const;
    // The next offsets to the sides, and the text's ends when there are none.
    int32 Before(int32 offset) const;
    int32 After(int32 offset) const;
    int32 WordBefore(int32 offset) const;
    int32 WordAfter(int32 offset) const;
    // The word there, or what is between two words.
    Range WordAt(int32 offset) const;

    // What lies between two places.
    std::vector<Part> PartsIn(float left, float right) const;
    // The stretches, from left to right each, that the characters of `range` take there.
    std::vector<std::pair<float, float>> StretchesIn(Range range, float left, float right) const;

private:
    struct Piece {
        int32 length;
        mutable std::optional<host::TextStops> measured;
    };
    struct Position {
        size_t piece;
        int32 start; // of the piece
    };

    std::string_view Bytes(int32 start, int32 length) const;
    // The stops of the piece at `at`, with offsets from the piece's start.
    const host::TextStops& Measured(Position at) const;
    Position PieceOf(int32 offset) const;
    Position PieceAt(float& x) const;
    bool Follow(Position& at) const;
    int32 CutOf(int32 start) const;
    void Split(Position at);
    template <typename Visit>
    void VisitPieces(float left, float right, Visit visit) const;
    template <typename Holds>
    int32 FindBefore(int32 offset, Holds holds) const;
    template <typename Holds>
    int32 FindAfter(int32 offset, Holds holds) const;

    std::string fText;
    BFont fFont;
    std::vector<Piece> fPieces{{0, std::nullopt}};
};
