#include "host/draw/TextLayouts.h"

#include <algorithm>
#include <cmath>

#include "base/Utf8.h"

namespace host {

namespace {

// The bar's digits and the labels of an open menu with its parent, so that each is laid out once; a
// layout is some kilobytes.
constexpr std::size_t kKeptLayouts = 48;
// A longer text is that of a field, which changes with each key: only the last one is kept.
constexpr std::size_t kLongText = 256;
// Fonts in use at once are a handful.
constexpr std::size_t kKeptExtents = 16;

// Laying out takes time for every byte, and a name or an address may be of any length.
constexpr std::size_t kMaxBytes = 4096;
// In every font, so that it brings in no second one.
constexpr std::string_view kControlMark = "\xc2\xb7";

constexpr double kMaxPixelSize = 200;

} // namespace

std::string VisibleText(std::string_view text) {
    std::string visible;
    visible.reserve(std::min(text.size(), kMaxBytes));
    while (!text.empty() && visible.size() < kMaxBytes) {
        Utf8Character character = FirstCharacter(text);
        if (character.code == kNoCharacter)
            visible += kReplacementMark;
        else if (IsControl(character.code))
            visible += kControlMark;
        else
            visible += text.substr(0, character.length);
        text.remove_prefix(character.length);
    }
    return visible;
}

TextLayouts& TextLayouts::Shared() {
    // Never destroyed: threads may still draw while the process ends.
    static TextLayouts& shared = *new TextLayouts;
    return shared;
}

TextLayouts::FontKey TextLayouts::KeyOf(const FontSpec& font, double scale) {
    double size = font.size * scale;
    size = size > 1 ? std::min(size, kMaxPixelSize) : 1;
    return {static_cast<int>(std::lround(size * PANGO_SCALE)), font.bold};
}

TextLayouts::Description TextLayouts::Describe(FontKey font) {
    Description description(pango_font_description_new(), pango_font_description_free);
    pango_font_description_set_family_static(description.get(), "sans-serif");
    pango_font_description_set_weight(description.get(),
                                      font.bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_font_description_set_absolute_size(description.get(), font.pangoSize);
    return description;
}

TextLayouts::TextLayouts() {
    // A new map has a thread of Pango's read the font settings.
    std::unique_ptr<PangoFontMap, ReleaseObject> fonts(pango_cairo_font_map_new());
    fContext.reset(pango_font_map_create_context(fonts.get()));

    // A layout takes this for granted; said aloud, a font that is loaded by itself is the same one.
    pango_context_set_language(fContext.get(), pango_language_get_default());

    // Whole-pixel metrics: a text measures the same wherever it is drawn.
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_ON);
    pango_cairo_context_set_font_options(fContext.get(), options);
    cairo_font_options_destroy(options);
}

TextLayouts::Layout TextLayouts::MakeLayout(FontKey font, std::string_view text) {
    Layout layout(pango_layout_new(fContext.get()));
    pango_layout_set_font_description(layout.get(), Describe(font).get());
    std::string visible = VisibleText(text);
    pango_layout_set_text(layout.get(), visible.data(), static_cast<int>(visible.size()));
    return layout;
}

PangoLayoutLine* TextLayouts::LineOf(FontKey font, std::string_view text) {
    auto found = std::ranges::find_if(
        fEntries, [&](const Entry& entry) { return entry.font == font && entry.text == text; });
    if (found != fEntries.end()) {
        fEntries.splice(fEntries.begin(), fEntries, found);
    } else {
        std::erase_if(fEntries, [](const Entry& entry) { return entry.text.size() > kLongText; });
        fEntries.push_front({font, std::string(text), MakeLayout(font, text)});
        if (fEntries.size() > kKeptLayouts)
            fEntries.pop_back();
    }
    return pango_layout_get_line_readonly(fEntries.front().layout.get(), 0);
}

cairo_font_extents_t TextLayouts::ExtentsOf(FontKey font) {
    for (const Extents& known : fExtents) {
        if (known.font == font)
            return known.extents;
    }
    // Pango's own metrics would lay out a sample text to find the width of a digit.
    Extents made{font, {}};
    std::unique_ptr<PangoFont, ReleaseObject> loaded(
        pango_context_load_font(fContext.get(), Describe(font).get()));
    if (loaded) {
        cairo_scaled_font_extents(pango_cairo_font_get_scaled_font(PANGO_CAIRO_FONT(loaded.get())),
                                  &made.extents);
    }
    fExtents.push_front(made);
    if (fExtents.size() > kKeptExtents)
        fExtents.pop_back();
    return made.extents;
}

} // namespace host
