#include "kits/storage/NodeMonitor.h"

#include <map>
#include <memory>
#include <mutex>

#include "host/files/Files.h"
#include "host/files/Paths.h"
#include "host/files/monitor/Inotify.h"
#include "host/files/monitor/NodeMonitor.h"
#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/storage/Entry.h"
#include "kits/storage/Node.h"

namespace {

using host::ChangeKind;
using host::NodeChange;

int32 OpcodeOf(ChangeKind kind) {
    static_assert(int32(ChangeKind::Created) + 1 == B_ENTRY_CREATED &&
                  int32(ChangeKind::StatusChanged) + 1 == B_STAT_CHANGED &&
                  int32(ChangeKind::AttributesChanged) + 1 == B_ATTR_CHANGED);
    return int32(kind) + 1;
}

class MessageListener : public host::NodeListener {
public:
    explicit MessageListener(const BMessenger& target)
        : fTarget(target) {}

    bool NodeChanged(const NodeChange& change) override {
        BMessage message(B_NODE_MONITOR);
        message.AddInt32("opcode", OpcodeOf(change.kind));
        message.AddInt32("device", change.node.device);
        message.AddInt64("node", change.node.node);
        if (change.kind == ChangeKind::Moved) {
            message.AddInt64("from directory", change.directory);
            message.AddInt64("to directory", change.toDirectory);
        } else if (change.kind == ChangeKind::Created || change.kind == ChangeKind::Removed) {
            message.AddInt64("directory", change.directory);
        }
        if (!change.name.empty())
            message.AddString("name", change.name.c_str());
        return fTarget.SendMessage(&message) == B_OK;
    }

private:
    BMessenger fTarget;
};

// The node monitor knows listeners, by identity; the program knows messengers, by value. The
// monitor owns the listeners; what is kept here finds them again. One that listens to nothing
// goes.
std::shared_ptr<MessageListener> ListenerOf(const BMessenger& target) {
    static std::mutex mutex;
    static auto& listeners = *new std::map<BMessenger, std::weak_ptr<MessageListener>>;
    std::lock_guard lock(mutex);
    std::erase_if(listeners, [](const auto& item) { return item.second.expired(); });
    auto& kept = listeners[target];
    auto listener = kept.lock();
    if (!listener)
        kept = listener = std::make_shared<MessageListener>(target);
    return listener;
}

} // namespace

static_assert(B_WATCH_NAME == host::kWatchName && B_WATCH_STAT == host::kWatchStatus &&
              B_WATCH_ATTR == host::kWatchAttributes && B_WATCH_DIRECTORY == host::kWatchEntries);

status_t watch_node(const node_ref* node, uint32 flags, BMessenger target) {
    if (!node || (flags & ~host::kWatchAll))
        return B_BAD_VALUE;
    host::NodeMonitor& monitor = host::NodeMonitor::Shared();
    if (flags == B_STOP_WATCHING)
        return monitor.Stop(*node, ListenerOf(target));
    return target.IsValid() ? monitor.Listen(*node, flags, ListenerOf(target)) : B_BAD_HANDLER;
}

status_t watch_entry(const BEntry& entry, uint32 flags, const BMessenger& target, BNode* node,
                     entry_ref* ref, node_ref* number) {
    if (entry.InitCheck() != B_OK)
        return node->Fail(entry.InitCheck());
    host::FoundNode found;
    const bool isHeard = target.IsValid();
    const bool isFile = entry.fKind == host::NodeKind::File;
    const status_t status = host::NodeMonitor::Shared().Listen(
        entry.fHostPath, isFile ? host::Opening::File : host::Opening::NameOnly, flags,
        isHeard ? ListenerOf(target) : nullptr, found);
    if (found.status.kind == host::NodeKind::Nothing)
        return node->Fail(status);
    *ref = entry_ref(found.directory.device, found.directory.node,
                     host::LeafOf(entry.fHostPath).c_str());
    *number = found.status.ref;
    node->SetToDescriptor(std::move(found.descriptor));
    return isHeard ? status : B_BAD_HANDLER;
}

const char* watch_limit_file(status_t status) {
    return host::WatchLimitFile(status);
}
