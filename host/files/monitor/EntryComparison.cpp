#include "host/files/monitor/EntryComparison.h"

#include <fcntl.h>

#include "host/files/Attributes.h"
#include "host/files/Files.h"

namespace host {

namespace {

// Takes the items whose time has come out of the map.
template <typename Map, typename Deadline>
std::vector<typename Map::value_type> TakeDue(Map& map, bigtime_t now, Deadline deadlineOf) {
    std::vector<typename Map::value_type> due;
    std::erase_if(map, [&](const auto& item) {
        bool isDue = deadlineOf(item.second) <= now;
        if (isDue)
            due.push_back(item);
        return isDue;
    });
    return due;
}

} // namespace

void EntryComparison::Run() {
    CompareTouched();
    Settle();
    // Some directories are found again now that their own moves are known.
    if (CompareUnread())
        Settle();
    EndWaiting();
    for (int number : fDropped)
        fState.Drop(number);
}

void EntryComparison::CompareTouched() {
    for (const auto& [number, events] : fBatch.Selves()) {
        Watch* watch = fState.watches.Find(number);
        if ((events & IN_DELETE_SELF) && watch && watch->names)
            CompareAll(*watch, Descriptor());
    }
    for (const Place& place : fBatch.Places()) {
        const uint32 events = fBatch.At(place);
        if (events & (IN_ATTRIB | IN_CLOSE_WRITE))
            Stir(place);
        Watch* watch = fState.watches.Find(place.watch);
        if (!(events & EventBatch::kNameChanges) || !watch || !watch->names ||
            (fBatch.Of(place.watch) & IN_DELETE_SELF))
            continue;
        NodeStatus status;
        if (const Descriptor& directory = DirectoryOf(place.watch)) {
            Stat(directory.Get(), place.name, status);
            Compare(place, status);
        } else {
            fState.unread.insert(place.watch);
        }
    }
}

bool EntryComparison::CompareUnread() {
    return std::erase_if(fState.unread, [this](int number) {
               fDirectories.erase(number);
               const Descriptor& directory = DirectoryOf(number);
               if (directory)
                   CompareAll(*fState.watches.Find(number), directory);
               return bool(directory);
           }) > 0;
}

// Without a directory, all its entries are gone.
void EntryComparison::CompareAll(Watch& watch, const Descriptor& directory) {
    std::set<std::string> names;
    for (const auto& [name, entry] : *watch.names)
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
        Compare({watch.number, name}, status);
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
        fState.quiet.erase(place);
        watch->names->erase(place.name);
    }
    if (status.kind == NodeKind::Nothing)
        return;
    if (isNew)
        (*watch->names)[place.name] = {.node = status.ref.node, .isAnnounced = false};
    // It may have been seen here before the events of its move were read.
    if (isNew || !known->isAnnounced || (fBatch.At(place) & IN_MOVED_TO))
        fCandidates.insert({status.ref, {place, status, isNew}});
}

void EntryComparison::Settle() {
    std::vector<std::pair<DepartedEntry, Candidate>> moved;
    // The removal of what a move replaces comes before the move.
    for (DepartedEntry& gone : fGone) {
        if (auto candidate = fCandidates.extract(gone.node))
            moved.push_back({gone, candidate.mapped()});
        else
            SettleGone(gone);
    }
    for (const auto& [departed, candidate] : moved)
        Move(departed, candidate.place, candidate.status);
    for (const auto& [node, candidate] : fCandidates) {
        if (auto pending = fState.moves.extract(node))
            Move(pending.mapped(), candidate.place, candidate.status);
        else if (candidate.isNew)
            SettleNew(candidate);
        else
            Stir(candidate.place); // Its quiet time may have been over while another was here.
    }
    fGone.clear();
    fCandidates.clear();
}

void EntryComparison::SettleGone(DepartedEntry& gone) {
    if (fLeft.contains(gone.origin)) {
        gone.deadline = fNow + kGraceTime;
        fState.moves[gone.node] = gone;
        return;
    }
    fState.watches.Notify({.kind = ChangeKind::Removed,
                           .node = gone.node,
                           .directory = gone.directory,
                           .name = gone.origin.name},
                          gone.entry.isAnnounced);
}

void EntryComparison::SettleNew(const Candidate& candidate) {
    const auto& [place, status, isNew] = candidate;
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
        fState.quiet[place] = fNow + kQuietTime;
    } else {
        entry->isAnnounced = true;
        NotifyCreated(place, *entry);
    }
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
    Stir(place);
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
        fState.quiet[place] = fNow + kQuietTime;
}

void EntryComparison::EndWaiting() {
    auto ofMove = [](const DepartedEntry& departed) { return departed.deadline; };
    for (const auto& [node, departed] : TakeDue(fState.moves, fNow, ofMove))
        MoveOut(departed);
    auto ofFile = [](bigtime_t deadline) { return deadline; };
    for (const auto& [place, deadline] : TakeDue(fState.quiet, fNow, ofFile))
        Announce(place);
}

void EntryComparison::Announce(const Place& place) {
    KnownEntry* entry = fState.watches.FindEntry(place);
    const Descriptor& directory = DirectoryOf(place.watch);
    NodeStatus status;
    // If another node is there, its events are on their way.
    if (!entry || !directory || Stat(directory.Get(), place.name, status) != B_OK ||
        status.ref.node != entry->node)
        return;
    // It may be what is waited for, seen here before its events were read.
    auto pending =
        entry->isAnnounced ? decltype(fState.moves)::node_type() : fState.moves.extract(status.ref);
    if (pending)
        return Move(pending.mapped(), place, status);
    bool hasType = HasType(place);
    if (entry->isAnnounced && !(entry->lacksType && hasType))
        return;
    entry->isAnnounced = true;
    entry->lacksType = !hasType;
    NotifyCreated(place, *entry);
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
