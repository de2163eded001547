#include "host/draw/TextLayouts.h"

#include <algorithm>
#include <cmath>
#include <list>
#include <map>

#include "base/Utf8.h"

namespace host {

namespace {

// The bar's digits and the labels of an open menu with its parent, so that each is laid out once; a
// layout is some kilobytes.
constexpr std::size_t kKeptLayouts = 24;
// A longer text is that of a field, which changes with each key: only the last one is kept.
constexpr std::size_t kLongText = 256;

// Laying out takes time for every byte, and a name or an address may be of any length.
constexpr std::size_t kMaxBytes = 4096;
// In every font, so that it brings in no second one.
constexpr std::string_view kControlMark = "\xc2\xb7";

constexpr double kMaxPixelSize = 200;

// A font at a size in device pixels, in Pango's units.
struct FontKey {
    FontKey(const FontSpec& font, double scale)
        : bold(font.bold) {
        const double pixels = font.size * scale;
        size = static_cast<int>(
            std::lround((pixels > 1 ? std::min(pixels, kMaxPixelSize) : 1) * PANGO_SCALE));
    }
    auto operator<=>(const FontKey&) const = default;

    int size;
    bool bold;
};

using Description = std::unique_ptr<PangoFontDescription, decltype(&pango_font_description_free)>;

Description Describe(FontKey font) {
    Description description(pango_font_description_new(), pango_font_description_free);
    pango_font_description_set_family_static(description.get(), "sans-serif");
    pango_font_description_set_weight(description.get(),
                                      font.bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_font_description_set_absolute_size(description.get(), font.size);
    return description;
}

std::string VisibleLines(std::string_view text) {
    std::string visible;
    while (true) {
        std::size_t end = text.find('\n');
        visible += VisibleText(text.substr(0, end));
        if (end == std::string_view::npos)
            return visible;
        visible += '\n';
        text.remove_prefix(end + 1);
    }
}

void Add(PangoAttrList* attributes, PangoAttribute* attribute, std::size_t start, std::size_t end) {
    attribute->start_index = static_cast<guint>(start);
    attribute->end_index = static_cast<guint>(end);
    pango_attr_list_insert(attributes, attribute);
}

PangoAttribute* ColorOf(rgb_color color) {
    auto wide = [](uint8 channel) { return static_cast<guint16>(channel * 0x101); };
    return pango_attr_foreground_new(wide(color.red), wide(color.green), wide(color.blue));
}

int PangoUnits(float length, double scale) {
    return static_cast<int>(std::lround(length * scale * PANGO_SCALE));
}

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

// The only one is made with the first use and never destroyed: threads may still draw while the
// process ends.
struct TextLayouts::Kept {
    struct Line {
        FontKey font;
        std::string text; // as it was given
        Layout layout;
    };

    Kept();

    std::mutex lock;
    std::unique_ptr<PangoContext, Release> context;
    std::list<Line> lines; // the last used first
    std::map<FontKey, cairo_font_extents_t> extents;
};

TextLayouts::Kept::Kept() {
    // A new map has a thread of Pango's read the font settings.
    std::unique_ptr<PangoFontMap, Release> fonts(pango_cairo_font_map_new());
    context.reset(pango_font_map_create_context(fonts.get()));

    // A layout takes this for granted; said aloud, a font that is loaded by itself is the same one.
    pango_context_set_language(context.get(), pango_language_get_default());

    // Whole-pixel metrics: a text measures the same wherever it is drawn.
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_ON);
    pango_cairo_context_set_font_options(context.get(), options);
    cairo_font_options_destroy(options);
}

TextLayouts::TextLayouts()
    : fKept([]() -> Kept& {
        static Kept& kept = *new Kept;
        return kept;
    }())
    , fLock(fKept.lock) {}

TextLayouts::Layout TextLayouts::MakeLayout(const FontSpec& font, std::string_view text,
                                            double scale) {
    Layout layout(pango_layout_new(fKept.context.get()));
    pango_layout_set_font_description(layout.get(), Describe({font, scale}).get());
    std::string visible = VisibleText(text);
    pango_layout_set_text(layout.get(), visible.data(), static_cast<int>(visible.size()));
    return layout;
}

PangoLayoutLine* TextLayouts::LineOf(const FontSpec& font, std::string_view text, double scale) {
    const FontKey key(font, scale);
    auto& lines = fKept.lines;
    auto found = std::ranges::find_if(
        lines, [&](const Kept::Line& line) { return line.font == key && line.text == text; });
    if (found != lines.end()) {
        lines.splice(lines.begin(), lines, found);
    } else {
        std::erase_if(lines, [](const Kept::Line& line) { return line.text.size() > kLongText; });
        lines.push_front({key, std::string(text), MakeLayout(font, text, scale)});
        if (lines.size() > kKeptLayouts)
            lines.pop_back();
    }
    return pango_layout_get_line_readonly(lines.front().layout.get(), 0);
}

TextLayouts::Layout TextLayouts::MakeLayout(const TextBlock& block, double scale) {
    Layout layout = MakeLayout(block.runs[0].font, {}, scale);
    PangoAttrList* attributes = pango_attr_list_new();
    std::string visible;
    for (std::size_t i = 0; i < block.runs.size(); i++) {
        const TextBlock::Run& run = block.runs[i];
        bool isLast = i + 1 == block.runs.size();
        auto from = static_cast<std::size_t>(run.start);
        auto length = isLast ? std::string::npos : block.runs[i + 1].start - from;
        std::size_t start = visible.size();
        visible += VisibleLines(std::string_view(block.text).substr(from, length));
        Add(attributes, pango_attr_font_desc_new(Describe({run.font, scale}).get()), start,
            visible.size());
        Add(attributes, ColorOf(run.color), start, visible.size());
    }
    Add(attributes, pango_attr_insert_hyphens_new(false), 0, visible.size());
    pango_layout_set_attributes(layout.get(), attributes);
    pango_attr_list_unref(attributes);
    pango_layout_set_text(layout.get(), visible.data(), static_cast<int>(visible.size()));
    pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
    if (block.width >= 0)
        pango_layout_set_width(layout.get(), PangoUnits(block.width, scale));
    return layout;
}

// Pango keeps a line of each paragraph, however low the layout is: those that do not fit are taken
// away first.
void TextLayouts::CutLayout(PangoLayout* layout, float height, double scale) {
    int room = PangoUnits(height, scale);
    int bottom = 0;
    const PangoLayoutLine* last = nullptr;
    for (GSList* at = pango_layout_get_lines_readonly(layout); at; at = at->next) {
        auto* line = static_cast<PangoLayoutLine*>(at->data);
        PangoRectangle extents;
        pango_layout_line_get_extents(line, nullptr, &extents);
        bottom += extents.height;
        if (bottom > room)
            break;
        last = line;
    }
    if (bottom <= room)
        return;
    std::string text = pango_layout_get_text(layout);
    text.resize(last ? static_cast<std::size_t>(last->start_index + last->length) : 0);
    text += kEllipsis;
    pango_layout_set_text(layout, text.data(), static_cast<int>(text.size()));
    pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
    pango_layout_set_height(layout, std::max(room, 0));
}

// Pango's own metrics would lay out a sample text to find the width of a digit.
cairo_font_extents_t TextLayouts::ExtentsOf(const FontSpec& font, double scale) {
    auto [known, isNew] = fKept.extents.try_emplace({font, scale});
    std::unique_ptr<PangoFont, Release> loaded(
        isNew ? pango_context_load_font(fKept.context.get(), Describe(known->first).get())
              : nullptr);
    if (loaded) {
        cairo_scaled_font_extents(pango_cairo_font_get_scaled_font(PANGO_CAIRO_FONT(loaded.get())),
                                  &known->second);
    }
    return known->second;
}

} // namespace host
