#include "host/files/monitor/SelfReconciler.h"

#include "host/files/Paths.h"

namespace host {

void SelfReconciler::Settle(const EventBatch& batch) {
    for (const auto& [number, self] : batch.Selves()) {
        Watch* watch = fState.watches.Find(number);
        if (watch && self.isRemoved)
            SettleRemoval(*watch);
    }
    SettleEnds(batch);
    for (const auto& [number, self] : batch.Selves()) {
        if (self.hasMoved)
            FindAgain(number, true);
        if (self.isChanged)
            Compare(number);
    }
}

void SelfReconciler::CheckMissing(const std::vector<int>& directories) {
    for (int number : directories) {
        Watch* top = fState.watches.Find(number);
        if (!top)
            continue;
        while (Watch* parent = fState.watches.ParentOf(*top))
            top = parent;
        NodeStatus parent;
        LookAt(ParentPath(top->path), parent, true);
        // If its directory is where it was, the node's own event is on its way.
        if (parent.ref == top->parent)
            continue;
        TellLost(*top, nullptr);
        fState.Drop(top->number);
    }
}

void SelfReconciler::Recover() {
    fState.trails.ForgetAll();
    fState.quiet.ForgetAll();
    for (int number : fState.watches.Numbers())
        Recover(number);
}

void SelfReconciler::SettleRemoval(Watch& watch) {
    if (!watch.isGone && !fState.watches.FindDirectory(watch.parent))
        fState.announcer.Tell(Departure(watch, ChangeKind::Removed));
    watch.isGone = true;
}

// The system ends the watches of what is removed or unmounted.
void SelfReconciler::SettleEnds(const EventBatch& batch) {
    auto isLost = [&](const Watch& watch) {
        auto found = batch.Selves().find(watch.number);
        return found != batch.Selves().end() && !watch.isGone &&
               (found->second.hasEnded || found->second.isUnmounted);
    };
    for (const auto& [number, self] : batch.Selves()) {
        Watch* watch = fState.watches.Find(number);
        if (!watch || !isLost(*watch))
            continue;
        Watch* parent = fState.watches.FindDirectory(watch->parent);
        TellLost(*watch, parent && isLost(*parent) ? parent : nullptr);
    }
    for (const auto& [number, self] : batch.Selves()) {
        Watch* watch = fState.watches.Find(number);
        if (watch && isLost(*watch))
            watch->isGone = true;
        if (self.hasEnded)
            fState.Forget(number);
    }
}

// For a node whose directory is not watched: it has moved, or is not where it was.
void SelfReconciler::FindAgain(int number, bool hasMoved) {
    Watch* watch = fState.watches.Find(number);
    if (!watch || watch->isGone || fState.watches.FindDirectory(watch->parent))
        return;
    std::string path;
    Descriptor node;
    if (!MonitorState::Find(*watch, path, node)) {
        fState.announcer.Tell(
            Departure(*watch, hasMoved ? ChangeKind::Moved : ChangeKind::Removed));
        fState.Drop(number);
        return;
    }
    if (path == watch->path)
        return;
    fState.FollowMove(watch->Node(), watch->path, path, watch->parent,
                      watch->status.kind == NodeKind::Directory);
    NodeChange change = Departure(*watch, ChangeKind::Moved);
    change.toDirectory = watch->parent.node;
    fState.announcer.Tell(change);
}

void SelfReconciler::Compare(int number) {
    Watch* watch = fState.watches.Find(number);
    Descriptor node;
    if (!watch || watch->isGone)
        return;
    if (!MonitorState::Hold(*watch, node)) {
        FindAgain(number, false);
        return;
    }
    NodeStatus now;
    if (LookAt(node.Get(), "", now) != B_OK)
        return;
    const NodeStatus& old = watch->status;
    bool isChanged = now.size != old.size || now.mode != old.mode || now.owner != old.owner ||
                     now.group != old.group || now.modified != old.modified;
    watch->status = now;
    if (isChanged)
        fState.announcer.Tell({.kind = ChangeKind::StatusChanged, .node = now.ref});
    if (!watch->attributes)
        return;
    for (const auto& [name, cause] : watch->attributes->Update(node.Get(), now.changed)) {
        fState.announcer.Tell({.kind = ChangeKind::AttributeChanged,
                               .node = now.ref,
                               .attribute = name,
                               .cause = cause});
    }
}

void SelfReconciler::Recover(int number) {
    Watch* watch = fState.watches.Find(number);
    if (!watch || watch->isGone)
        return;
    Watch* parent = fState.watches.FindDirectory(watch->parent);
    Descriptor node;
    if (!MonitorState::Hold(*watch, node)) {
        TellLost(*watch, parent);
        fState.Drop(number);
    } else if (watch->names) {
        TellLost(*watch, parent);
        watch->names->Fill(node);
    } else {
        Compare(number);
    }
}

void SelfReconciler::TellLost(const Watch& watch, const Watch* except) {
    fState.announcer.TellAll(watch, Departure(watch, ChangeKind::Removed), except);
}

NodeChange SelfReconciler::Departure(const Watch& watch, ChangeKind kind) const {
    return {
        .kind = kind, .node = watch.Node(), .directory = watch.parent.node, .name = watch.Name()};
}

} // namespace host
