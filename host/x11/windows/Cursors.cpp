#include "host/x11/windows/Cursors.h"

#include <algorithm>
#include <cmath>

#include <xcb/xcb_cursor.h>

namespace host {

namespace {

constexpr int kSide = 16;
// The size of pointers beside which one of 16 pixels looks right.
constexpr double kUsualSize = 24;

// In half steps, so that lines stay about as thick as each other.
double ScaleFor(int size) {
    return std::clamp(std::round(size / kUsualSize * 2) / 2, 1.0, 8.0);
}

int Scaled(int place, double scale) {
    return static_cast<int>(std::floor(place * scale));
}

} // namespace

xcb_cursor_t Cursors::Of(PointerShape shape) {
    if (shape == PointerShape::Arrow)
        return XCB_CURSOR_NONE;
    std::lock_guard lock(fLock);
    if (fText == XCB_CURSOR_NONE)
        fText = LoadText();
    return fText;
}

xcb_cursor_t Cursors::LoadText() const {
    xcb_cursor_context_t* context = nullptr;
    auto* screen = const_cast<xcb_screen_t*>(&fConnection.Screen());
    if (xcb_cursor_context_new(fConnection, screen, &context) < 0)
        return XCB_CURSOR_NONE;
    xcb_cursor_t cursor = xcb_cursor_load_cursor(context, "xterm");
    xcb_cursor_context_free(context);
    return cursor;
}

void Cursors::ForgetTheme() {
    std::lock_guard lock(fLock);
    // Not freed: another thread may be about to show it.
    fText = XCB_CURSOR_NONE;
}

xcb_cursor_t Cursors::Of(const PointerImage& image, int size) {
    const double scale = ScaleFor(size);
    std::lock_guard lock(fLock);
    for (const OwnCursor& own : fOwn) {
        if (own.image == image && own.scale == scale)
            return own.cursor;
    }
    fOwn.push_back({image, scale, Make(image, scale)});
    return fOwn.back().cursor;
}

xcb_cursor_t Cursors::Make(const PointerImage& image, double scale) const {
    constexpr uint16 kWhite = 0xffff;
    const xcb_pixmap_t ink = MakeBits(image.ink, scale);
    const xcb_pixmap_t mask = MakeBits(image.mask, scale);
    const xcb_cursor_t cursor = xcb_generate_id(fConnection);
    xcb_create_cursor(fConnection, cursor, ink, mask, 0, 0, 0, kWhite, kWhite, kWhite,
                      static_cast<uint16>(Scaled(image.hotX, scale)),
                      static_cast<uint16>(Scaled(image.hotY, scale)));
    xcb_free_pixmap(fConnection, ink);
    xcb_free_pixmap(fConnection, mask);
    return cursor;
}

// Drawn, since the order of bits in an image is each server's own.
xcb_pixmap_t Cursors::MakeBits(const std::array<uint16, 16>& rows, double scale) const {
    std::vector<xcb_rectangle_t> set;
    for (int row = 0; row < kSide; row++) {
        for (int column = 0; column < kSide; column++) {
            if ((rows[static_cast<size_t>(row)] & 0x8000 >> column) == 0)
                continue;
            const int x = Scaled(column, scale), y = Scaled(row, scale);
            set.push_back({static_cast<int16>(x), static_cast<int16>(y),
                           static_cast<uint16>(Scaled(column + 1, scale) - x),
                           static_cast<uint16>(Scaled(row + 1, scale) - y)});
        }
    }
    const auto side = static_cast<uint16>(Scaled(kSide, scale));
    const xcb_rectangle_t all{0, 0, side, side};
    const xcb_pixmap_t pixmap = xcb_generate_id(fConnection);
    const xcb_gcontext_t pen = xcb_generate_id(fConnection);
    uint32 color = 0;
    xcb_create_pixmap(fConnection, 1, pixmap, fConnection.Root(), side, side);
    xcb_create_gc(fConnection, pen, pixmap, XCB_GC_FOREGROUND, &color);
    xcb_poly_fill_rectangle(fConnection, pixmap, pen, 1, &all);
    color = 1;
    xcb_change_gc(fConnection, pen, XCB_GC_FOREGROUND, &color);
    xcb_poly_fill_rectangle(fConnection, pixmap, pen, static_cast<uint32>(set.size()), set.data());
    xcb_free_gc(fConnection, pen);
    return pixmap;
}

} // namespace host
