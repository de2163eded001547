#pragma once

#include <memory>
#include <mutex>

#include "host/files/monitor/EventBatch.h"
#include "host/files/monitor/MonitorState.h"
#include "host/files/monitor/NodeListener.h"
#include "host/loop/ServiceLoop.h"

namespace host {

// Tells listeners what happens to files and directories. Events are gathered and worked off on the
// service thread; any thread may call.
class NodeMonitor {
public:
    static NodeMonitor& Shared();

    // Adds `flags` (kWatchName and its fellows) to what the listener is told about the node.
    status_t Listen(node_ref node, uint32 flags, const std::shared_ptr<NodeListener>& listener);
    // When these return, the listener is told nothing more. B_BAD_VALUE if it was not listening.
    status_t Stop(node_ref node, const std::shared_ptr<NodeListener>& listener);
    status_t StopAll(const std::shared_ptr<NodeListener>& listener);

private:
    NodeMonitor() = default;

    status_t Start();
    status_t AddListener(node_ref node, uint32 flags,
                         const std::shared_ptr<NodeListener>& listener);
    status_t Prepare(Watch& watch, const Descriptor& node);
    bool RemoveListener(Watch& watch, const std::shared_ptr<NodeListener>& listener);
    bool RemoveEverywhere(const std::shared_ptr<NodeListener>& listener);

    void Process();
    void ProcessBatch();
    void Work(const EventBatch& batch);
    std::unique_ptr<Timer> Rearm();

    std::mutex fMutex;
    MonitorState fState;
    std::unique_ptr<DescriptorWatch> fReader;
    // Service thread only: its destructor waits for what it runs, which takes the lock.
    std::unique_ptr<Timer> fTimer;
    bigtime_t fTimerDeadline = 0;
};

} // namespace host
