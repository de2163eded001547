#pragma once

#include <string>

#include "host/x11/server/Connection.h"

namespace host {

// The desktop's protocol of startup notification, as a program sees it that was started, or asked
// for something, under a name that the desktop gave.

// The server's time of the click or key behind it, which ends the name ("..._TIME123"); 0 if it
// says none.
xcb_timestamp_t StartupTime(const std::string& id);

// Announces that the program has come up: the desktop need not wait for it any longer. `window` is
// any of the program's. Does nothing for a name that is none.
void EndStartup(const Connection& connection, xcb_window_t window, const std::string& id);

} // namespace host
