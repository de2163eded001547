#pragma once

#include <memory>
#include <mutex>

#include "host/files/Files.h"
#include "host/files/monitor/Watches.h"
#include "host/loop/ServiceLoop.h"

namespace host {

// Notifies listeners of the changes of files and directories. Events are gathered and compared with
// the disk on the service thread; any thread may call.
class NodeMonitor {
public:
    static NodeMonitor& Shared();

    // Adds `flags` (kWatchName and the others) to the changes of the node that are sent to the
    // listener. B_ENTRY_NOT_FOUND if the node is not there or its ref was never handed out,
    // B_NOT_A_DIRECTORY; see WatchLimitFile for the limits.
    status_t Listen(node_ref node, uint32 flags, const Listener& listener);
    // The same for the node at `path`, a link itself if it is one, which is opened: even if it
    // cannot be watched, `node` holds it then. Without a listener it is only opened.
    status_t Listen(const std::string& path, Opening opening, uint32 flags,
                    const Listener& listener, FoundNode& node);
    // When it returns, nothing more is sent to the listener. B_BAD_VALUE if it was not listening.
    status_t Stop(node_ref node, const Listener& listener);

private:
    NodeMonitor() = default;

    status_t Start();
    static void FindDirectory(FoundNode& node);
    status_t AddListener(const FoundNode& node, uint32 flags, const Listener& listener);
    bool RemoveListener(Watch& watch, const Listener& listener);
    bool RemoveEverywhere(const Listener& listener);

    void Process();
    void ProcessBatch();

    std::mutex fMutex;
    MonitorState fState;
    std::unique_ptr<DescriptorWatch> fReader;
    // Service thread only: its destructor waits for what it runs, which takes the lock.
    std::unique_ptr<Timer> fTimer;
};

} // namespace host
