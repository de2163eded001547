#pragma once

#include <string>
#include <vector>

namespace host {

// Where the desktop's files are, the user's own places first, as the environment says at the moment
// of the call. Places that are not absolute paths are left out. Any thread.
std::vector<std::string> ConfigDirectories();
std::vector<std::string> ApplicationDirectories();

// The file of the desktop entry with this id ("a-b.desktop" may be b.desktop in the folder a) in
// the first of these directories that has one; empty if none has.
std::string FindEntryFile(const std::string& id);

} // namespace host
