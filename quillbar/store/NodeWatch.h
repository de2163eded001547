#pragma once

#include "base/EntryRef.h"
#include "kits/app/Messenger.h"

class BEntry;
class BNode;

// The store's record of a node: where its entry was found, and its number.
struct raw_item {
    entry_ref ref;
    int64 node = -1;

    node_ref Node() const { return {ref.device, node}; }
};

// One owner's share in the watch of a node. Several owners may watch the same node for the same
// messenger: the last of them that stops, or that goes, ends the watch. Any thread, one at a time.
class NodeWatch {
public:
    NodeWatch() = default;
    ~NodeWatch() { Stop(); }

    NodeWatch(const NodeWatch&) = delete;

    // Watches the node from now on, and only then ends the watch of another one: call it before
    // the node is read. On the node that is watched already nothing changes, not even if this call
    // fails. `flags` are those of watch_node(), whose status is returned.
    status_t Start(const node_ref& node, uint32 flags, const BMessenger& messenger);
    // The same for what is at `place`: it is opened as `node`, to be read now, and `raw` names it,
    // even if it cannot be watched. When it cannot be opened, or `messenger` has no target, the
    // watch stays as it is. Returns whether the node was opened.
    status_t Start(const BEntry& place, uint32 flags, const BMessenger& messenger, BNode& node,
                   raw_item& raw);
    void Stop();

    bool IsOn(const node_ref& node) const { return fIsActive && fNode == node; }
    // Of the last Start(); B_OK after Stop().
    status_t Status() const { return fStatus; }

private:
    status_t Take(const node_ref& node, const BMessenger& messenger, status_t status);

    node_ref fNode;
    BMessenger fMessenger;
    bool fIsActive = false;
    status_t fStatus = B_OK;
};
