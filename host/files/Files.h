#pragma once

#include <sys/types.h>

#include <string>

#include "base/Types.h"
#include "host/loop/Descriptor.h"

namespace host {

// Names a node without opening it: nothing blocks, no right to read it is needed, and it can be
// asked for its status and attributes. A link at the end is named itself unless `follow`.
status_t HoldNode(const std::string& path, Descriptor& node, bool follow = false);

// Opens a regular file, following links; `flags` are those of open(). Anything else is refused with
// B_IS_A_DIRECTORY or B_NOT_ALLOWED and is not opened.
status_t OpenFile(const std::string& path, int flags, Descriptor& file);

// Waits until the node is on the disk. Does nothing for what is neither file nor directory.
status_t SyncNode(int descriptor);

status_t CreateDirectory(const std::string& path, mode_t mode);
// Also creates the directories on the way; fine if it is there.
status_t CreateDirectories(const std::string& path, mode_t mode);

// B_FILE_EXISTS if something is at `to`, unless it may be replaced. Replacing is one step and is on
// the disk afterwards.
status_t Rename(const std::string& from, const std::string& to, bool replace);
status_t Remove(const std::string& path);

// The place that a path leads to when all links are followed; all of it must exist.
status_t ResolvePath(const std::string& path, std::string& resolved);

} // namespace host
