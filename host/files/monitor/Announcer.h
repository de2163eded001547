#pragma once

#include <memory>
#include <vector>

#include "host/files/monitor/WatchTable.h"

namespace host {

// Tells changes to those who listen: to the node itself, or to a directory it is, was or comes in.
// Each is told once.
class Announcer {
public:
    explicit Announcer(WatchTable& watches)
        : fWatches(watches) {}

    // With `toDirectories` false, only to the node's own.
    void Tell(const NodeChange& change, bool toDirectories = true);
    // Tells everybody who listens to this watch, whatever for, but for those who listen to the
    // entries of `except`, if that is given.
    void TellAll(const Watch& watch, const NodeChange& change, const Watch* except = nullptr);

    // The listeners that turned out to be gone since the last call.
    std::vector<std::shared_ptr<NodeListener>> TakeGone();

private:
    using Listeners = std::vector<std::shared_ptr<NodeListener>>;

    void Collect(Listeners& listeners, node_ref node, uint32 flag);
    void Send(const Listeners& listeners, const NodeChange& change);

    WatchTable& fWatches;
    Listeners fGone;
};

} // namespace host
