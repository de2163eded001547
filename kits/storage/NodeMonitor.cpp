#include "kits/storage/NodeMonitor.h"

#include <map>
#include <memory>
#include <mutex>

#include "host/files/monitor/Inotify.h"
#include "host/files/monitor/NodeMonitor.h"
#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"

namespace {

using host::ChangeKind;
using host::NodeChange;

int32 OpcodeOf(ChangeKind kind) {
    switch (kind) {
    case ChangeKind::Created:
        return B_ENTRY_CREATED;
    case ChangeKind::Removed:
        return B_ENTRY_REMOVED;
    case ChangeKind::Moved:
        return B_ENTRY_MOVED;
    case ChangeKind::StatusChanged:
        return B_STAT_CHANGED;
    default:
        return B_ATTR_CHANGED;
    }
}

void FillMessage(BMessage& message, const NodeChange& change) {
    message.AddInt32("opcode", OpcodeOf(change.kind));
    message.AddInt32("device", change.node.device);
    switch (change.kind) {
    case ChangeKind::Moved:
        message.AddInt64("from directory", change.directory);
        message.AddInt64("to directory", change.toDirectory);
        break;
    case ChangeKind::Created:
    case ChangeKind::Removed:
        message.AddInt64("directory", change.directory);
        break;
    case ChangeKind::StatusChanged:
    case ChangeKind::AttributesChanged:
        break;
    }
    message.AddInt64("node", change.node.node);
    if (!change.name.empty())
        message.AddString("name", change.name.c_str());
}

class MessageListener : public host::NodeListener {
public:
    explicit MessageListener(const BMessenger& target)
        : fTarget(target) {}

    bool NodeChanged(const NodeChange& change) override {
        BMessage message(B_NODE_MONITOR);
        FillMessage(message, change);
        return fTarget.SendMessage(&message) == B_OK;
    }

private:
    BMessenger fTarget;
};

// The node monitor knows listeners, by identity; the program knows messengers, by value. The
// monitor owns the listeners; what is kept here finds them again.
class Listeners {
public:
    std::shared_ptr<MessageListener> Find(const BMessenger& target) {
        std::lock_guard lock(fMutex);
        auto found = fListeners.find(target);
        return found == fListeners.end() ? nullptr : found->second.lock();
    }

    std::shared_ptr<MessageListener> FindOrCreate(const BMessenger& target) {
        std::lock_guard lock(fMutex);
        std::erase_if(fListeners, [](const auto& item) { return item.second.expired(); });
        auto listener = fListeners[target].lock();
        if (!listener) {
            listener = std::make_shared<MessageListener>(target);
            fListeners[target] = listener;
        }
        return listener;
    }

private:
    std::mutex fMutex;
    std::map<BMessenger, std::weak_ptr<MessageListener>> fListeners;
};

Listeners& SharedListeners() {
    static Listeners& shared = *new Listeners;
    return shared;
}

} // namespace

static_assert(B_WATCH_NAME == host::kWatchName && B_WATCH_STAT == host::kWatchStatus &&
              B_WATCH_ATTR == host::kWatchAttributes && B_WATCH_DIRECTORY == host::kWatchEntries);

status_t watch_node(const node_ref* node, uint32 flags, BMessenger target) {
    constexpr uint32 kAll = B_WATCH_NAME | B_WATCH_STAT | B_WATCH_ATTR | B_WATCH_DIRECTORY;
    if (!node || (flags & ~kAll))
        return B_BAD_VALUE;
    if (flags == B_STOP_WATCHING) {
        auto listener = SharedListeners().Find(target);
        return listener ? host::NodeMonitor::Shared().Stop(*node, listener) : B_BAD_VALUE;
    }
    if (!target.IsValid())
        return B_BAD_HANDLER;
    return host::NodeMonitor::Shared().Listen(*node, flags, SharedListeners().FindOrCreate(target));
}

const char* watch_limit_file(status_t status) {
    return host::WatchLimitFile(status);
}

status_t stop_watching(BMessenger target) {
    auto listener = SharedListeners().Find(target);
    return listener ? host::NodeMonitor::Shared().StopAll(listener) : B_BAD_VALUE;
}
