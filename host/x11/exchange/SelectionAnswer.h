#pragma once

#include <xcb/xcb.h>

#include "host/x11/server/Connection.h"

namespace host {

// Tells the program that asked for a selection that what it wants is in `property` of its window,
// or that it gets nothing (XCB_ATOM_NONE). That its window is gone is no error worth a line.
void AnswerRequest(const Connection& connection, const xcb_selection_request_event_t& request,
                   xcb_atom_t property);

} // namespace host
