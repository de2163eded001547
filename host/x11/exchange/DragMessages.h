#pragma once

#include <array>

#include "host/x11/server/Connection.h"

namespace host {

// The version of the protocol that is spoken, and the lowest that another program may speak.
inline constexpr uint32 kXdndVersion = 5;
inline constexpr uint32 kLowestXdndVersion = 3;

// Sends a message about `window` to `receiver`. Either may be gone at any time, which is no error
// worth a line.
inline void SendDragMessage(const Connection& connection, xcb_window_t receiver,
                            xcb_window_t window, AtomIndex type,
                            const std::array<uint32, 5>& data) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = connection[type];
    std::copy(data.begin(), data.end(), event.data.data32);
    auto cookie = xcb_send_event_checked(connection, false, receiver, XCB_EVENT_MASK_NO_EVENT,
                                         reinterpret_cast<const char*>(&event));
    xcb_discard_reply(connection, cookie.sequence);
    connection.Flush();
}

} // namespace host
