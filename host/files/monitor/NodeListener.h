#pragma once

#include <string>

#include "base/EntryRef.h"

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

} // namespace host
