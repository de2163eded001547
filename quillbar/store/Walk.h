#pragma once

#include <functional>

#include "base/Types.h"

class BEntry;

// What a walk makes of a symbolic link: the link itself, or what it points to.
enum class Links { Left, Followed };

// Calls `visit` with each entry of the directory and its full path, in the directory's own order,
// until it returns false. Entries that are gone meanwhile, or whose path cannot be obtained, are
// left out. The status says whether the directory could be opened.
status_t Walk(const BEntry& directory, Links links,
              const std::function<bool(BEntry& entry, const char* path)>& visit);
