#include "quillbar/store/NodeWatch.h"

#include <map>
#include <mutex>
#include <utility>

#include "kits/storage/Node.h"
#include "kits/storage/NodeMonitor.h"

namespace {

// How many owners each watch has.
class Owners {
public:
    void Add(const BMessenger& messenger, const node_ref& node) {
        const std::lock_guard lock(fMutex);
        ++fCounts[{messenger, node}];
    }
    // True for the last one.
    bool Remove(const BMessenger& messenger, const node_ref& node) {
        const std::lock_guard lock(fMutex);
        const auto found = fCounts.find({messenger, node});
        if (--found->second > 0)
            return false;
        fCounts.erase(found);
        return true;
    }

    static Owners& Shared() {
        static Owners& shared = *new Owners;
        return shared;
    }

private:
    std::mutex fMutex;
    std::map<std::pair<BMessenger, node_ref>, int> fCounts;
};

} // namespace

// The system ends a watch when its node is removed, even if an owner has not heard of that yet, so
// it is always asked again; that loses no change.
status_t NodeWatch::Start(const node_ref& node, uint32 flags, const BMessenger& messenger) {
    return Take(node, messenger, watch_node(&node, flags, messenger));
}

status_t NodeWatch::Start(const BEntry& place, uint32 flags, const BMessenger& messenger,
                          BNode& node, raw_item& raw) {
    node_ref number;
    const status_t status = watch_entry(place, flags, messenger, &node, &raw.ref, &number);
    if (node.InitCheck() != B_OK)
        return node.InitCheck();
    raw.node = number.node;
    if (messenger.IsValid())
        Take(number, messenger, status);
    return B_OK;
}

// Ends the watch of another node, now that `node` was asked to be watched with this outcome.
status_t NodeWatch::Take(const node_ref& node, const BMessenger& messenger, status_t status) {
    const bool isSame = fIsActive && fNode == node && fMessenger == messenger;
    if (!isSame) {
        if (status == B_OK)
            Owners::Shared().Add(messenger, node);
        Stop();
        fIsActive = status == B_OK;
        fNode = node;
        fMessenger = messenger;
    }
    return fStatus = status;
}

void NodeWatch::Stop() {
    fStatus = B_OK;
    if (std::exchange(fIsActive, false) && Owners::Shared().Remove(fMessenger, fNode))
        watch_node(&fNode, B_STOP_WATCHING, fMessenger);
}
