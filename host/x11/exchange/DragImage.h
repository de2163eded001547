#pragma once

#include "host/draw/Image.h"
#include "host/x11/server/Connection.h"

namespace host {

// The picture under the pointer during a drag, above all windows: half transparent on a desktop
// that can show that, else cut to the shape of its visible pixels. The pointer goes through it.
// Without the server's shape extension nothing is shown, since it would hide all targets.
class DragImage {
public:
    // The pointer is at `hotX`, `hotY` of the picture, in device pixels. Shown by the first MoveTo.
    DragImage(const Connection& connection, const Image& image, int hotX, int hotY);
    ~DragImage();
    DragImage(const DragImage&) = delete;

    void MoveTo(int screenX, int screenY);

private:
    void Create(uint8 depth, xcb_visualid_t visual);
    void Paint(const Image& image, uint8 depth, bool isOpaque);
    void Shape(const Image& image);

    const Connection& fConnection;
    const int fWidth, fHeight;
    const int fHotX, fHotY;
    xcb_window_t fWindow = XCB_WINDOW_NONE;
    xcb_colormap_t fColors = XCB_NONE;
    bool fIsShown = false;
};

} // namespace host
