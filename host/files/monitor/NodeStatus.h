#pragma once

#include <string>

#include "base/EntryRef.h"
#include "base/Types.h"

namespace host {

enum class NodeKind : uint8 {
    Nothing,
    Unknown,
    File,
    Directory,
    Link,
    Other,
};

// What the disk says of a node.
struct NodeStatus {
    node_ref ref;
    NodeKind kind = NodeKind::Nothing;
    // With the number, tells a node from a later one that got the same number; 0 if the disk keeps
    // no birth times.
    int64 birth = 0;
    uint32 mode = 0;
    uint32 owner = 0;
    uint32 group = 0;
    int64 size = 0;
    int64 modified = 0;
    int64 changed = 0;

    bool IsSameNode(const NodeStatus& other) const {
        return ref == other.ref && birth == other.birth;
    }
};

// Looks at `path` (relative to the directory `directory`, a descriptor or AT_FDCWD), or at the node
// of `directory` itself if `path` is empty. A link at the end is looked at itself unless `follow`.
status_t LookAt(int directory, const std::string& path, NodeStatus& status, bool follow = false);
status_t LookAt(const std::string& path, NodeStatus& status, bool follow = false);

// The kind that a directory entry's d_type stands for.
NodeKind KindOfEntryType(unsigned char type);

} // namespace host
