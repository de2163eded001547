#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/files/NodeStatus.h"
#include "host/files/monitor/Inotify.h"

namespace host {

// The changes of a node that a listener asks for.
inline constexpr uint32 kWatchName = 1;
inline constexpr uint32 kWatchStatus = 2;
inline constexpr uint32 kWatchAttributes = 4;
inline constexpr uint32 kWatchEntries = 8;
inline constexpr uint32 kWatchAll = 15;

enum class ChangeKind : uint8 {
    Created,
    Removed,
    Moved,
    StatusChanged,
    AttributesChanged,
};

// Something that happened to a node.
struct NodeChange {
    ChangeKind kind = ChangeKind::Created;
    node_ref node;
    // The directory it is in, was removed from, or left; 0 if it came from an unknown one.
    int64 directory = 0;
    // Moved: the directory it came to; 0 if that is unknown.
    int64 toDirectory = 0;
    // Its name, after a move the new one where that is known.
    std::string name = {};
};

// Receives changes on the service thread, with the monitor locked: it must only pass them on.
class NodeListener {
public:
    virtual ~NodeListener() = default;

    // False if nobody listens any more; nothing is sent to it again.
    virtual bool NodeChanged(const NodeChange& change) = 0;
};

// An entry of a watched directory, by the number of the directory's watch.
struct Place {
    auto operator<=>(const Place&) const = default;

    int watch = -1;
    std::string name;
};

// An entry as it was when its directory was last compared with the disk.
struct KnownEntry {
    int64 node = 0;
    // Listeners know of it, or it was there before them.
    bool isAnnounced = true;
    // It was announced without a MIME type, which may come later.
    bool lacksType = false;
};

// The entries of a watched directory. Events give names only, and a node that is gone cannot be
// looked at any more.
using NameTable = std::unordered_map<std::string, KnownEntry>;

using Listener = std::shared_ptr<NodeListener>;

// A node that is watched, for all its listeners.
struct Watch {
    node_ref Node() const { return status.ref; }
    std::string Name() const;
    // Opens (O_PATH) the node at its last path; false if another node is there now, or nothing.
    bool Open(Descriptor& node) const;
    bool IsInPlace() const;
    status_t FillNames(const Descriptor& directory);

    int number = -1;
    NodeStatus status;
    // Its last path, and the directory that it was in there.
    std::string path;
    node_ref parent;
    std::map<Listener, uint32> listeners;
    // The node does not exist any more; the end of the watch follows.
    bool isGone = false;
    // Its attributes changed while it was between the two halves of a move.
    bool hasUnreadChange = false;
    // Kept from the first listener on that asks for entries.
    std::optional<NameTable> names;
};

// The watched nodes, and the way to their listeners.
class Watches {
public:
    // Null if there is no such watch. A pointer holds until that watch is removed.
    Watch* Find(int number);
    Watch* FindNode(node_ref node);
    // The watch of a directory whose entries are watched.
    Watch* FindDirectory(node_ref node);
    // Null if its directory's entries are not watched either.
    KnownEntry* FindEntry(const Place& place);
    std::vector<int> Numbers() const;

    Watch& Add(int number, const NodeStatus& status);
    void Remove(int number);

    // "" if the directory is not watched any more.
    std::string PathOf(const Place& place);
    // Searches the directory that the node was in; false if it is not there under any name.
    bool Search(const Watch& watch, std::string& path) const;

    // The node, and all below it, went from one path to another. The path of its watch counts
    // before `from`: it follows the moves of the directories above.
    void Moved(node_ref node, std::string from, const std::string& to, node_ref parent,
               bool isDirectory);

    // Notifies the node's listeners and, if `toDirectories`, those of the directories that it is,
    // was or comes in; each once.
    void Notify(const NodeChange& change, bool toDirectories = true);
    // Notifies every listener of `watch`, except those who listen to the entries of `except`, that
    // the node is gone.
    void NotifyLost(const Watch& watch, const Watch* except);
    // The listeners that turned out to be gone since the last call.
    std::vector<Listener> TakeGone() { return std::exchange(fGone, {}); }

private:
    std::set<Listener> ListenersOf(node_ref node, uint32 flags);
    void Send(const std::set<Listener>& listeners, const NodeChange& change);

    std::unordered_map<int, std::unique_ptr<Watch>> fWatches;
    std::map<node_ref, Watch*> fByNode;
    std::vector<Listener> fGone;
};

// The change that a watched node itself has left its place.
NodeChange Departure(const Watch& watch, ChangeKind kind);

// An entry that is not at its place any more.
struct DepartedEntry {
    node_ref node;
    KnownEntry entry = {};
    Place origin = {};
    int64 directory = 0;
    std::string path = {};
    // When its move is taken for one to where nobody watches.
    bigtime_t deadline = 0;
};

// The state of the node monitor between its batches of events.
struct MonitorState {
    // Ends a watch.
    void Drop(int number);
    // Forgets a watch that the system has ended.
    void Forget(int number);
    // The next end of a waiting time; 0 when nothing is waited for.
    bigtime_t NextDeadline() const;

    Inotify inotify;
    Watches watches;
    // Entries that left by a move whose other half has not come yet.
    std::map<node_ref, DepartedEntry> moves;
    // New files, and files without a type, until nothing has happened to them for a while: programs
    // that copy create a file, fill it, close it and only then set its attributes.
    std::map<Place, bigtime_t> quiet;
    // The watches of directories that were not at their paths when their events came.
    std::set<int> unread;
};

} // namespace host
