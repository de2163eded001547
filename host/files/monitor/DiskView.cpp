#include "host/files/monitor/DiskView.h"

#include <fcntl.h>

#include "host/files/Attributes.h"

namespace host {

const NodeStatus& DiskView::Look(const Place& place) {
    auto [seen, isNew] = fSeen.try_emplace(place);
    const Descriptor& directory = DirectoryOf(place.watch);
    if (isNew && directory)
        LookAt(directory.Get(), place.name, seen->second);
    return seen->second;
}

bool DiskView::HasType(const Place& place) {
    const Descriptor& directory = DirectoryOf(place.watch);
    if (!directory)
        return false;
    Descriptor node(openat(directory.Get(), place.name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    int64 size = 0;
    return node && AttributeSize(node.Get(), kTypeAttribute, size) == B_OK && size > 0;
}

void DiskView::Forget(int watch) {
    fDirectories.erase(watch);
    std::erase_if(fSeen, [watch](const auto& item) { return item.first.watch == watch; });
}

std::vector<int> DiskView::Missing() const {
    std::vector<int> missing;
    for (const auto& [watch, directory] : fDirectories) {
        if (!directory)
            missing.push_back(watch);
    }
    return missing;
}

const Descriptor& DiskView::DirectoryOf(int watch) {
    auto [found, isNew] = fDirectories.try_emplace(watch);
    if (isNew)
        Open(watch, found->second);
    return found->second;
}

void DiskView::Open(int number, Descriptor& directory) {
    Watch* watch = fState.watches.Find(number);
    if (!watch || MonitorState::Hold(*watch, directory))
        return;
    // It may have been renamed among the events at hand.
    std::string path = fState.trails.PathOfNode(watch->Node());
    if (!path.empty() && MonitorState::Hold(*watch, path, directory))
        return;
    // Or the events that tell of it are still to be read.
    if (!MonitorState::Find(*watch, path, directory))
        directory = Descriptor();
}

} // namespace host
