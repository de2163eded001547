#pragma once

#include <mutex>

#include "host/x11/Display.h"
#include "host/x11/server/Connection.h"

namespace host {

// The pointer's shapes, made when they are first needed. Any thread.
class Cursors {
public:
    explicit Cursors(const Connection& connection)
        : fConnection(connection) {}

    // None for the desktop's own.
    xcb_cursor_t Of(PointerShape shape);
    // The desktop's pointers have another theme or size.
    void ForgetTheme();

    // `size` is that of the desktop's pointers, in device pixels.
    xcb_cursor_t Of(const PointerImage& image, int size);

private:
    struct OwnCursor {
        PointerImage image;
        double scale;
        xcb_cursor_t cursor;
    };

    xcb_cursor_t LoadText() const;
    xcb_cursor_t Make(const PointerImage& image, double scale) const;
    xcb_pixmap_t MakeBits(const std::array<uint16, 16>& rows, double scale) const;

    const Connection& fConnection;
    std::mutex fLock;
    // Guarded by fLock.
    xcb_cursor_t fText = XCB_CURSOR_NONE; // in the desktop's theme
    std::vector<OwnCursor> fOwn;
};

} // namespace host
