#include "quillbar/store/NodeWatch.h"

#include <map>
#include <mutex>
#include <utility>

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
    const status_t status = watch_node(&node, flags, messenger);
    if (fIsActive && fNode == node && fMessenger == messenger) {
        fStatus = status;
        return status;
    }
    if (status == B_OK)
        Owners::Shared().Add(messenger, node);
    Stop();
    fStatus = status;
    if (status == B_OK) {
        fNode = node;
        fMessenger = messenger;
        fIsActive = true;
    }
    return status;
}

void NodeWatch::Stop() {
    fStatus = B_OK;
    if (std::exchange(fIsActive, false) && Owners::Shared().Remove(fMessenger, fNode))
        watch_node(&fNode, B_STOP_WATCHING, fMessenger);
}
