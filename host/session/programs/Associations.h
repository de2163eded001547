#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "host/session/programs/DesktopEntry.h"

namespace host {

// The directories of the desktop entries, the user's own first, by the environment at the moment of
// the call. Places that are not absolute paths are left out. Any thread.
std::vector<std::string> ApplicationDirectories();

// The file of the desktop entry with this id ("a-b.desktop" may be b.desktop in the folder a) in
// the first of these directories that has one; empty if none has. Any thread.
std::string FindEntryFile(const std::string& id);

// The program that the desktop opens a type with ("inode/directory", "x-scheme-handler/https"), for
// the first of the types that has one: the user's choice, then the system's, then any that is
// registered for it. Reads the files of associations once. Any thread.
std::optional<DesktopEntry> FindDefaultProgram(std::initializer_list<const char*> types,
                                               Wanted wanted = Wanted::Installed);

} // namespace host
