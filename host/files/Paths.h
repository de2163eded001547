#pragma once

#include <string>

namespace host {

// The program uses the platform's paths; the system's are others below the home directory:
// "/boot/home/config/settings" is $XDG_CONFIG_HOME (~/.config without it) and "/boot/home" is $HOME
// (without it, the home directory of the user's account). Every other path is the same in both.
// Paths are absolute and plain (see PlainPath). Any thread.
std::string HostPath(const std::string& platformPath);
std::string PlatformPath(const std::string& hostPath);

// `path` without runs of slashes, "." components and a slash at the end.
std::string PlainPath(const std::string& path);
bool HasParentComponent(const std::string& path);

// The parts before and after the last slash of a plain path. The parent of "/" is "".
std::string ParentPath(const std::string& path);
std::string LeafOf(const std::string& path);
std::string Join(const std::string& directory, const std::string& leaf);

} // namespace host
