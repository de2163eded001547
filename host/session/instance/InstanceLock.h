#pragma once

#include <string>

#include "base/Types.h"
#include "host/session/instance/RuntimeDirectory.h"

namespace host {

// The right to be the running program of a signature. The kernel gives it back when the process
// ends, in whatever way. Any thread.
class InstanceLock {
public:
    explicit InstanceLock(const std::string& signature);

    // Takes the lock without waiting. B_ALREADY_RUNNING while another process has it; another
    // failure means that this system cannot tell whether the program runs. May be tried again.
    status_t Acquire();

    // Whether Acquire() succeeded.
    bool IsHeld() const { return static_cast<bool>(fFile); }

    const RuntimeDirectory& Directory() const { return fDirectory; }
    const std::string& Name() const { return fName; }

    InstanceLock(const InstanceLock&) = delete;

private:
    const RuntimeDirectory fDirectory;
    const std::string fName;
    Descriptor fFile;
};

} // namespace host
