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

// The status of a node when it was read.
struct NodeStatus {
    bool operator==(const NodeStatus&) const = default;

    // The number is made of inode and birth time: disks give an inode number again, often at once,
    // and no two nodes may be taken for one. It is the inode where the disk keeps no birth times.
    node_ref ref;
    NodeKind kind = NodeKind::Nothing;
    uint32 mode = 0;
    uint32 owner = 0;
    uint32 group = 0;
    int64 size = 0;
    int64 modified = 0;
};

// From the file type bits of a mode, as st_mode has them.
NodeKind KindOfMode(uint32 mode);

// Reads the status of `path` (relative to the directory `directory`, a descriptor or AT_FDCWD), or
// of `directory` itself if `path` is empty. A link at the end is not followed unless `follow`.
// After a failure the status is that of Nothing. Any thread.
status_t Stat(int directory, const std::string& path, NodeStatus& status, bool follow = false);
status_t Stat(const std::string& path, NodeStatus& status, bool follow = false);

} // namespace host
