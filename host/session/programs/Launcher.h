#pragma once

#include <string>
#include <vector>

#include "base/Types.h"

namespace host {

// A program as it is to be started.
struct Command {
    std::string program;                // absolute path
    std::vector<std::string> arguments; // the first is the name by which it is called
    std::string directory;              // working directory; "/" if it cannot be entered
};

// The path of a program: `name` itself if it holds a slash and is absolute, else the first place on
// PATH. Empty unless it is a file that this user may execute. Any thread.
std::string FindProgram(const std::string& name);

// Starts the program so that it has nothing to do with this one: a session of its own, no child of
// this process, default signals, nothing on standard input, no open files but the standard output
// and error. Returns when it runs or when it is known that the system cannot run it, and why.
// No shell takes part. Any thread.
status_t LaunchDetached(const Command& command);

} // namespace host
