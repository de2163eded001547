#include "host/draw/TextStops.h"

#include "host/draw/TextLayouts.h"
#include "host/draw/VisibleText.h"

namespace host {

namespace {

// The edges of a character, in Pango's units from the line's left end.
struct Edges {
    int near = 0; // where it begins
    int far = 0;
};

// By characters, in the order of the text. One that no glyph shows has no width.
std::vector<Edges> CharacterEdges(PangoLayoutLine* line, const char* text, int count) {
    std::vector<Edges> edges(static_cast<std::size_t>(count));
    std::vector<int> widths;
    int left = 0;
    for (GSList* at = line->runs; at != nullptr; at = at->next) {
        auto* run = static_cast<PangoGlyphItem*>(at->data);
        const PangoItem& item = *run->item;
        widths.resize(static_cast<std::size_t>(item.num_chars));
        pango_glyph_item_get_logical_widths(run, text, widths.data());
        int width = pango_glyph_string_get_width(run->glyphs);
        bool goesLeft = item.analysis.level % 2 != 0;
        int place = goesLeft ? left + width : left;
        auto first = static_cast<std::size_t>(g_utf8_pointer_to_offset(text, text + item.offset));
        for (std::size_t i = 0; i < widths.size() && first + i < edges.size(); i++) {
            int next = goesLeft ? place - widths[i] : place + widths[i];
            edges[first + i] = {place, next};
            place = next;
        }
        left += width;
    }
    return edges;
}

} // namespace

TextStops MeasureStops(const FontSpec& font, std::string_view text, double scale) {
    TextLayouts& layouts = TextLayouts::Shared();
    auto lock = layouts.Lock();
    TextLayouts::Layout layout = layouts.MakeLayout(TextLayouts::KeyOf(font, scale), text);
    PangoLayoutLine* line = pango_layout_get_line_readonly(layout.get(), 0);
    int count = 0; // one more than there are characters
    const PangoLogAttr* attributes = pango_layout_get_log_attrs_readonly(layout.get(), &count);
    auto edges = CharacterEdges(line, pango_layout_get_text(layout.get()), count - 1);
    auto logical = [scale](int x) { return static_cast<float>(x / (PANGO_SCALE * scale)); };

    TextStops found;
    PangoRectangle extents;
    pango_layout_line_get_extents(line, nullptr, &extents);
    found.width = logical(extents.width);
    int offset = 0;
    for (int i = 0; i + 1 < count; i++) {
        const Edges& edge = edges[static_cast<std::size_t>(i)];
        if (attributes[i].is_cursor_position || i == 0) {
            found.stops.push_back({offset, logical(edge.near), logical(edge.near),
                                   attributes[i].is_word_start != 0,
                                   attributes[i].is_word_end != 0});
        }
        found.stops.back().farX = logical(edge.far);
        offset += ShownLength(text.substr(static_cast<std::size_t>(offset)));
    }
    float end = found.stops.empty() ? 0 : found.stops.back().farX;
    found.stops.push_back({offset, end, end, false, attributes[count - 1].is_word_end != 0});
    return found;
}

} // namespace host
