#include "host/files/monitor/EntryReconciler.h"

namespace host {

void EntryReconciler::Settle() {
    LookAround();
    JudgeAll();
    for (const Judgement& judgement : fJudgements) {
        if (judgement.verdict == Verdict::Unchanged)
            Restore(judgement.trail);
        else
            Vacate(judgement.trail);
    }
    // What a move replaces is told before the move.
    for (const Judgement& judgement : fJudgements) {
        if (judgement.verdict == Verdict::Removed)
            TellRemoved(judgement.trail);
        else if (judgement.verdict == Verdict::MovedOut)
            TellMovedOut(judgement.trail);
    }
    for (const Judgement& judgement : fJudgements) {
        if (judgement.verdict == Verdict::Moved)
            TellMoved(judgement.trail, judgement.place);
    }
    for (const Place& place : fBatch.Places()) {
        SettleArrival(place);
        SettleChange(place);
    }
    for (int number : fView.Missing())
        Rescan(number);
    fState.trails.EndBatch();
    for (int number : fDropped)
        fState.Drop(number);
}

void EntryReconciler::LookAround() {
    for (const Place& place : fBatch.Places()) {
        const EventBatch::Touch& touch = fBatch.At(place);
        if (fView.Look(place).kind == NodeKind::Nothing)
            continue;
        if (touch.hasArrived)
            fArrivals.emplace(fView.Look(place).ref, place);
        if (touch.isCreated)
            fMade.insert(fView.Look(place).ref);
    }
}

void EntryReconciler::SettleQuiet() {
    for (const Place& place : fState.quiet.TakeQuiet(fNow)) {
        KnownEntry* entry = fState.watches.FindEntry(place);
        // If another node is there, its events are on their way.
        if (entry && fView.Look(place).ref.node == entry->node)
            Announce(place, *entry);
    }
    fState.trails.EndBatch();
}

void EntryReconciler::Announce(const Place& place, KnownEntry& entry) {
    // It is what is waited for, seen here before its events were read.
    Trail* trail = fState.trails.Find(fView.Look(place).ref);
    if (trail && trail->deadline != 0 && trail->entry.isAnnounced && !entry.isAnnounced) {
        trail->deadline = 0;
        TellMoved(*trail, place);
        return;
    }
    bool hasType = fView.HasType(place);
    if (entry.isAnnounced && !(entry.lacksType && hasType))
        return;
    entry.isAnnounced = true;
    entry.lacksType = !hasType;
    TellCreated(place, entry);
}

void EntryReconciler::JudgeAll() {
    for (Trail& trail : fState.trails.All()) {
        Judgement judgement = Judge(trail);
        if (judgement.verdict != Verdict::Waiting)
            trail.deadline = 0;
        else if (trail.deadline == 0)
            trail.deadline = fNow + kGraceTime;
        if (trail.start != Trail::Start::Known)
            continue;
        if (judgement.verdict == Verdict::Unchanged || judgement.verdict == Verdict::Moved)
            fSettled.insert(judgement.place);
        fJudgements.push_back(std::move(judgement));
    }
}

EntryReconciler::Judgement EntryReconciler::Judge(Trail& trail) {
    bool isCarried = trail.state == Trail::State::Carried;
    bool isOver = trail.isDecided || (trail.deadline != 0 && trail.deadline <= fNow);
    if (trail.start != Trail::Start::Known)
        return {trail, isCarried && !isOver ? Verdict::Waiting : Verdict::Unchanged, trail.place};

    Place place;
    // While it was waited for, another may have been told to be in its place.
    if (IsUnchanged(trail))
        return {trail, trail.deadline == 0 ? Verdict::Unchanged : Verdict::Moved, trail.origin};
    if (FindArrival(trail, place))
        return {trail, Verdict::Moved, place};
    if (trail.state == Trail::State::Gone)
        return {trail, Verdict::Removed, place};
    // A new node with its number would be taken for it when the wait is over.
    if (!isOver && !fMade.contains(trail.node))
        return {trail, Verdict::Waiting, place};
    return {trail, Verdict::MovedOut, place};
}

bool EntryReconciler::IsUnchanged(const Trail& trail) {
    if (fView.Look(trail.origin).ref != trail.node)
        return false;
    if (trail.state == Trail::State::Here && trail.place == trail.origin)
        return true;
    // The number may have gone to a new node. Otherwise this is an exchange, whose events mislead.
    const EventBatch::Touch& touch = fBatch.At(trail.origin);
    return !touch.isRemoved && !touch.isCreated;
}

// Looks first where the events say that the node went, then wherever it turned up.
bool EntryReconciler::FindArrival(const Trail& trail, Place& place) {
    if (trail.state == Trail::State::Here && trail.place != trail.origin &&
        fView.Look(trail.place).ref == trail.node) {
        place = trail.place;
        return true;
    }
    auto [begin, end] = fArrivals.equal_range(trail.node);
    for (auto arrival = begin; arrival != end; ++arrival) {
        KnownEntry* known = fState.watches.FindEntry(arrival->second);
        // One that is not announced may have been seen there before its events were read.
        bool isOtherLink = known && known->node == trail.node.node && known->isAnnounced;
        if (arrival->second != trail.origin && !isOtherLink &&
            !fSettled.contains(arrival->second)) {
            place = arrival->second;
            return true;
        }
    }
    return false;
}

void EntryReconciler::Vacate(const Trail& trail) {
    KnownEntry* entry = fState.watches.FindEntry(trail.origin);
    if (!entry || entry->node != trail.node.node)
        return;
    NamesOf(trail.origin)->Erase(trail.origin.name);
    fState.quiet.Forget(trail.origin);
}

// Its quiet time may have been over while it was away.
void EntryReconciler::Restore(const Trail& trail) {
    if (!trail.entry.isAnnounced || trail.entry.lacksType)
        fState.quiet.Stir(trail.origin, fNow);
}

void EntryReconciler::TellRemoved(const Place& place, const KnownEntry& entry) {
    node_ref directory = fState.watches.Find(place.watch)->Node();
    fState.announcer.Tell({.kind = ChangeKind::Removed,
                           .node = {directory.device, entry.node},
                           .directory = directory.node,
                           .name = place.name},
                          entry.isAnnounced);
}

void EntryReconciler::TellRemoved(const Trail& trail) {
    fState.announcer.Tell({.kind = ChangeKind::Removed,
                           .node = trail.node,
                           .directory = trail.directory,
                           .name = trail.origin.name},
                          trail.entry.isAnnounced);
}

void EntryReconciler::TellMovedOut(const Trail& trail) {
    fState.announcer.Tell({.kind = ChangeKind::Moved,
                           .node = trail.node,
                           .directory = trail.directory,
                           .name = trail.origin.name},
                          trail.entry.isAnnounced);
    // Nothing can be read of it any more.
    for (Watch* watch : fState.watches.FindNode(trail.node))
        fDropped.push_back(watch->number);
}

void EntryReconciler::TellMoved(const Trail& trail, const Place& place) {
    if (!NamesOf(place))
        return;
    Put(place, trail.entry);
    if (!trail.entry.isAnnounced || trail.entry.lacksType)
        fState.quiet.Stir(place, fNow);

    node_ref directory = fState.watches.Find(place.watch)->Node();
    fState.FollowMove(trail.node, trail.path, fState.watches.PathOf(place), directory,
                      fView.Look(place).kind == NodeKind::Directory);
    fState.announcer.Tell({.kind = ChangeKind::Moved,
                           .node = trail.node,
                           .directory = trail.directory,
                           .toDirectory = directory.node,
                           .name = place.name},
                          trail.entry.isAnnounced);
}

void EntryReconciler::SettleArrival(const Place& place) {
    const EventBatch::Touch& touch = fBatch.At(place);
    if ((touch.isCreated || touch.hasArrived) && !fSettled.contains(place))
        SettleNew(place);
}

void EntryReconciler::SettleNew(const Place& place) {
    const NodeStatus& status = fView.Look(place);
    if (!NamesOf(place) || status.kind == NodeKind::Nothing)
        return;
    const Trail* tenant = fState.trails.At(place);
    bool isFromOutside =
        (tenant && tenant->start == Trail::Start::Outside) || !WatchesMovedTo(place).empty();
    bool isFile = status.kind == NodeKind::File;
    KnownEntry entry{.node = status.ref.node,
                     .kind = status.kind,
                     .isAnnounced = isFromOutside || !isFile,
                     .lacksType = isFile && isFromOutside && !fView.HasType(place)};
    Put(place, entry);
    if (isFromOutside)
        TellArrived(place, status);
    else if (isFile)
        fState.quiet.Stir(place, fNow);
    else
        TellCreated(place, entry);
}

// A directory whose entries could not be looked at before it was found again.
void EntryReconciler::Rescan(int number) {
    Watch* watch = fState.watches.Find(number);
    Descriptor directory;
    NameTable now;
    if (!watch || !watch->names || !MonitorState::Hold(*watch, directory) ||
        now.Fill(directory) != B_OK)
        return;
    fView.Forget(number);
    for (const std::string& name : now.NamesUnlike(*watch->names))
        SettleNew({number, name});
    for (const std::string& name : watch->names->NamesUnlike(now)) {
        KnownEntry entry = *watch->names->Find(name);
        watch->names->Erase(name);
        TellRemoved({number, name}, entry);
    }
}

// The watches of what is at the place that have it elsewhere, where it is not any more.
std::vector<Watch*> EntryReconciler::WatchesMovedTo(const Place& place) {
    const NodeStatus& there = fView.Look(place);
    std::vector<Watch*> watches = fState.watches.FindNode(there.ref);
    std::erase_if(watches, [&](const Watch* watch) {
        Descriptor node;
        return MonitorState::Hold(*watch, node);
    });
    return watches;
}

void EntryReconciler::TellArrived(const Place& place, const NodeStatus& status) {
    node_ref directory = fState.watches.Find(place.watch)->Node();
    NodeChange change{.kind = ChangeKind::Moved,
                      .node = status.ref,
                      .toDirectory = directory.node,
                      .name = place.name};
    for (Watch* watch : WatchesMovedTo(place)) {
        change.directory = watch->parent.node;
        fState.FollowMove(status.ref, watch->path, fState.watches.PathOf(place), directory,
                          status.kind == NodeKind::Directory);
    }
    fState.announcer.Tell(change);
}

void EntryReconciler::TellCreated(const Place& place, const KnownEntry& entry) {
    node_ref directory = fState.watches.Find(place.watch)->Node();
    fState.announcer.Tell({.kind = ChangeKind::Created,
                           .node = {directory.device, entry.node},
                           .directory = directory.node,
                           .name = place.name});
}

void EntryReconciler::SettleChange(const Place& place) {
    KnownEntry* entry = fState.watches.FindEntry(place);
    if (entry && fBatch.At(place).isChanged && (!entry->isAnnounced || entry->lacksType))
        fState.quiet.Stir(place, fNow);
}

void EntryReconciler::Put(const Place& place, KnownEntry entry) {
    // What was told once stays told, also if the events that told of it come again or late.
    KnownEntry* old = fState.watches.FindEntry(place);
    if (old && old->node == entry.node)
        entry.isAnnounced |= old->isAnnounced;
    else if (old)
        TellRemoved(place, *old);
    NamesOf(place)->Put(place.name, entry);
}

NameTable* EntryReconciler::NamesOf(const Place& place) {
    Watch* watch = fState.watches.Find(place.watch);
    return watch && watch->names ? &*watch->names : nullptr;
}

} // namespace host
