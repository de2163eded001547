#pragma once

#include <mutex>

#include "host/x11/Connection.h"
#include "host/x11/Display.h"

namespace host {

// The pointer's shapes, made when they are first needed. Any thread.
class Cursors {
public:
    explicit Cursors(const Connection& connection)
        : fConnection(connection) {}

    // None for the desktop's own.
    xcb_cursor_t Of(PointerShape shape);

private:
    const Connection& fConnection;
    std::mutex fLock;
    xcb_cursor_t fText = XCB_CURSOR_NONE; // guarded by fLock
};

} // namespace host
