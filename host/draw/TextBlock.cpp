#include "host/draw/TextBlock.h"

#include <algorithm>
#include <cmath>

#include "host/draw/TextLayouts.h"

namespace host {

namespace {

constexpr std::string_view kEllipsis = "\xe2\x80\xa6";

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

TextLayouts::Layout TextLayouts::MakeLayout(const TextBlock& block, double scale) {
    Layout layout = MakeLayout(KeyOf(block.runs[0].font, scale), {});
    PangoAttrList* attributes = pango_attr_list_new();
    std::string visible;
    for (std::size_t i = 0; i < block.runs.size(); i++) {
        const TextBlock::Run& run = block.runs[i];
        bool isLast = i + 1 == block.runs.size();
        auto from = static_cast<std::size_t>(run.start);
        auto length = isLast ? std::string::npos : block.runs[i + 1].start - from;
        std::size_t start = visible.size();
        visible += VisibleLines(std::string_view(block.text).substr(from, length));
        Add(attributes, pango_attr_font_desc_new(Describe(KeyOf(run.font, scale)).get()), start,
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

std::vector<LineSize> MeasureLines(const TextBlock& block, double scale) {
    TextLayouts& layouts = TextLayouts::Shared();
    auto lock = layouts.Lock();
    TextLayouts::Layout layout = layouts.MakeLayout(block, scale);
    std::vector<LineSize> sizes;
    for (GSList* at = pango_layout_get_lines_readonly(layout.get()); at; at = at->next) {
        PangoRectangle extents;
        pango_layout_line_get_extents(static_cast<PangoLayoutLine*>(at->data), nullptr, &extents);
        auto logical = [scale](int x) { return static_cast<float>(x / (PANGO_SCALE * scale)); };
        sizes.push_back({logical(extents.width), logical(extents.height)});
    }
    return sizes;
}

} // namespace host
