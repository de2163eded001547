#include "host/draw/Font.h"

#include <algorithm>
#include <cmath>
#include <system_error>

#include "base/Utf8.h"
#include "host/draw/TextLayouts.h"

namespace host {

namespace {

constexpr std::string_view kEllipsis = "\xe2\x80\xa6";

float LogicalWidth(PangoLayoutLine* line, double scale) {
    PangoRectangle logical;
    pango_layout_line_get_extents(line, nullptr, &logical);
    return static_cast<float>(logical.width / (PANGO_SCALE * scale));
}

// Whole logical pixels, so that a glyph narrower than one has a valid rectangle.
BRect LogicalInk(PangoLayoutLine* line, double scale) {
    PangoRectangle ink;
    pango_layout_line_get_pixel_extents(line, &ink, nullptr);
    if (ink.width <= 0 || ink.height <= 0)
        return {};
    return {static_cast<float>(std::floor(ink.x / scale)),
            static_cast<float>(std::floor(ink.y / scale)),
            static_cast<float>(std::ceil((ink.x + ink.width) / scale) - 1),
            static_cast<float>(std::ceil((ink.y + ink.height) / scale) - 1)};
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
    TextLayouts& layouts = TextLayouts::Shared();
    auto lock = layouts.Lock();
    cairo_font_extents_t extents = layouts.ExtentsOf(TextLayouts::KeyOf(font, scale));
    double leading = std::max(0.0, extents.height - extents.ascent - extents.descent);
    return {static_cast<float>(extents.ascent / scale), static_cast<float>(extents.descent / scale),
            static_cast<float>(leading / scale)};
}

float MeasureText(const FontSpec& font, std::string_view text, double scale) {
    if (text.empty())
        return 0;
    TextLayouts& layouts = TextLayouts::Shared();
    auto lock = layouts.Lock();
    return LogicalWidth(layouts.LineOf(TextLayouts::KeyOf(font, scale), text), scale);
}

BRect MeasureInk(const FontSpec& font, std::string_view text, double scale) {
    if (text.empty())
        return {};
    TextLayouts& layouts = TextLayouts::Shared();
    auto lock = layouts.Lock();
    return LogicalInk(layouts.LineOf(TextLayouts::KeyOf(font, scale), text), scale);
}

std::vector<BRect> MeasureGlyphs(const FontSpec& font, std::string_view text, double scale) {
    std::string visible = VisibleText(text);
    TextLayouts& layouts = TextLayouts::Shared();
    auto lock = layouts.Lock();
    auto key = TextLayouts::KeyOf(font, scale);
    std::vector<BRect> glyphs;
    std::string_view rest = visible;
    while (!rest.empty()) {
        std::string_view character = rest.substr(0, FirstCharacter(rest).length);
        glyphs.push_back(LogicalInk(layouts.LineOf(key, character), scale));
        rest.remove_prefix(character.size());
    }
    return glyphs;
}

std::string TruncateText(const FontSpec& font, std::string_view text, float width, double scale) {
    TextLayouts& layouts = TextLayouts::Shared();
    auto lock = layouts.Lock();
    auto key = TextLayouts::KeyOf(font, scale);
    auto widthOf = [&](std::string_view part) {
        return part.empty() ? 0 : LogicalWidth(layouts.LineOf(key, part), scale);
    };
    if (widthOf(text) <= width)
        return std::string(text);

    float room = width - widthOf(kEllipsis);
    if (!(room >= 0))
        return {};
    int cut = 0;
    pango_layout_line_x_to_index(layouts.LineOf(key, text),
                                 static_cast<int>(room * scale * PANGO_SCALE), &cut, nullptr);
    std::string kept = VisibleText(text).substr(0, cut);
    // Letters may stand closer together in the whole text than at its new end.
    while (!kept.empty() && widthOf(kept + std::string(kEllipsis)) > width)
        kept.resize(CutUtf8(kept, kept.size() - 1).size());
    return kept + std::string(kEllipsis);
}

} // namespace host
