#include "host/files/monitor/NodeMonitor.h"

#include <sys/inotify.h>

#include <algorithm>
#include <chrono>

#include "host/files/Files.h"
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
    status_t status = Start();
    return status == B_OK ? AddListener(node, flags, listener) : status;
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

status_t NodeMonitor::AddListener(node_ref node, uint32 flags, const Listener& listener) {
    Descriptor descriptor;
    std::string path;
    NodeStatus there;
    bool isLink;
    status_t status = KnownPaths::Shared().Open(node, descriptor, path, there, isLink);
    if (status == B_OK && (flags & kWatchEntries) && there.kind != NodeKind::Directory)
        status = B_NOT_A_DIRECTORY;
    // It is watched where it is itself, not by a link to it.
    if (status == B_OK && isLink)
        status = ResolvePath(path, path);
    if (status != B_OK)
        return status;

    int number = -1;
    status = fState.inotify.Add(descriptor, MaskOf(flags, there.kind), number);
    if (status != B_OK)
        return status;

    Watch* watch = fState.watches.Find(number);
    if (!watch)
        watch = &fState.watches.Add(number, there);
    Stat(ParentPath(path), there, true);
    watch->path = path;
    watch->parent = there.ref;
    watch->listeners[listener] |= flags;
    // The watch comes first, then the look: what happens in between is noticed twice rather than
    // not.
    if ((flags & kWatchEntries) && !watch->names)
        status = watch->FillNames(descriptor);
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
