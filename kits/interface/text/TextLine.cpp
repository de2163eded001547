#include "kits/interface/text/TextLine.h"

#include <algorithm>
#include <cmath>

#include "kits/interface/drawing/HostFont.h"

namespace {

// Above this a piece is cut, at a blank if there is one that leaves it the lower length.
constexpr int32 kMaxPiece = 512;
constexpr int32 kMinPiece = 128;

bool IsInsideCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0) == 0x80;
}

bool IsAnyStop(const host::TextStop&) {
    return true;
}

bool IsWordEdge(const host::TextStop& stop) {
    return stop.startsWord || stop.endsWord;
}

} // namespace

std::string_view TextLine::Bytes(int32 start, int32 length) const {
    return std::string_view(fText).substr(static_cast<size_t>(start), static_cast<size_t>(length));
}

void TextLine::SetText(std::string_view text) {
    fText = text;
    fPieces = {{Length(), std::nullopt}};
    Split({0, 0});
}

void TextLine::SetFont(const BFont& font) {
    fFont = font;
    for (Piece& piece : fPieces)
        piece.measured.reset();
}

// The piece before the change and the one behind it are cut anew: their ends may no longer be
// places to cut at.
void TextLine::Replace(Range range, std::string_view text) {
    int32 start = std::clamp(range.first, 0, Length());
    int32 end = std::clamp(range.second, start, Length());
    Position first = PieceOf(std::max(start - 1, 0));
    size_t last = std::min(PieceOf(end).piece + 1, fPieces.size() - 1);
    int32 length = static_cast<int32>(text.size()) - (end - start);
    for (size_t i = first.piece; i <= last; i++)
        length += fPieces[i].length;

    fText.replace(static_cast<size_t>(start), static_cast<size_t>(end - start), text);
    auto at = fPieces.begin() + static_cast<std::ptrdiff_t>(first.piece);
    fPieces.erase(at + 1, fPieces.begin() + static_cast<std::ptrdiff_t>(last) + 1);
    fPieces[first.piece] = {length, std::nullopt};
    if (length == 0 && fPieces.size() > 1)
        fPieces.erase(fPieces.begin() + static_cast<std::ptrdiff_t>(first.piece));
    else
        Split(first);
}

void TextLine::Split(Position at) {
    std::vector<Piece> pieces;
    int32 rest = fPieces[at.piece].length;
    while (rest > kMaxPiece) {
        int32 length = CutOf(at.start);
        pieces.push_back({length, std::nullopt});
        at.start += length;
        rest -= length;
    }
    fPieces[at.piece] = {rest, std::nullopt};
    fPieces.insert(fPieces.begin() + static_cast<std::ptrdiff_t>(at.piece), pieces.begin(),
                   pieces.end());
}

// The length of the piece that begins a longer rest of the text.
int32 TextLine::CutOf(int32 start) const {
    std::string_view longest = Bytes(start, kMaxPiece);
    size_t blank = longest.rfind(' ');
    if (blank != std::string_view::npos && blank >= kMinPiece)
        return static_cast<int32>(blank) + 1;
    int32 length = kMaxPiece;
    for (int i = 0; i < 3 && IsInsideCharacter(fText[static_cast<size_t>(start + length)]); i++)
        length--;
    // The last character may have marks behind the cut.
    auto stops = host::MeasureStops(SpecOf(fFont), Bytes(start, length), DisplayScale()).stops;
    int32 beforeLast = stops.size() > 2 ? stops[stops.size() - 2].offset : 0;
    return beforeLast >= kMinPiece ? beforeLast : length;
}

const host::TextStops& TextLine::Measured(Position at) const {
    const Piece& piece = fPieces[at.piece];
    if (!piece.measured) {
        piece.measured =
            host::MeasureStops(SpecOf(fFont), Bytes(at.start, piece.length), DisplayScale());
    }
    return *piece.measured;
}

// The end of the text belongs to the last piece, any other end to the piece behind it.
TextLine::Position TextLine::PieceOf(int32 offset) const {
    Position at{0, 0};
    while (at.piece + 1 < fPieces.size() && at.start + fPieces[at.piece].length <= offset)
        at.start += fPieces[at.piece++].length;
    return at;
}

// False behind the last piece.
bool TextLine::Follow(Position& at) const {
    at.start += fPieces[at.piece].length;
    return ++at.piece < fPieces.size();
}

float TextLine::Width(float enough) const {
    float width = 0;
    Position at{0, 0};
    do
        width += Measured(at).width;
    while (width < enough && Follow(at));
    return width;
}

