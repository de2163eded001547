#pragma once

#include "host/x11/server/Connection.h"

namespace host {

// Where something that is dragged could be dropped.
struct DropPlace {
    xcb_window_t window = XCB_WINDOW_NONE;   // None: nowhere
    xcb_window_t receiver = XCB_WINDOW_NONE; // of the messages about it
    uint32 version = 0;                      // of the protocol to be spoken
};

// What is there on the screen. Asks the server, once for each window on the way down.
DropPlace FindDropPlace(const Connection& connection, int screenX, int screenY);

} // namespace host
