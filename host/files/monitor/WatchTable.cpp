#include "host/files/monitor/WatchTable.h"

#include <sys/inotify.h>

#include <algorithm>

#include "host/files/Paths.h"
#include "host/files/monitor/KnownPaths.h"

namespace host {

namespace {

constexpr uint32 kEntriesMask =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ATTRIB | IN_CLOSE_WRITE;

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
    // A file that is removed while somebody holds it open only tells of its link count.
    uint32 mask = IN_MOVE_SELF | IN_DELETE_SELF | IN_ATTRIB | IN_EXCL_UNLINK;
    if (flags & kWatchEntries)
        mask |= kEntriesMask;
    // On a directory this would tell of every write to a file in it.
    if ((flags & kWatchStatus) && status.kind != NodeKind::Directory)
        mask |= IN_MODIFY;
    return mask;
}

Watch* WatchTable::Find(int number) {
    auto found = fWatches.find(number);
    return found == fWatches.end() ? nullptr : found->second.get();
}

std::vector<Watch*> WatchTable::FindNode(node_ref node) {
    std::vector<Watch*> watches;
    auto [begin, end] = fByNode.equal_range(node);
    for (auto found = begin; found != end; ++found)
        watches.push_back(found->second);
    return watches;
}

Watch* WatchTable::FindDirectory(node_ref node) {
    auto [begin, end] = fByNode.equal_range(node);
    for (auto found = begin; found != end; ++found) {
        if (found->second->names)
            return found->second;
    }
    return nullptr;
}

Watch* WatchTable::ParentOf(const Watch& watch) {
    Watch* parent = FindDirectory(watch.parent);
    if (!parent)
        return nullptr;
    KnownEntry* entry = parent->names->Find(watch.Name());
    return entry && entry->node == watch.Node().node ? parent : nullptr;
}

KnownEntry* WatchTable::FindEntry(const Place& place) {
    Watch* watch = Find(place.watch);
    return watch && watch->names ? watch->names->Find(place.name) : nullptr;
}

std::vector<int> WatchTable::Numbers() const {
    std::vector<int> numbers;
    for (const auto& [number, watch] : fWatches)
        numbers.push_back(number);
    return numbers;
}

Watch& WatchTable::Add(int number, const NodeStatus& status, const std::string& path) {
    auto watch = std::make_unique<Watch>();
    watch->number = number;
    watch->status = status;
    watch->path = path;
    NodeStatus parent;
    LookAt(ParentPath(path), parent, true);
    watch->parent = parent.ref;
    fByNode.emplace(status.ref, watch.get());
    return *(fWatches[number] = std::move(watch));
}

void WatchTable::Remove(int number) {
    Watch* watch = Find(number);
    if (!watch)
        return;
    auto [begin, end] = fByNode.equal_range(watch->Node());
    fByNode.erase(std::find_if(begin, end, [&](auto& item) { return item.second == watch; }));
    fWatches.erase(number);
}

std::string WatchTable::PathOf(const Place& place) {
    Watch* watch = Find(place.watch);
    return watch ? Join(watch->path, place.name) : "";
}

void WatchTable::Moved(node_ref node, const std::string& from, const std::string& to,
                       node_ref parent, bool isDirectory) {
    for (Watch* watch : FindNode(node)) {
        watch->path = to;
        watch->parent = parent;
    }
    if (!isDirectory)
        return;
    for (auto& [number, watch] : fWatches)
        FollowMove(watch->path, from, to);
}

} // namespace host
