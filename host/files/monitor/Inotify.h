#pragma once

#include <string>
#include <vector>

#include "base/Types.h"
#include "host/loop/Descriptor.h"

namespace host {

// One event of the system: a hint to look at the disk.
struct InotifyEvent {
    int watch = -1;
    uint32 mask = 0;
    uint32 cookie = 0;
    std::string name;
};

// The file that holds the limit which a new watch would have exceeded, when that failed with
// `status`; null if no limit did. Any thread.
const char* WatchLimitFile(status_t status);

// The system's file watches of this process.
class Inotify {
public:
    status_t Open();
    int Get() const { return fDescriptor.Get(); }

    // Watches exactly the node that `node` names, or adds to the mask of its watch. The number of a
    // watch is never used twice.
    status_t Add(const Descriptor& node, uint32 mask, int& watch);
    void Remove(int watch);

    // Adds the events that are waiting, as many as fit one read; false when nothing waits.
    bool Read(std::vector<InotifyEvent>& events);

private:
    status_t Report(int error);

    Descriptor fDescriptor;
    bool fReported = false;
};

} // namespace host
