#pragma once

#include "host/draw/Image.h"
#include "host/x11/server/Connection.h"

namespace host {

// The graphics contexts: the same for all windows, since nothing in them ever changes.
struct Pens {
    explicit Pens(const Connection& connection);

    xcb_gcontext_t black;
    xcb_gcontext_t white;
};

// A window's picture on the server, its border included: the window shows it when it is
// uncovered, without a request. The window is painted from it when it is mapped, too. One
// thread at a time.
class BackingPixmap {
public:
    BackingPixmap(const Connection& connection, const Pens& pens);
    ~BackingPixmap();
    BackingPixmap(const BackingPixmap&) = delete;

    // Gives it the size of a window with such a content and border, and makes it the background of
    // `window`. The content that both sizes cover is kept, the rest is white.
    void Resize(xcb_window_t window, int contentWidth, int contentHeight, int border);

    // Takes over `area` of `picture`, both in the content's pixels, as far as both reach.
    void Put(const Image& picture, const PixelRect& area);

    // Paints `area`, in the window's own pixels.
    void CopyTo(xcb_window_t window, const PixelRect& area) const;

    // In the window's own pixels.
    PixelRect Bounds() const;
    PixelRect Content() const { return fContent; }

private:
    void PutRows(const Image& picture, const PixelRect& rows);
    void PaintBorder() const;

    const Connection& fConnection;
    const Pens& fPens;
    int fBorder = 0;
    xcb_pixmap_t fPixmap = XCB_PIXMAP_NONE;
    PixelRect fContent{}; // at the pixmap's own left top, without the border
};

} // namespace host
