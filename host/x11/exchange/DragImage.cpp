#include "host/x11/exchange/DragImage.h"

#include <algorithm>
#include <vector>

#include <xcb/shape.h>

namespace host {

namespace {

constexpr int kMaxWidth = 2048;
constexpr int kMaxHeight = 1024;

uint32 Opaque(uint32 pixel) {
    uint32 alpha = pixel >> 24;
    if (alpha == 0)
        return 0;
    uint32 plain = 0xff000000;
    for (int shift = 0; shift < 24; shift += 8)
        plain |= std::min((pixel >> shift & 0xff) * 255 / alpha, uint32{255}) << shift;
    return plain;
}

} // namespace

DragImage::DragImage(const Connection& connection, const Image& image, int hotX, int hotY)
    : fConnection(connection)
    , fWidth(std::min(image.width, kMaxWidth))
    , fHeight(std::min(image.height, kMaxHeight))
    , fHotX(hotX)
    , fHotY(hotY) {
    if (!image.pixels || fWidth < 1 || fHeight < 1 || !connection.HasShapes())
        return;
    xcb_visualid_t visual = connection.OwnerOf(connection[kCompositor]) != XCB_WINDOW_NONE
                                ? FindVisual(connection.Screen(), 32)
                                : XCB_NONE;
    if (visual != XCB_NONE) {
        Create(32, visual);
        Paint(image, 32, false);
    } else {
        const xcb_screen_t& screen = connection.Screen();
        Create(screen.root_depth, screen.root_visual);
        Paint(image, screen.root_depth, true);
        Shape(image);
    }
    connection.LetInputThrough(fWindow);
}

DragImage::~DragImage() {
    if (fWindow == XCB_WINDOW_NONE)
        return;
    xcb_destroy_window(fConnection, fWindow);
    xcb_free_colormap(fConnection, fColors);
    fConnection.Flush();
}

void DragImage::Create(uint8 depth, xcb_visualid_t visual) {
    fWindow = xcb_generate_id(fConnection);
    fColors = xcb_generate_id(fConnection);
    xcb_create_colormap(fConnection, XCB_COLORMAP_ALLOC_NONE, fColors, fConnection.Root(), visual);
    const uint32 values[] = {0, true, true, fColors};
    xcb_create_window(fConnection, depth, fWindow, fConnection.Root(), -fWidth, -fHeight,
                      static_cast<uint16>(fWidth), static_cast<uint16>(fHeight), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_SAVE_UNDER |
                          XCB_CW_COLORMAP,
                      values);
    fConnection.SetValues(fWindow, fConnection[kNetWmWindowType], XCB_ATOM_ATOM,
                          {fConnection[kNetWmWindowTypeDnd]});
}

// As the background, so that the server repaints it by itself.
void DragImage::Paint(const Image& image, uint8 depth, bool isOpaque) {
    xcb_pixmap_t pixmap = xcb_generate_id(fConnection);
    xcb_gcontext_t pen = xcb_generate_id(fConnection);
    xcb_create_pixmap(fConnection, depth, pixmap, fWindow, static_cast<uint16>(fWidth),
                      static_cast<uint16>(fHeight));
    xcb_create_gc(fConnection, pen, pixmap, 0, nullptr);
    std::vector<uint32> row(static_cast<std::size_t>(fWidth));
    for (int y = 0; y < fHeight; y++) {
        for (int x = 0; x < fWidth; x++) {
            uint32 pixel = image.At(x, y);
            row[static_cast<std::size_t>(x)] = isOpaque ? Opaque(pixel) : pixel;
        }
        xcb_put_image(fConnection, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, pen,
                      static_cast<uint16>(fWidth), 1, 0, static_cast<int16>(y), 0, depth,
                      static_cast<uint32>(row.size() * 4),
                      reinterpret_cast<const uint8*>(row.data()));
    }
    xcb_change_window_attributes(fConnection, fWindow, XCB_CW_BACK_PIXMAP, &pixmap);
    xcb_free_gc(fConnection, pen);
    xcb_free_pixmap(fConnection, pixmap);
}

// Leaves out pixels with less than a third of the strongest one's opacity.
void DragImage::Shape(const Image& image) {
    uint32 strongest = 1;
    for (int y = 0; y < fHeight; y++) {
        for (int x = 0; x < fWidth; x++)
            strongest = std::max(strongest, image.At(x, y) >> 24);
    }
    std::vector<xcb_rectangle_t> runs;
    for (int y = 0; y < fHeight; y++) {
        for (int x = 0; x < fWidth; x++) {
            int start = x;
            while (x < fWidth && (image.At(x, y) >> 24) * 3 >= strongest)
                x++;
            if (x > start) {
                runs.push_back({static_cast<int16>(start), static_cast<int16>(y),
                                static_cast<uint16>(x - start), 1});
            }
        }
    }
    std::size_t room = (fConnection.MaxRequestBytes() - sizeof(xcb_shape_rectangles_request_t)) /
                       sizeof(xcb_rectangle_t);
    std::size_t count = std::min(runs.size(), room);
    xcb_shape_rectangles(fConnection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                         XCB_CLIP_ORDERING_YX_SORTED, fWindow, 0, 0, static_cast<uint32>(count),
                         runs.data());
}

void DragImage::MoveTo(int screenX, int screenY) {
    if (fWindow == XCB_WINDOW_NONE)
        return;
    const uint32 values[] = {static_cast<uint32>(screenX - fHotX),
                             static_cast<uint32>(screenY - fHotY), XCB_STACK_MODE_ABOVE};
    xcb_configure_window(fConnection, fWindow,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_STACK_MODE,
                         values);
    if (!fIsShown)
        xcb_map_window(fConnection, fWindow);
    fIsShown = true;
    fConnection.Flush();
}

} // namespace host
