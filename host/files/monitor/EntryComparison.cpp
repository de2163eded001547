#include "host/files/monitor/EntryComparison.h"

#include <fcntl.h>

#include "host/files/Attributes.h"
#include "host/files/DirectoryScan.h"

namespace host {

void EntryComparison::Run() {
    CompareTouched();
    Settle();
    // Some directories are found again now that their own moves are known.
    if (CompareUnread())
        Settle();
    EndWaiting();
    AnnounceQuiet();
    for (int number : fDropped)
        fState.Drop(number);
}

void EntryComparison::CompareTouched() {
    for (const auto& [number, self] : fBatch.Selves()) {
        if (self.isRemoved && fState.watches.NamesOf(number))
            CompareAll(number, Descriptor());
    }
    for (const Place& place : fBatch.Places()) {
        const EventBatch::Touch& touch = fBatch.At(place);
        if (touch.isWritten)
            Stir(place);
        if (touch.changes.empty() || !fState.watches.NamesOf(place.watch) ||
            fBatch.IsRemoved(place.watch))
            continue;
        const Descriptor& directory = DirectoryOf(place.watch);
        NodeStatus status;
        if (!directory) {
            fState.unread.insert(place.watch);
            continue;
        }
        Stat(directory.Get(), place.name, status);
        Compare(place, status);
    }
}

bool EntryComparison::CompareUnread() {
    std::vector<int> found;
    for (int number : fState.unread) {
        fDirectories.erase(number);
        if (const Descriptor& directory = DirectoryOf(number)) {
            CompareAll(number, directory);
            found.push_back(number);
        }
    }
    for (int number : found)
        fState.unread.erase(number);
    return !found.empty();
}

// Without a directory, all its entries are gone.
void EntryComparison::CompareAll(int watch, const Descriptor& directory) {
    std::set<std::string> names;
    for (const auto& [name, entry] : *fState.watches.NamesOf(watch))
        names.insert(name);
    DirectoryScan scan;
    DirectoryScan::Entry entry;
    if (directory && scan.Open(directory) == B_OK) {
        while (scan.Next(entry) == B_OK)
            names.insert(entry.name);
    }
    for (const std::string& name : names) {
        NodeStatus status;
        if (directory)
            Stat(directory.Get(), name, status);
        Compare({watch, name}, status);
    }
}

// Brings the entry in line with the disk and keeps the difference.
void EntryComparison::Compare(const Place& place, const NodeStatus& status) {
    Watch* watch = fState.watches.Find(place.watch);
    KnownEntry* known = fState.watches.FindEntry(place);
    bool isNew = !known || known->node != status.ref.node;
    if (known && isNew) {
        fGone.push_back({.node = {watch->Node().device, known->node},
                         .entry = *known,
                         .origin = place,
                         .directory = watch->Node().node,
                         .path = fState.watches.PathOf(place)});
        fState.quiet.Remove(place);
        watch->names->erase(place.name);
    }
    if (status.kind == NodeKind::Nothing)
        return;
    if (isNew)
        (*watch->names)[place.name] = {.node = status.ref.node, .isAnnounced = false};
    // It may have been seen here before the events of its move were read.
    if (isNew || !known->isAnnounced || fBatch.At(place).hasArrived) {
        fByNode.emplace(status.ref, fCandidates.size());
        fCandidates.push_back({place, status, isNew});
    }
}

void EntryComparison::Settle() {
    std::vector<std::pair<DepartedEntry, Candidate*>> moved;
    // The removal of what a move replaces comes before the move.
    for (const DepartedEntry& gone : fGone) {
        if (Candidate* candidate = FindCandidate(gone.node))
            moved.push_back({gone, candidate});
        else
            SettleGone(gone);
    }
    for (const auto& [departed, candidate] : moved)
        Move(departed, candidate->place, candidate->status);
    for (const Candidate& candidate : fCandidates) {
        DepartedEntry departed;
        if (candidate.isTaken)
            continue;
        if (TakePending(candidate.status.ref, departed))
            Move(departed, candidate.place, candidate.status);
        else if (candidate.isNew)
            SettleNew(candidate);
        else
            Stir(candidate.place); // Its quiet time may have been over while another was here.
    }
    fGone.clear();
    fCandidates.clear();
    fByNode.clear();
}

EntryComparison::Candidate* EntryComparison::FindCandidate(node_ref node) {
    auto [begin, end] = fByNode.equal_range(node);
    for (auto found = begin; found != end; ++found) {
        Candidate& candidate = fCandidates[found->second];
        if (!candidate.isTaken) {
            candidate.isTaken = true;
            return &candidate;
        }
    }
    return nullptr;
}

void EntryComparison::SettleGone(const DepartedEntry& gone) {
    switch (fBatch.FateOf(gone.origin, fState.watches.FindNode(gone.node))) {
    case EventBatch::Fate::Removed:
        fState.watches.Notify({.kind = ChangeKind::Removed,
                               .node = gone.node,
                               .directory = gone.directory,
                               .name = gone.origin.name},
                              gone.entry.isAnnounced);
        break;
    case EventBatch::Fate::MovedOut:
        MoveOut(gone);
        break;
    case EventBatch::Fate::Open:
        fState.moves[gone.node] = gone;
        fState.moveEnds.Set(gone.node, fNow + kGraceTime);
        break;
    }
}

void EntryComparison::SettleNew(const Candidate& candidate) {
    const auto& [place, status, isNew, isTaken] = candidate;
    KnownEntry* entry = fState.watches.FindEntry(place);
    if (!entry)
        return;
    // It may be watched where it was, in a directory that is not.
    Watch* watch = fState.watches.FindNode(status.ref);
    bool isWatched = watch && !watch->IsInPlace();
    bool isFile = status.kind == NodeKind::File;
    if (isWatched || fBatch.CameFromOutside(place)) {
        Move({.node = status.ref,
              .entry = {.node = status.ref.node, .lacksType = isFile && !HasType(place)},
              .directory = isWatched ? watch->parent.node : 0},
             place, status);
    } else if (isFile) {
        fState.quiet.Set(place, fNow + kQuietTime);
    } else {
        entry->isAnnounced = true;
        NotifyCreated(place, *entry);
    }
}

bool EntryComparison::TakePending(node_ref node, DepartedEntry& departed) {
    auto found = fState.moves.find(node);
    if (found == fState.moves.end())
        return false;
    departed = std::move(found->second);
    fState.moves.erase(found);
    fState.moveEnds.Remove(node);
    return true;
}

void EntryComparison::Move(const DepartedEntry& departed, const Place& place,
                           const NodeStatus& status) {
    KnownEntry* entry = fState.watches.FindEntry(place);
    if (!entry)
        return;
    node_ref directory = fState.watches.Find(place.watch)->Node();
    bool wasAnnounced = entry->isAnnounced;
    *entry = departed.entry;
    entry->isAnnounced |= wasAnnounced;
    if (!entry->isAnnounced || entry->lacksType)
        fState.quiet.Set(place, fNow + kQuietTime);
    fState.watches.Moved(departed.node, departed.path, fState.watches.PathOf(place), directory,
                         status.kind == NodeKind::Directory);
    NotifyMove(departed, directory.node, place.name);
    Watch* watch = fState.watches.FindNode(departed.node);
    if (watch && std::exchange(watch->hasUnreadChange, false))
        fState.watches.Notify({.kind = ChangeKind::AttributesChanged, .node = departed.node});
}

void EntryComparison::MoveOut(const DepartedEntry& departed) {
    NotifyMove(departed, 0, departed.origin.name);
    // Nothing can be read of it any more, unless it was found elsewhere meanwhile.
    Watch* watch = fState.watches.FindNode(departed.node);
    if (watch && !watch->IsInPlace())
        fDropped.push_back(watch->number);
}

void EntryComparison::NotifyMove(const DepartedEntry& departed, int64 toDirectory,
                                 const std::string& name) {
    fState.watches.Notify({.kind = ChangeKind::Moved,
                           .node = departed.node,
                           .directory = departed.directory,
                           .toDirectory = toDirectory,
                           .name = name},
                          departed.entry.isAnnounced);
}

void EntryComparison::NotifyCreated(const Place& place, const KnownEntry& entry) {
    node_ref directory = fState.watches.Find(place.watch)->Node();
    fState.watches.Notify({.kind = ChangeKind::Created,
                           .node = {directory.device, entry.node},
                           .directory = directory.node,
                           .name = place.name});
}

void EntryComparison::Stir(const Place& place) {
    KnownEntry* entry = fState.watches.FindEntry(place);
    if (entry && (!entry->isAnnounced || entry->lacksType))
        fState.quiet.Set(place, fNow + kQuietTime);
}

void EntryComparison::EndWaiting() {
    for (node_ref node : fState.moveEnds.TakeDue(fNow)) {
        DepartedEntry departed;
        if (TakePending(node, departed))
            MoveOut(departed);
    }
}

void EntryComparison::AnnounceQuiet() {
    for (const Place& place : fState.quiet.TakeDue(fNow)) {
        if (KnownEntry* entry = fState.watches.FindEntry(place))
            Announce(place, *entry);
    }
}

void EntryComparison::Announce(const Place& place, KnownEntry& entry) {
    const Descriptor& directory = DirectoryOf(place.watch);
    NodeStatus status;
    DepartedEntry departed;
    // If another node is there, its events are on their way.
    if (!directory || Stat(directory.Get(), place.name, status) != B_OK ||
        status.ref.node != entry.node)
        return;
    // It may be what is waited for, seen here before its events were read.
    if (!entry.isAnnounced && TakePending(status.ref, departed)) {
        Move(departed, place, status);
        return;
    }
    bool hasType = HasType(place);
    if (entry.isAnnounced && !(entry.lacksType && hasType))
        return;
    entry.isAnnounced = true;
    entry.lacksType = !hasType;
    NotifyCreated(place, entry);
}

const Descriptor& EntryComparison::DirectoryOf(int number) {
    auto [found, isNew] = fDirectories.try_emplace(number);
    Watch* watch = fState.watches.Find(number);
    if (isNew && watch && !watch->Open(found->second))
        found->second = Descriptor();
    return found->second;
}

bool EntryComparison::HasType(const Place& place) {
    const Descriptor& directory = DirectoryOf(place.watch);
    Descriptor node(openat(directory.Get(), place.name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    int64 size = 0;
    return node && AttributeSize(node.Get(), kTypeAttribute, size) == B_OK && size > 0;
}

} // namespace host
