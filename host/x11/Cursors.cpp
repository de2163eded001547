#include "host/x11/Cursors.h"

#include <string_view>

namespace host {

namespace {

// In the server's cursor font, where each shape has its mask behind it.
constexpr uint16 kTextGlyph = 152;

} // namespace

xcb_cursor_t Cursors::Of(PointerShape shape) {
    if (shape == PointerShape::Arrow)
        return XCB_CURSOR_NONE;
    std::lock_guard lock(fLock);
    if (fText == XCB_CURSOR_NONE) {
        constexpr std::string_view kFont = "cursor";
        xcb_font_t font = xcb_generate_id(fConnection);
        xcb_open_font(fConnection, font, kFont.size(), kFont.data());
        fText = xcb_generate_id(fConnection);
        constexpr uint16 kWhite = 0xffff;
        xcb_create_glyph_cursor(fConnection, fText, font, font, kTextGlyph, kTextGlyph + 1, 0, 0, 0,
                                kWhite, kWhite, kWhite);
        xcb_close_font(fConnection, font);
    }
    return fText;
}

} // namespace host
