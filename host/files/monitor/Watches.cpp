#include "host/files/monitor/Watches.h"

#include <algorithm>
#include <limits>

#include "host/files/Files.h"
#include "host/files/KnownPaths.h"
#include "host/files/Paths.h"

namespace host {

namespace {

// A name that changes while the directory is read may be missed.
constexpr int kSearches = 8;

uint32 FlagFor(ChangeKind kind) {
    if (kind == ChangeKind::StatusChanged)
        return kWatchStatus;
    return kind == ChangeKind::AttributesChanged ? kWatchAttributes : kWatchName;
}

bool SearchOnce(const std::string& directory, node_ref node, std::string& path) {
    DirectoryScan scan;
    if (scan.Open(directory) != B_OK)
        return false;
    DirectoryScan::Entry entry;
    while (scan.Next(entry) == B_OK) {
        NodeStatus there;
        path = Join(directory, entry.name);
        if (Stat(scan.Get(), entry.name, there) == B_OK && there.ref == node)
            return true;
    }
    return false;
}

} // namespace

std::string Watch::Name() const {
    return LeafOf(path);
}

bool Watch::Open(Descriptor& node) const {
    NodeStatus there;
    return OpenPathOnly(path, node) == B_OK && Stat(node.Get(), "", there) == B_OK &&
           there.ref == Node();
}

bool Watch::IsInPlace() const {
    NodeStatus there;
    return Stat(path, there) == B_OK && there.ref == Node();
}

status_t Watch::FillNames(const Descriptor& directory) {
    NameTable found;
    DirectoryScan scan;
    DirectoryScan::Entry entry;
    status_t result = scan.Open(directory);
    if (result != B_OK)
        return result;
    while ((result = scan.Next(entry)) == B_OK) {
        NodeStatus there;
        if (Stat(scan.Get(), entry.name, there) == B_OK)
            found[entry.name] = {.node = there.ref.node};
    }
    if (result != B_ENTRY_NOT_FOUND)
        return result;
    names = std::move(found);
    return B_OK;
}

Watch* Watches::Find(int number) {
    auto found = fWatches.find(number);
    return found == fWatches.end() ? nullptr : found->second.get();
}

Watch* Watches::FindNode(node_ref node) {
    auto found = fByNode.find(node);
    return found == fByNode.end() ? nullptr : found->second;
}

Watch* Watches::FindDirectory(node_ref node) {
    Watch* watch = FindNode(node);
    return watch && watch->names ? watch : nullptr;
}

KnownEntry* Watches::FindEntry(const Place& place) {
    Watch* watch = Find(place.watch);
    if (!watch || !watch->names)
        return nullptr;
    auto found = watch->names->find(place.name);
    return found == watch->names->end() ? nullptr : &found->second;
}

std::vector<int> Watches::Numbers() const {
    std::vector<int> numbers;
    for (const auto& [number, watch] : fWatches)
        numbers.push_back(number);
    return numbers;
}

Watch& Watches::Add(int number, const NodeStatus& status) {
    auto watch = std::make_unique<Watch>();
    watch->number = number;
    watch->status = status;
    fByNode[status.ref] = watch.get();
    return *(fWatches[number] = std::move(watch));
}

void Watches::Remove(int number) {
    Watch* watch = Find(number);
    if (!watch)
        return;
    // Without birth times, a new node may have taken the number before the end of the old one came.
    if (FindNode(watch->Node()) == watch)
        fByNode.erase(watch->Node());
    fWatches.erase(number);
}

std::string Watches::PathOf(const Place& place) {
    Watch* watch = Find(place.watch);
    return watch ? Join(watch->path, place.name) : "";
}

bool Watches::Search(const Watch& watch, std::string& path) const {
    std::string directory = ParentPath(watch.path);
    for (int search = 0; search < kSearches; search++) {
        path = watch.path;
        if (watch.IsInPlace())
            return true;
        NodeStatus parent;
        if (Stat(directory, parent, true) != B_OK || parent.ref != watch.parent)
            return false;
        if (SearchOnce(directory, watch.Node(), path))
            return true;
    }
    return false;
}

void Watches::Moved(node_ref node, std::string from, const std::string& to, node_ref parent,
                    bool isDirectory) {
    if (Watch* watch = FindNode(node)) {
        from = watch->path;
        watch->path = to;
        watch->parent = parent;
    }
    if (from.empty())
        return;
    if (isDirectory) {
        for (auto& [number, watch] : fWatches)
            FollowMove(watch->path, from, to);
    }
    KnownPaths::Shared().Moved(node, from, to, isDirectory);
}

void Watches::Notify(const NodeChange& change, bool toDirectories) {
    std::set<Listener> listeners = ListenersOf(change.node, FlagFor(change.kind));
    if (toDirectories) {
        for (int64 directory : {change.directory, change.toDirectory})
            listeners.merge(ListenersOf({change.node.device, directory}, kWatchEntries));
    }
    Send(listeners, change);
}

void Watches::NotifyLost(const Watch& watch, const Watch* except) {
    std::set<Listener> listeners = ListenersOf(watch.Node(), kWatchAll);
    if (except) {
        for (const Listener& notified : ListenersOf(except->Node(), kWatchEntries))
            listeners.erase(notified);
    }
    Send(listeners, Departure(watch, ChangeKind::Removed));
}

std::set<Listener> Watches::ListenersOf(node_ref node, uint32 flags) {
    std::set<Listener> listeners;
    if (Watch* watch = FindNode(node)) {
        for (const auto& [listener, wanted] : watch->listeners) {
            if (wanted & flags)
                listeners.insert(listener);
        }
    }
    return listeners;
}

void Watches::Send(const std::set<Listener>& listeners, const NodeChange& change) {
    for (const Listener& listener : listeners) {
        if (!listener->NodeChanged(change))
            fGone.push_back(listener);
    }
}

NodeChange Departure(const Watch& watch, ChangeKind kind) {
    return {
        .kind = kind, .node = watch.Node(), .directory = watch.parent.node, .name = watch.Name()};
}

void MonitorState::Drop(int number) {
    inotify.Remove(number);
    Forget(number);
}

void MonitorState::Forget(int number) {
    std::erase_if(moves, [&](const auto& item) { return item.second.origin.watch == number; });
    std::erase_if(quiet, [&](const auto& item) { return item.first.watch == number; });
    unread.erase(number);
    watches.Remove(number);
}

bigtime_t MonitorState::NextDeadline() const {
    bigtime_t next = std::numeric_limits<bigtime_t>::max();
    for (const auto& [node, departed] : moves)
        next = std::min(next, departed.deadline);
    for (const auto& [place, deadline] : quiet)
        next = std::min(next, deadline);
    return moves.empty() && quiet.empty() ? 0 : next;
}

} // namespace host
