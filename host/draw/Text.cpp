#include "host/draw/Text.h"

#include <algorithm>
#include <cmath>
#include <system_error>

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

float Logical(int pangoUnits, double scale) {
    return static_cast<float>(pangoUnits / (PANGO_SCALE * scale));
}

LineSize SizeOf(PangoLayoutLine* line, double scale) {
    PangoRectangle extents;
    pango_layout_line_get_extents(line, nullptr, &extents);
    return {Logical(extents.width, scale), Logical(extents.height, scale)};
}

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

// The libraries free what they share when the process exits, which no thread may use then. Without
// a thread the first text finds its font itself.
std::future<void> PrepareFont(const FontSpec& font, double scale) {
    try {
        return std::async(std::launch::async, [font, scale] {
            MeasureFont(font, scale);
            MeasureText(font, "0", scale);
        });
    } catch (const std::system_error&) {
        return {};
    }
}

FontHeight MeasureFont(const FontSpec& font, double scale) {
    const cairo_font_extents_t extents = TextLayouts().ExtentsOf(font, scale);
    double leading = std::max(0.0, extents.height - extents.ascent - extents.descent);
    return {static_cast<float>(extents.ascent / scale), static_cast<float>(extents.descent / scale),
            static_cast<float>(leading / scale)};
}

float MeasureText(const FontSpec& font, std::string_view text, double scale) {
    if (text.empty())
        return 0;
    TextLayouts layouts;
    return SizeOf(layouts.LineOf(font, text, scale), scale).width;
}

// Whole logical pixels, so that a glyph narrower than one has a valid rectangle.
BRect MeasureInk(const FontSpec& font, std::string_view text, double scale) {
    TextLayouts layouts;
    PangoRectangle ink;
    pango_layout_line_get_pixel_extents(layouts.LineOf(font, text, scale), &ink, nullptr);
    if (ink.width <= 0 || ink.height <= 0)
        return {};
    return {static_cast<float>(std::floor(ink.x / scale)),
            static_cast<float>(std::floor(ink.y / scale)),
            static_cast<float>(std::ceil((ink.x + ink.width) / scale) - 1),
            static_cast<float>(std::ceil((ink.y + ink.height) / scale) - 1)};
}

TextStops MeasureStops(const FontSpec& font, std::string_view text, double scale) {
    TextLayouts layouts;
    const TextLayouts::Layout layout = layouts.MakeLayout(font, text, scale);
    int count = 0; // one more than there are characters
    const PangoLogAttr* attributes = pango_layout_get_log_attrs_readonly(layout.get(), &count);
    std::string_view shown = pango_layout_get_text(layout.get());
    auto edges = CharacterEdges(layout.get(), shown.size());

    TextStops found;
    found.width = SizeOf(pango_layout_get_line_readonly(layout.get(), 0), scale).width;
    int offset = 0;
    std::size_t index = 0;
    for (int i = 0; i + 1 < count; i++) {
        const Edges& edge = edges[index];
        index += FirstCharacter(shown.substr(index)).length;
        if (attributes[i].is_cursor_position || i == 0) {
            const float x = Logical(edge.near, scale);
            found.stops.push_back(
                {offset, x, x, attributes[i].is_word_start != 0, attributes[i].is_word_end != 0});
        }
        found.stops.back().farX = Logical(edge.far, scale);
        offset += static_cast<int>(FirstCharacter(text.substr(offset)).length);
    }
    float end = found.stops.empty() ? 0 : found.stops.back().farX;
    found.stops.push_back(
        {static_cast<int>(text.size()), end, end, false, attributes[count - 1].is_word_end != 0});
    return found;
}

std::vector<LineSize> MeasureLines(const TextBlock& block, double scale) {
    TextLayouts layouts;
    const TextLayouts::Layout layout = layouts.MakeLayout(block, scale);
    std::vector<LineSize> sizes;
    for (GSList* at = pango_layout_get_lines_readonly(layout.get()); at; at = at->next)
        sizes.push_back(SizeOf(static_cast<PangoLayoutLine*>(at->data), scale));
    return sizes;
}

std::string TruncateText(const FontSpec& font, std::string_view text, float width, double scale) {
    if (MeasureText(font, text, scale) <= width)
        return std::string(text);
    float room = width - MeasureText(font, kEllipsis, scale);
    if (!(room >= 0))
        return {};
    int cut = 0;
    pango_layout_line_x_to_index(TextLayouts().LineOf(font, text, scale),
                                 static_cast<int>(room * scale * PANGO_SCALE), &cut, nullptr);
    std::string kept = VisibleText(text).substr(0, cut);
    // Letters may stand closer together in the whole text than at its new end.
    while (!kept.empty() && MeasureText(font, kept + std::string(kEllipsis), scale) > width)
        kept.resize(CutUtf8(kept, kept.size() - 1).size());
    return kept + std::string(kEllipsis);
}

} // namespace host
