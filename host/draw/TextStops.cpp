#include "host/draw/TextStops.h"

#include "base/Utf8.h"
#include "host/draw/TextLayouts.h"

namespace host {

namespace {

struct FreeIter {
    void operator()(PangoLayoutIter* iter) const { pango_layout_iter_free(iter); }
};

// The edges of a character, in Pango's units from the line's left end.
struct Edges {
    int near = 0; // where it begins
    int far = 0;
};

// By the first bytes of the characters. One that no glyph shows has no width.
std::vector<Edges> CharacterEdges(PangoLayout* layout, std::size_t length) {
    std::vector<Edges> edges(length);
    std::unique_ptr<PangoLayoutIter, FreeIter> at(pango_layout_get_iter(layout));
    do {
        int index = pango_layout_iter_get_index(at.get());
        if (index < 0 || static_cast<std::size_t>(index) >= length)
            continue;
        PangoRectangle place;
        pango_layout_iter_get_char_extents(at.get(), &place);
        int right = place.x + place.width;
        bool goesLeft = pango_layout_get_direction(layout, index) == PANGO_DIRECTION_RTL;
        edges[static_cast<std::size_t>(index)] =
            goesLeft ? Edges{right, place.x} : Edges{place.x, right};
    } while (pango_layout_iter_next_char(at.get()));
    return edges;
}

} // namespace

TextStops MeasureStops(const FontSpec& font, std::string_view text, double scale) {
    TextLayouts& layouts = TextLayouts::Shared();
    auto lock = layouts.Lock();
    TextLayouts::Layout layout = layouts.MakeLayout(TextLayouts::KeyOf(font, scale), text);
    int count = 0; // one more than there are characters
    const PangoLogAttr* attributes = pango_layout_get_log_attrs_readonly(layout.get(), &count);
    std::string_view shown = pango_layout_get_text(layout.get());
    auto edges = CharacterEdges(layout.get(), shown.size());
    auto logical = [scale](int x) { return static_cast<float>(x / (PANGO_SCALE * scale)); };

    TextStops found;
    PangoRectangle extents;
    pango_layout_get_extents(layout.get(), nullptr, &extents);
    found.width = logical(extents.width);
    int offset = 0;
    std::size_t index = 0;
    for (int i = 0; i + 1 < count; i++) {
        const Edges& edge = edges[index];
        index += FirstCharacter(shown.substr(index)).length;
        if (attributes[i].is_cursor_position || i == 0) {
            found.stops.push_back({offset, logical(edge.near), logical(edge.near),
                                   attributes[i].is_word_start != 0,
                                   attributes[i].is_word_end != 0});
        }
        found.stops.back().farX = logical(edge.far);
        offset += static_cast<int>(FirstCharacter(text.substr(offset)).length);
    }
    float end = found.stops.empty() ? 0 : found.stops.back().farX;
    found.stops.push_back(
        {static_cast<int>(text.size()), end, end, false, attributes[count - 1].is_word_end != 0});
    return found;
}

} // namespace host
