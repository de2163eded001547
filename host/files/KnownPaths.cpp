#include "host/files/KnownPaths.h"

namespace host {

KnownPaths& KnownPaths::Shared() {
    // Never destroyed: other threads may use it until the process ends.
    static KnownPaths& shared = *new KnownPaths;
    return shared;
}

void KnownPaths::Remember(node_ref node, const std::string& path) {
    std::lock_guard lock(fMutex);
    auto found = fByNode.find(node);
    if (found != fByNode.end()) {
        found->second->path = path;
        fPlaces.splice(fPlaces.begin(), fPlaces, found->second);
        return;
    }
    fPlaces.push_front({node, path});
    fByNode[node] = fPlaces.begin();
    if (fPlaces.size() > kLimit) {
        fByNode.erase(fPlaces.back().node);
        fPlaces.pop_back();
    }
}

std::string KnownPaths::Lookup(node_ref node) {
    std::lock_guard lock(fMutex);
    auto found = fByNode.find(node);
    if (found == fByNode.end())
        return "";
    fPlaces.splice(fPlaces.begin(), fPlaces, found->second);
    return found->second->path;
}

status_t KnownPaths::Find(node_ref node, std::string& path) {
    FoundNode found;
    bool isLink;
    status_t status = Open(node, found, isLink);
    path = found.path;
    return status;
}

status_t KnownPaths::Open(node_ref node, FoundNode& found, bool& isLink) {
    std::string path = Lookup(node);
    if (path.empty())
        return B_ENTRY_NOT_FOUND;
    // A directory may be known by a link that leads to it.
    for (bool follow : {false, true}) {
        isLink = follow;
        if (OpenNode(path, found, follow ? Opening::Following : Opening::NameOnly) == B_OK &&
            found.status.ref == node)
            return B_OK;
    }
    return B_ENTRY_NOT_FOUND;
}

void KnownPaths::Moved(node_ref node, const std::string& from, const std::string& to,
                       bool isDirectory) {
    std::lock_guard lock(fMutex);
    auto found = fByNode.find(node);
    if (found != fByNode.end())
        found->second->path = to;
    if (!isDirectory)
        return;
    for (Place& place : fPlaces)
        FollowMove(place.path, from, to);
}

void FollowMove(std::string& path, const std::string& from, const std::string& to) {
    if (path.size() > from.size() && path[from.size()] == '/' &&
        path.compare(0, from.size(), from) == 0)
        path.replace(0, from.size(), to);
}

} // namespace host
