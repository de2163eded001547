#pragma once

#include <dirent.h>
#include <sys/types.h>

#include <memory>
#include <string>

#include "host/files/NodeStatus.h"
#include "host/loop/Descriptor.h"

namespace host {

// Opens a node as a name only (O_PATH): nothing blocks, no right to read it is needed, and its
// status and attributes can be read. A link at the end is opened itself unless `follow`.
status_t OpenPathOnly(const std::string& path, Descriptor& node, bool follow = false);

// A node that is held open, and where it was found.
struct FoundNode {
    Descriptor descriptor;
    NodeStatus status;
    std::string path;
    // The directory that it was found in.
    node_ref directory;
};

// Opens what is at `path` (see OpenPathOnly). What is known to be a regular file is opened for
// reading where that is allowed, which makes reading its attributes cheap. The directory is left
// alone.
enum class Opening : uint8 { NameOnly, Following, File };
status_t OpenNode(const std::string& path, FoundNode& node, Opening opening);

// A path that leads to the node of the descriptor, for calls that refuse an O_PATH one.
std::string DescriptorPath(int descriptor);

// Opens a regular file, following links; `flags` are those of open(). Other nodes are refused with
// B_IS_A_DIRECTORY or B_NOT_ALLOWED and are not opened.
status_t OpenFile(const std::string& path, int flags, Descriptor& file);

// Waits until the node is on the disk. Does nothing for nodes other than files and directories.
status_t SyncNode(int descriptor);

// Waits for the lock of the node, which may be of any kind that can be opened for reading, and
// takes it until `lock` is closed or the process ends. It holds off only those who call this.
status_t LockNode(int descriptor, Descriptor& lock);

// Creates a directory and those on the way; fine if it is there.
status_t CreateDirectories(const std::string& path, mode_t mode);

// B_FILE_EXISTS if something is at `to`, unless it may be replaced. Replacing is one step and is on
// the disk afterwards.
status_t Rename(const std::string& from, const std::string& to, bool replace);
status_t Remove(const std::string& path);

// The target of a symbolic link, which need not exist. `link` is a descriptor of the link itself.
// B_BAD_VALUE if it is not a link.
status_t ReadLink(int link, std::string& target);

// Sets the permission bits of a node by any descriptor of it.
status_t SetPermissions(int node, mode_t mode);

// The place that a path leads to when all links are followed; all of it must exist.
status_t ResolvePath(const std::string& path, std::string& resolved);

// A walk through a directory, in the disk's order, without "." and "..". It reads no entry's
// status.
class DirectoryScan {
public:
    struct Entry {
        std::string name;
        // From the directory itself; Unknown where the disk does not keep it there.
        NodeKind kind = NodeKind::Unknown;
    };

    status_t Open(const std::string& path);
    // Walks the directory of the descriptor, which stays the caller's.
    status_t Open(const Descriptor& directory);

    // B_ENTRY_NOT_FOUND at the end.
    status_t Next(Entry& entry);

    // The open directory.
    int Get() const { return dirfd(fStream.get()); }

private:
    struct Closer {
        void operator()(DIR* stream) const { closedir(stream); }
    };

    std::unique_ptr<DIR, Closer> fStream;
};

} // namespace host
