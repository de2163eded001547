#pragma once

#include <map>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/files/monitor/AttributeCopy.h"
#include "host/files/monitor/NameTable.h"
#include "host/files/monitor/NodeListener.h"
#include "host/files/monitor/NodeStatus.h"

namespace host {

// An entry of a watched directory, by the number of the directory's watch.
struct Place {
    auto operator<=>(const Place&) const = default;

    int watch = -1;
    std::string name;
};

// A node that is watched, for all who listen.
struct Watch {
    node_ref Node() const { return status.ref; }
    std::string Name() const;
    uint32 Flags() const;
    // What the system is to tell about it.
    uint32 Mask() const;

    int number = -1;
    NodeStatus status;
    // Where it was last, and the directory that it was in there.
    std::string path;
    node_ref parent;
    std::vector<std::pair<std::shared_ptr<NodeListener>, uint32>> listeners;
    // The node does not exist any more; the end of the watch follows.
    bool isGone = false;
    // Kept while a listener asks for entries, attributes.
    std::optional<NameTable> names;
    std::optional<AttributeCopy> attributes;
};

// The watched nodes.
class WatchTable {
public:
    // Null if there is no such watch. A pointer holds until that watch is removed.
    Watch* Find(int number);
    // A node has a second watch for a moment when its number went to a new node before the end of
    // the old one was noticed.
    std::vector<Watch*> FindNode(node_ref node);
    // The watch of a directory whose entries are watched.
    Watch* FindDirectory(node_ref node);
    // The watched directory that `watch` is known to be an entry of, or null.
    Watch* ParentOf(const Watch& watch);
    KnownEntry* FindEntry(const Place& place);
    std::vector<int> Numbers() const;

    Watch& Add(int number, const NodeStatus& status, const std::string& path);
    void Remove(int number);

    // The path of a place, "" if its directory is watched no more.
    std::string PathOf(const Place& place);

    // The node, and what is below it, is found at another path from now on.
    void Moved(node_ref node, const std::string& from, const std::string& to, node_ref parent,
               bool isDirectory);

private:
    std::unordered_map<int, std::unique_ptr<Watch>> fWatches;
    std::multimap<node_ref, Watch*> fByNode;
};

} // namespace host
