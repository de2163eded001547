#pragma once

#include <string>

#include "base/EntryRef.h"
#include "host/files/monitor/AttributeCopy.h"

namespace host {

// What a listener asks for about a node.
inline constexpr uint32 kWatchName = 1;
inline constexpr uint32 kWatchStatus = 2;
inline constexpr uint32 kWatchAttributes = 4;
inline constexpr uint32 kWatchEntries = 8;

enum class ChangeKind : uint8 {
    Created,
    Removed,
    Moved,
    StatusChanged,
    AttributeChanged,
};

// Something that happened to a node.
struct NodeChange {
    ChangeKind kind = ChangeKind::Created;
    node_ref node;
    // The directory it is in, was removed from, or left; 0 if it came from one that is not known.
    int64 directory = 0;
    // Moved: the directory it came to; 0 if that is not known.
    int64 toDirectory = 0;
    // Its name, after a move the new one where that is known.
    std::string name = {};
    std::string attribute = {};
    AttributeCause cause = AttributeCause::Changed;
};

// Is told of changes, on the service thread, with the monitor locked: it must only pass them on.
class NodeListener {
public:
    virtual ~NodeListener() = default;

    // False if nobody listens any more; it is then told nothing again.
    virtual bool NodeChanged(const NodeChange& change) = 0;
};

} // namespace host
