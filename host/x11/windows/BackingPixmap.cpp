#include "host/x11/windows/BackingPixmap.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace host {

namespace {

xcb_rectangle_t Rectangle(int left, int top, int width, int height) {
    return {static_cast<int16>(left), static_cast<int16>(top), static_cast<uint16>(width),
            static_cast<uint16>(height)};
}

xcb_gcontext_t MakePen(const Connection& connection, uint32 color) {
    xcb_gcontext_t pen = xcb_generate_id(connection);
    const uint32 values[] = {color, 0};
    xcb_create_gc(connection, pen, connection.Root(), XCB_GC_FOREGROUND | XCB_GC_GRAPHICS_EXPOSURES,
                  values);
    return pen;
}

} // namespace

Pens::Pens(const Connection& connection)
    : black(MakePen(connection, 0))
    , white(MakePen(connection, 0xffffff)) {}

BackingPixmap::BackingPixmap(const Connection& connection, const Pens& pens)
    : fConnection(connection)
    , fPens(pens) {}

BackingPixmap::~BackingPixmap() {
    if (fPixmap != XCB_PIXMAP_NONE)
        xcb_free_pixmap(fConnection, fPixmap);
}

PixelRect BackingPixmap::Bounds() const {
    return {0, 0, fContent.right + 2 * fBorder, fContent.bottom + 2 * fBorder};
}

void BackingPixmap::Resize(xcb_window_t window, int contentWidth, int contentHeight, int border) {
    PixelRect content{0, 0, contentWidth, contentHeight};
    if (content == fContent && border == fBorder)
        return;
    PixelRect common = Intersection(content, fContent);
    xcb_pixmap_t old = fPixmap;
    fContent = content;
    int oldBorder = std::exchange(fBorder, border);
    fPixmap = xcb_generate_id(fConnection);
    PixelRect bounds = Bounds();
    xcb_create_pixmap(fConnection, fConnection.Screen().root_depth, fPixmap, fConnection.Root(),
                      bounds.Width(), bounds.Height());
    auto whole = Rectangle(0, 0, bounds.Width(), bounds.Height());
    xcb_poly_fill_rectangle(fConnection, fPixmap, fPens.white, 1, &whole);
    if (old != XCB_PIXMAP_NONE) {
        xcb_copy_area(fConnection, old, fPixmap, fPens.black, oldBorder, oldBorder, fBorder,
                      fBorder, common.Width(), common.Height());
        xcb_free_pixmap(fConnection, old);
    }
    PaintBorder();
    xcb_change_window_attributes(fConnection, window, XCB_CW_BACK_PIXMAP, &fPixmap);
}

void BackingPixmap::PaintBorder() const {
    if (fBorder == 0)
        return;
    PixelRect bounds = Bounds();
    const xcb_rectangle_t sides[] = {
        Rectangle(0, 0, bounds.right, fBorder),
        Rectangle(0, bounds.bottom - fBorder, bounds.right, fBorder),
        Rectangle(0, 0, fBorder, bounds.bottom),
        Rectangle(bounds.right - fBorder, 0, fBorder, bounds.bottom),
    };
    xcb_poly_fill_rectangle(fConnection, fPixmap, fPens.black, std::size(sides), sides);
}

void BackingPixmap::Put(const Image& picture, const PixelRect& area) {
    PixelRect part = Intersection(area, {0, 0, picture.width, picture.height});
    part = Intersection(part, fContent);
    if (part.IsEmpty() || !picture.pixels)
        return;
    std::size_t rowBytes = std::size_t(part.Width()) * 4;
    std::size_t room = fConnection.MaxRequestBytes() - sizeof(xcb_put_image_request_t);
    int rowsAtOnce = static_cast<int>(std::max<std::size_t>(room / rowBytes, 1));
    for (int top = part.top; top < part.bottom; top += rowsAtOnce) {
        int bottom = std::min(top + rowsAtOnce, part.bottom);
        PutRows(picture, {part.left, top, part.right, bottom});
    }
}

void BackingPixmap::PutRows(const Image& picture, const PixelRect& rows) {
    std::size_t rowBytes = std::size_t(rows.Width()) * 4;
    const uint8* first =
        picture.pixels + std::ptrdiff_t(rows.top) * picture.stride + std::ptrdiff_t(rows.left) * 4;
    std::vector<uint8> packed;
    if (rowBytes != static_cast<std::size_t>(picture.stride)) {
        packed.resize(rowBytes * rows.Height());
        for (int row = 0; row < rows.Height(); row++)
            std::memcpy(&packed[row * rowBytes], first + std::ptrdiff_t(row) * picture.stride,
                        rowBytes);
        first = packed.data();
    }
    xcb_put_image(fConnection, XCB_IMAGE_FORMAT_Z_PIXMAP, fPixmap, fPens.black, rows.Width(),
                  rows.Height(), rows.left + fBorder, rows.top + fBorder, 0,
                  fConnection.Screen().root_depth, rowBytes * rows.Height(), first);
}

void BackingPixmap::CopyTo(xcb_window_t window, const PixelRect& area) const {
    PixelRect part = Intersection(area, Bounds());
    if (part.IsEmpty())
        return;
    xcb_copy_area(fConnection, fPixmap, window, fPens.black, part.left, part.top, part.left,
                  part.top, part.Width(), part.Height());
}

} // namespace host
