#pragma once

#include <dirent.h>

#include <memory>
#include <string>

#include "host/files/NodeStatus.h"
#include "host/loop/Descriptor.h"

namespace host {

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

    status_t Adopt(Descriptor directory);

    std::unique_ptr<DIR, Closer> fStream;
};

} // namespace host
