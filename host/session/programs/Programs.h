#pragma once

#include <optional>
#include <string>

#include "host/session/programs/DesktopEntry.h"

namespace host {

// The program of this desktop that stands for a signature or type of the platform: the one that the
// user has given it with X-Be-Signature in its desktop entry, else the one that this desktop has
// for the purpose. Read from the disk with each call, without the desktop's libraries: those are
// behind for a moment after a change, and leave a thread and watches in the process. Any thread.
std::optional<DesktopEntry> FindProgramFor(const std::string& signature,
                                           Wanted wanted = Wanted::Installed);

// Whether one is installed. Looks at all entries only if this desktop has none of its own.
bool HasProgramFor(const std::string& signature);

} // namespace host
