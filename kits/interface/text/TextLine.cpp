#include "kits/interface/text/TextLine.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kits/interface/drawing/Font.h"

namespace {

bool IsAnyStop(const host::TextStop&) {
    return true;
}

bool IsWordEdge(const host::TextStop& stop) {
    return stop.startsWord || stop.endsWord;
}

} // namespace

void TextLine::SetText(std::string_view text) {
    fText = text;
    fMeasured.reset();
}

void TextLine::Replace(Range range, std::string_view text) {
    fText.replace(static_cast<size_t>(range.first), static_cast<size_t>(range.second - range.first),
                  text);
    fMeasured.reset();
}

void TextLine::SetFont(const BFont& font) {
    fFont = font;
    fMeasured.reset();
}

const host::TextStops& TextLine::Measured() const {
    const double scale = DisplayScale();
    if (!fMeasured || std::exchange(fMeasuredAt, scale) != scale)
        fMeasured = host::MeasureStops(SpecOf(fFont), fText, scale);
    return *fMeasured;
}

float TextLine::PlaceOf(int32 offset) const {
    const auto& stops = Measured().stops;
    auto behind = std::ranges::upper_bound(stops, offset, {}, &host::TextStop::offset);
    return behind == stops.begin() ? 0 : std::prev(behind)->x;
}

int32 TextLine::OffsetAt(float x) const {
    return std::ranges::min_element(
               Measured().stops, {},
               [x](const host::TextStop& stop) { return std::abs(stop.x - x); })
        ->offset;
}

int32 TextLine::CharacterAt(float x) const {
    const auto& stops = Measured().stops;
    auto covering = std::ranges::find_if(stops, [x](const host::TextStop& stop) {
        auto [from, to] = std::minmax(stop.x, stop.farX);
        return x >= from && x < to;
    });
    return covering != stops.end() ? covering->offset : OffsetAt(x);
}

template <typename Holds>
int32 TextLine::FindAfter(int32 offset, Holds holds) const {
    for (const host::TextStop& stop : Measured().stops) {
        if (stop.offset > offset && holds(stop))
            return stop.offset;
    }
    return Length();
}

template <typename Holds>
int32 TextLine::FindBefore(int32 offset, Holds holds) const {
    const auto& stops = Measured().stops;
    auto found = std::find_if(stops.rbegin(), stops.rend(), [&](const host::TextStop& stop) {
        return stop.offset < offset && holds(stop);
    });
    return found == stops.rend() ? 0 : found->offset;
}

int32 TextLine::Snapped(int32 offset) const {
    return offset <= 0 ? 0 : FindAfter(offset - 1, IsAnyStop);
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

std::vector<std::pair<float, float>> TextLine::StretchesIn(Range range) const {
    std::vector<std::pair<float, float>> stretches;
    for (const host::TextStop& stop : Measured().stops) {
        if (stop.offset < range.first || stop.offset >= range.second || stop.x == stop.farX)
            continue;
        auto [from, to] = std::minmax(stop.x, stop.farX);
        if (!stretches.empty() && stretches.back().second == from)
            stretches.back().second = to;
        else
            stretches.emplace_back(from, to);
    }
    return stretches;
}
