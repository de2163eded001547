#pragma once

#include <functional>
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

// The path of a program: `name` itself if it is an absolute path, else the first place on PATH.
// Empty unless it is a file that this user may execute. Any thread.
std::string FindProgram(const std::string& name);

// Starts the program in a session of its own, with default signals, /dev/null as standard input and
// no open files but the standard output and error. It outlives this process. No shell takes part.
// Returns when it runs or when it is known that the system cannot run it, and why. `onFailure` (may
// be empty) runs on the service thread if the program ends within about a second with another exit
// status than 0 or by a signal. Any thread.
status_t LaunchDetached(const Command& command, std::function<void()> onFailure = {});

} // namespace host
