#include "host/files/monitor/Watches.h"

#include <sys/inotify.h>

#include <algorithm>

#include "host/files/DirectoryScan.h"
#include "host/files/Files.h"
#include "host/files/KnownPaths.h"
#include "host/files/Paths.h"

namespace host {

namespace {

constexpr uint32 kEntriesMask =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ATTRIB | IN_CLOSE_WRITE;

// A name that changes while the directory is read may be missed.
constexpr int kSearches = 8;

uint32 FlagFor(ChangeKind kind) {
    if (kind == ChangeKind::StatusChanged)
        return kWatchStatus;
    return kind == ChangeKind::AttributesChanged ? kWatchAttributes : kWatchName;
}

bool Contains(const std::vector<Listener>& listeners, const Listener& listener) {
    return std::find(listeners.begin(), listeners.end(), listener) != listeners.end();
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

uint32 Watch::Flags() const {
    uint32 flags = 0;
    for (const auto& [listener, wanted] : listeners)
        flags |= wanted;
    return flags;
}

uint32 Watch::Mask() const {
    uint32 flags = Flags();
    uint32 mask = IN_MOVE_SELF | IN_DELETE_SELF | IN_EXCL_UNLINK;
    // A file that is removed while somebody holds it open only reports its link count.
    mask |= IN_ATTRIB;
    if (flags & kWatchEntries)
        mask |= kEntriesMask;
    // On a directory this would report every write to a file in it.
    if ((flags & kWatchStatus) && status.kind != NodeKind::Directory)
        mask |= IN_MODIFY;
    return mask;
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

void Watch::SetPath(const std::string& newPath) {
    NodeStatus directory;
    Stat(ParentPath(newPath), directory, true);
    path = newPath;
    parent = directory.ref;
}

void Watch::AddListener(const Listener& listener, uint32 flags) {
    auto old = std::find_if(listeners.begin(), listeners.end(),
                            [&](const auto& item) { return item.first == listener; });
    if (old != listeners.end())
        old->second |= flags;
    else
        listeners.push_back({listener, flags});
}

status_t Watch::FillNames(const Descriptor& directory) {
    names.emplace();
    DirectoryScan scan;
    status_t result = scan.Open(directory);
    if (result != B_OK)
        return result;
    DirectoryScan::Entry entry;
    while ((result = scan.Next(entry)) == B_OK) {
        NodeStatus there;
        if (Stat(scan.Get(), entry.name, there) == B_OK)
            (*names)[entry.name] = {.node = there.ref.node};
    }
    return result == B_ENTRY_NOT_FOUND ? B_OK : result;
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

NameTable* Watches::NamesOf(int number) {
    Watch* watch = Find(number);
    return watch && watch->names ? &*watch->names : nullptr;
}

KnownEntry* Watches::FindEntry(const Place& place) {
    NameTable* names = NamesOf(place.watch);
    if (!names)
        return nullptr;
    auto found = names->find(place.name);
    return found == names->end() ? nullptr : &found->second;
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
    std::vector<Listener> listeners;
    Collect(listeners, change.node, FlagFor(change.kind));
    if (toDirectories) {
        Collect(listeners, {change.node.device, change.directory}, kWatchEntries);
        Collect(listeners, {change.node.device, change.toDirectory}, kWatchEntries);
    }
    Send(listeners, change);
}

void Watches::NotifyAll(const Watch& watch, const NodeChange& change, const Watch* except) {
    std::vector<Listener> notified;
    if (except)
        Collect(notified, except->Node(), kWatchEntries);
    std::vector<Listener> listeners;
    for (const auto& [listener, flags] : watch.listeners) {
        if (!Contains(notified, listener))
            listeners.push_back(listener);
    }
    Send(listeners, change);
}

void Watches::Collect(std::vector<Listener>& listeners, node_ref node, uint32 flag) {
    Watch* watch = FindNode(node);
    if (!watch)
        return;
    for (const auto& [listener, flags] : watch->listeners) {
        if ((flags & flag) && !Contains(listeners, listener))
            listeners.push_back(listener);
    }
}

void Watches::Send(const std::vector<Listener>& listeners, const NodeChange& change) {
    for (const auto& listener : listeners) {
        if (!listener->NodeChanged(change))
            fGone.push_back(listener);
    }
}

NodeChange Departure(const Watch& watch, ChangeKind kind) {
    return {
        .kind = kind, .node = watch.Node(), .directory = watch.parent.node, .name = watch.Name()};
}

} // namespace host
