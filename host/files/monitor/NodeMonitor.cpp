#include "host/files/monitor/NodeMonitor.h"

#include <sys/inotify.h>

#include <algorithm>
#include <chrono>

#include "host/files/KnownPaths.h"
#include "host/files/Paths.h"
#include "host/files/monitor/EntryComparison.h"
#include "host/files/monitor/NodeComparison.h"

namespace host {

namespace {

// More than a queue holds: an overflow, which is its last event, is found before any other event is
// worked off.
constexpr size_t kBatchSize = 32768;

// What the system is asked for.
uint32 MaskOf(uint32 flags, NodeKind kind) {
    // A file that is removed while somebody holds it open only reports its link count.
    uint32 mask = IN_MOVE_SELF | IN_DELETE_SELF | IN_EXCL_UNLINK | IN_ATTRIB;
    if (flags & kWatchEntries)
        mask |= IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE;
    // On a directory this would report every write to a file in it.
    if ((flags & kWatchStatus) && kind != NodeKind::Directory)
        mask |= IN_MODIFY;
    return mask;
}

bigtime_t Now() {
    auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

} // namespace

NodeMonitor& NodeMonitor::Shared() {
    // Never destroyed: the service thread uses it until the process ends.
    static NodeMonitor& shared = *new NodeMonitor;
    return shared;
}

status_t NodeMonitor::Listen(node_ref node, uint32 flags, const Listener& listener) {
    std::lock_guard lock(fMutex);
    FoundNode found;
    bool isLink;
    status_t status = KnownPaths::Shared().Open(node, found, isLink);
    // It is watched where it is itself, not by a link to it.
    if (status == B_OK && isLink)
        status = ResolvePath(found.path, found.path);
    if (status != B_OK)
        return status;
    FindDirectory(found);
    return AddListener(found, flags, listener);
}

// Opened with the lock held: a later move is an event that is worked off later.
status_t NodeMonitor::Listen(const std::string& path, Opening opening, uint32 flags,
                             const Listener& listener, FoundNode& node) {
    std::lock_guard lock(fMutex);
    status_t status = OpenNode(path, node, opening);
    if (status != B_OK)
        return status;
    KnownPaths::Shared().Remember(node.status.ref, path);
    FindDirectory(node);
    return listener ? AddListener(node, flags, listener) : B_OK;
}

status_t NodeMonitor::Stop(node_ref node, const Listener& listener) {
    std::lock_guard lock(fMutex);
    Watch* watch = fState.watches.FindNode(node);
    return watch && RemoveListener(*watch, listener) ? B_OK : B_BAD_VALUE;
}

status_t NodeMonitor::Start() {
    if (fReader)
        return B_OK;
    status_t status = fState.inotify.Open();
    if (status == B_OK)
        fReader = std::make_unique<DescriptorWatch>(fState.inotify.Get(), [this] { Process(); });
    return status;
}

void NodeMonitor::FindDirectory(FoundNode& node) {
    NodeStatus there;
    std::string path = ParentPath(node.path);
    if (Stat(path, there, true) == B_OK)
        KnownPaths::Shared().Remember(there.ref, path);
    node.directory = there.ref;
}

status_t NodeMonitor::AddListener(const FoundNode& node, uint32 flags, const Listener& listener) {
    if ((flags & kWatchEntries) && node.status.kind != NodeKind::Directory)
        return B_NOT_A_DIRECTORY;
    int number = -1;
    status_t status = Start();
    if (status == B_OK)
        status = fState.inotify.Add(node.descriptor, MaskOf(flags, node.status.kind), number);
    if (status != B_OK)
        return status;

    Watch* watch = fState.watches.Find(number);
    if (!watch)
        watch = &fState.watches.Add(number, node.status);
    watch->path = node.path;
    watch->parent = node.directory;
    watch->listeners[listener] |= flags;
    // The watch comes first, then the look: what happens in between is noticed twice rather than
    // not.
    if ((flags & kWatchEntries) && !watch->names)
        status = watch->FillNames(node.descriptor);
    if (status != B_OK)
        RemoveListener(*watch, listener);
    return status;
}

bool NodeMonitor::RemoveListener(Watch& watch, const Listener& listener) {
    bool wasListening = watch.listeners.erase(listener) > 0;
    if (watch.listeners.empty())
        fState.Drop(watch.number);
    return wasListening;
}

bool NodeMonitor::RemoveEverywhere(const Listener& listener) {
    bool wasListening = false;
    for (int number : fState.watches.Numbers())
        wasListening |= RemoveListener(*fState.watches.Find(number), listener);
    return wasListening;
}

void NodeMonitor::Process() {
    // Destroyed after the lock is released: its call takes the lock.
    std::unique_ptr<Timer> timer;
    std::lock_guard lock(fMutex);
    ProcessBatch();
    for (const auto& listener : fState.watches.TakeGone())
        RemoveEverywhere(listener);
    if (bigtime_t deadline = fState.NextDeadline())
        timer = std::make_unique<Timer>(std::max<bigtime_t>(0, deadline - Now()), 0,
                                        [this] { Process(); });
    fTimer.swap(timer);
}

void NodeMonitor::ProcessBatch() {
    EventBatch batch;
    std::vector<InotifyEvent> events;
    // Behind an overflow everything is read again, which covers the events that wait as well.
    while ((batch.Count() < kBatchSize || batch.HasOverflown()) && fState.inotify.Read(events)) {
        for (const InotifyEvent& event : events)
            batch.Add(event);
        events.clear();
    }
    NodeComparison nodes(fState);
    if (!batch.HasOverflown())
        EntryComparison(fState, batch, Now()).Run();
    nodes.Run(batch);
    if (batch.HasOverflown())
        nodes.Recover();
}

} // namespace host
