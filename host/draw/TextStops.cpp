#include "host/draw/TextStops.h"

#include "host/draw/TextLayouts.h"
#include "host/draw/VisibleText.h"

namespace host {

namespace {

float LogicalX(PangoLayoutLine* line, int index, bool trailing, double scale) {
    int x = 0;
    pango_layout_line_index_to_x(line, index, trailing, &x);
    return static_cast<float>(x / (PANGO_SCALE * scale));
}

} // namespace

TextStops MeasureStops(const FontSpec& font, std::string_view text, double scale) {
    TextLayouts& layouts = TextLayouts::Shared();
    auto lock = layouts.Lock();
    TextLayouts::Layout layout = layouts.MakeLayout(TextLayouts::KeyOf(font, scale), text);
    PangoLayoutLine* line = pango_layout_get_line_readonly(layout.get(), 0);
    const char* shown = pango_layout_get_text(layout.get());
    int count = 0;
    const PangoLogAttr* attributes = pango_layout_get_log_attrs_readonly(layout.get(), &count);

    TextStops found;
    PangoRectangle logical;
    pango_layout_line_get_extents(line, nullptr, &logical);
    found.width = static_cast<float>(logical.width / (PANGO_SCALE * scale));
    int offset = 0;
    int index = 0;
    int lastIndex = 0;
    for (int i = 0; i < count; i++) {
        if (attributes[i].is_cursor_position || i + 1 == count) {
            if (!found.stops.empty())
                found.stops.back().farX = LogicalX(line, lastIndex, true, scale);
            float x = LogicalX(line, index, false, scale);
            found.stops.push_back(
                {offset, x, x, attributes[i].is_word_start != 0, attributes[i].is_word_end != 0});
        }
        if (i + 1 == count)
            break;
        lastIndex = index;
        offset += ShownLength(text.substr(offset));
        index += CharacterLength(shown[index]);
    }
    return found;
}

} // namespace host