float TextLine::PlaceOf(int32 offset) const {
    Position end = PieceOf(offset);
    float left = 0;
    for (Position at{0, 0}; at.piece < end.piece; Follow(at))
        left += Measured(at).width;
    float x = 0;
    for (const host::TextStop& stop : Measured(end).stops) {
        if (end.start + stop.offset > offset)
            break;
        x = stop.x;
    }
    return left + x;
}

// Makes `x` a place in that piece.
TextLine::Position TextLine::PieceAt(float& x) const {
    Position at{0, 0};
    Position next = at;
    while (Follow(next) && x > Measured(at).width) {
        x -= Measured(at).width;
        at = next;
    }
    return at;
}

int32 TextLine::OffsetAt(float x) const {
    Position at = PieceAt(x);
    const auto& stops = Measured(at).stops;
    auto nearest = std::min_element(stops.begin(), stops.end(), [x](const auto& a, const auto& b) {
        return std::abs(a.x - x) < std::abs(b.x - x);
    });
    return at.start + nearest->offset;
}

int32 TextLine::CharacterAt(float x) const {
    float inPiece = x;
    Position at = PieceAt(inPiece);
    const auto& stops = Measured(at).stops;
    auto covering = std::find_if(stops.begin(), stops.end(), [&](const host::TextStop& stop) {
        auto [from, to] = std::minmax(stop.x, stop.farX);
        return inPiece >= from && inPiece < to;
    });
    return covering != stops.end() ? at.start + covering->offset : OffsetAt(x);
}

template <typename Holds>
int32 TextLine::FindAfter(int32 offset, Holds holds) const {
    Position at = PieceOf(offset);
    do {
        for (const host::TextStop& stop : Measured(at).stops) {
            // The end of a piece is the beginning of the next, which knows more of it.
            bool isInside = stop.offset < fPieces[at.piece].length;
            if (isInside && at.start + stop.offset > offset && holds(stop))
                return at.start + stop.offset;
        }
    } while (Follow(at));
    return Length();
}

template <typename Holds>
int32 TextLine::FindBefore(int32 offset, Holds holds) const {
    Position at = PieceOf(std::max(offset - 1, 0));
    while (true) {
        const auto& stops = Measured(at).stops;
        for (auto stop = stops.rbegin(); stop != stops.rend(); ++stop) {
            bool isInside = stop->offset < fPieces[at.piece].length;
            if (isInside && at.start + stop->offset < offset && holds(*stop))
                return at.start + stop->offset;
        }
        if (at.piece == 0)
            return 0;
        at.start -= fPieces[--at.piece].length;
    }
}

int32 TextLine::Snapped(int32 offset) const {
    return offset <= 0 ? 0 : offset >= Length() ? Length() : FindAfter(offset - 1, IsAnyStop);
}

int32 TextLine::Before(int32 offset) const {
    return FindBefore(offset, IsAnyStop);
}

int32 TextLine::After(int32 offset) const {
    return FindAfter(offset, IsAnyStop);
}

int32 TextLine::WordBefore(int32 offset) const {
    return FindBefore(offset, [](const host::TextStop& stop) { return stop.startsWord; });
}

int32 TextLine::WordAfter(int32 offset) const {
    return FindAfter(offset, [](const host::TextStop& stop) { return stop.endsWord; });
}

TextLine::Range TextLine::WordAt(int32 offset) const {
    int32 start = FindBefore(std::min(offset + 1, Length()), IsWordEdge);
    return {start, FindAfter(start, IsWordEdge)};
}

template <typename Visit>
void TextLine::VisitPieces(float left, float right, Visit visit) const {
    float x = 0;
    Position at{0, 0};
    do {
        const host::TextStops& measured = Measured(at);
        if (x + measured.width >= left)
            visit(at, measured, x);
        x += measured.width;
    } while (x <= right && Follow(at));
}

std::vector<TextLine::Part> TextLine::PartsIn(float left, float right) const {
    std::vector<Part> parts;
    VisitPieces(left, right, [&](Position at, const host::TextStops&, float x) {
        parts.push_back({Bytes(at.start, fPieces[at.piece].length), x});
    });
    return parts;
}

std::vector<std::pair<float, float>> TextLine::StretchesIn(Range range, float left,
                                                           float right) const {
    std::vector<std::pair<float, float>> stretches;
    VisitPieces(left, right, [&](Position at, const host::TextStops& measured, float x) {
        for (const host::TextStop& stop : measured.stops) {
            int32 offset = at.start + stop.offset;
            if (offset < range.first || offset >= range.second || stop.x == stop.farX)
                continue;
            auto [from, to] = std::minmax(stop.x, stop.farX);
            if (!stretches.empty() && stretches.back().second == x + from)
                stretches.back().second = x + to;
            else
                stretches.emplace_back(x + from, x + to);
        }
    });
    return stretches;
}
