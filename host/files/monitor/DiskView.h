#pragma once

#include <map>
#include <vector>

#include "host/files/monitor/MonitorState.h"

namespace host {

// The disk as it is while one batch of events is worked off: each entry is looked at once.
class DiskView {
public:
    explicit DiskView(MonitorState& state)
        : fState(state) {}

    // Its kind is Nothing if nothing is there, or the directory cannot be found.
    const NodeStatus& Look(const Place& place);
    bool HasType(const Place& place);

    // A directory that was not found may be found by now.
    void Forget(int watch);
    // The watched directories that were looked for and not found.
    std::vector<int> Missing() const;

private:
    // Holding directories for longer would keep their disks from being unmounted.
    const Descriptor& DirectoryOf(int watch);
    void Open(int watch, Descriptor& directory);

    MonitorState& fState;
    std::map<int, Descriptor> fDirectories;
    std::map<Place, NodeStatus> fSeen;
};

} // namespace host
