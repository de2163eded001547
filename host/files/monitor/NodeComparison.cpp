#include "host/files/monitor/NodeComparison.h"

#include "host/files/Files.h"
#include "host/files/Paths.h"

namespace host {

namespace {

constexpr uint32 kEnds = IN_IGNORED | IN_UNMOUNT;

// The topmost watched directory above the node, as far as the watched entries lead up.
Watch* TopOf(Watches& watches, Watch* watch) {
    for (;;) {
        Watch* parent = watches.FindDirectory(watch->parent);
        KnownEntry* entry = parent ? watches.FindEntry({parent->number, watch->Name()}) : nullptr;
        if (!entry || entry->node != watch->Node().node)
            return watch;
        watch = parent;
    }
}

} // namespace

void NodeComparison::Run(const EventBatch& batch) {
    for (const auto& [number, events] : batch.Selves()) {
        Watch* watch = fState.watches.Find(number);
        if (!watch || !(events & IN_DELETE_SELF))
            continue;
        if (!watch->isGone && !fState.watches.FindDirectory(watch->parent))
            fState.watches.Notify(Departure(*watch, ChangeKind::Removed));
        watch->isGone = true;
    }
    SettleEnds(batch);
    for (const auto& [number, events] : batch.Selves()) {
        if (events & IN_MOVE_SELF)
            SearchNode(number, true);
        if (events & (IN_ATTRIB | IN_MODIFY))
            Compare(number, (events & IN_ATTRIB) != 0);
    }
    SettleUnread();
}

void NodeComparison::Recover() {
    fState.moves.clear();
    fState.quiet.clear();
    fState.unread.clear();
    for (int number : fState.watches.Numbers())
        Recover(number);
}

// The system ends the watches of nodes that are removed, and of those that are unmounted. Among the
// latter only the topmost directory counts for a listener.
void NodeComparison::SettleEnds(const EventBatch& batch) {
    auto isLost = [&](const Watch& watch) {
        return (batch.Of(watch.number) & kEnds) && !watch.isGone;
    };
    std::vector<int> ended;
    for (const auto& [number, events] : batch.Selves()) {
        Watch* watch = fState.watches.Find(number);
        if (!watch || !(events & kEnds))
            continue;
        ended.push_back(number);
        Watch* parent = fState.watches.FindDirectory(watch->parent);
        if (isLost(*watch))
            fState.watches.NotifyLost(*watch, parent && isLost(*parent) ? parent : nullptr);
    }
    for (int number : ended)
        fState.Forget(number);
}

// The system reports nothing to a directory whose ancestor is renamed: it is lost. While its own
// directory is where it was, its own event is on its way.
void NodeComparison::SettleUnread() {
    for (int number : std::set<int>(fState.unread)) {
        Watch* watch = fState.watches.Find(number);
        if (!watch)
            continue;
        watch = TopOf(fState.watches, watch);
        NodeStatus parent;
        Stat(ParentPath(watch->path), parent, true);
        if (parent.ref == watch->parent)
            continue;
        fState.watches.NotifyLost(*watch, nullptr);
        fState.Drop(watch->number);
    }
}

// Looks for a node that is not at its path, unless its directory is watched.
void NodeComparison::SearchNode(int number, bool hasMoved) {
    Watch* watch = fState.watches.Find(number);
    if (!watch || watch->isGone || fState.watches.FindDirectory(watch->parent))
        return;
    std::string path;
    if (!fState.watches.Search(*watch, path)) {
        ChangeKind kind = hasMoved ? ChangeKind::Moved : ChangeKind::Removed;
        fState.watches.Notify(Departure(*watch, kind));
        fState.Drop(number);
    } else if (path != watch->path) {
        fState.watches.Moved(watch->Node(), watch->path, path, watch->parent,
                             watch->status.kind == NodeKind::Directory);
        NodeChange change = Departure(*watch, ChangeKind::Moved);
        change.toDirectory = watch->parent.node;
        fState.watches.Notify(change);
    }
}

void NodeComparison::Compare(int number, bool hasAttributes) {
    Watch* watch = fState.watches.Find(number);
    if (!watch || watch->isGone)
        return;
    NodeStatus now;
    if (Stat(watch->path, now) != B_OK || now.ref != watch->Node()) {
        watch->hasUnreadChange |= hasAttributes;
        SearchNode(number, false);
        return;
    }
    bool isChanged = now != watch->status;
    watch->status = now;
    if (isChanged)
        fState.watches.Notify({.kind = ChangeKind::StatusChanged, .node = now.ref});
    if (hasAttributes)
        fState.watches.Notify({.kind = ChangeKind::AttributesChanged, .node = now.ref});
}

void NodeComparison::Recover(int number) {
    Watch* watch = fState.watches.Find(number);
    if (!watch || watch->isGone)
        return;
    Watch* parent = fState.watches.FindDirectory(watch->parent);
    Descriptor node;
    if (!watch->Open(node)) {
        fState.watches.NotifyLost(*watch, parent);
        fState.Drop(number);
    } else if (watch->names) {
        fState.watches.NotifyLost(*watch, parent);
        watch->FillNames(node);
    } else {
        Compare(number, true);
    }
}

} // namespace host
