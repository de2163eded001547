#pragma once

#include <list>
#include <map>
#include <mutex>
#include <string>

#include "base/EntryRef.h"
#include "base/Types.h"
#include "host/files/Files.h"

namespace host {

// The last known paths of nodes. Refs name nodes by number, the system opens them by path: the
// paths of nodes whose numbers are handed out are kept here, and checked when they are used.
// Bounded: the longest unused are forgotten. Any thread.
class KnownPaths {
public:
    static KnownPaths& Shared();

    void Remember(node_ref node, const std::string& path);

    // A path that leads to the node now. B_ENTRY_NOT_FOUND if none is known.
    status_t Find(node_ref node, std::string& path);
    // Opens the node itself. `isLink` is set if the path found leads to it by a link.
    status_t Open(node_ref node, FoundNode& found, bool& isLink);

    // The node went from one path to another and, if it is a directory, took along what is below.
    void Moved(node_ref node, const std::string& from, const std::string& to, bool isDirectory);

    static constexpr size_t kLimit = 8192;

private:
    struct Place {
        node_ref node;
        std::string path;
    };

    std::string Lookup(node_ref node);

    std::mutex fMutex;
    // The last used first.
    std::list<Place> fPlaces;
    std::map<node_ref, std::list<Place>::iterator> fByNode;
};

// Replaces the leading directory `from` of `path` by `to`; a path that is not below it stays.
void FollowMove(std::string& path, const std::string& from, const std::string& to);

} // namespace host
