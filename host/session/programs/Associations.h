#pragma once

#include <optional>
#include <string>

#include "host/session/programs/DesktopEntry.h"

namespace host {

// The program that the desktop opens a type with ("inode/directory", "x-scheme-handler/https"): the
// user's choice, then the system's, then any installed one that is registered for it. Any thread.
std::optional<DesktopEntry> FindDefaultProgram(const std::string& type);

} // namespace host
