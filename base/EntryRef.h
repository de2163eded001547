#pragma once

#include <string>

#include "base/Types.h"

// Names an entry by the node of its directory and its name in it. A copy has its own copy of the
// name. It stays what it is when the entry is renamed or removed. Plain data; any thread.
struct entry_ref {
    entry_ref() = default;
    entry_ref(int32 device_, int64 directory_, const char* name_)
        : device(device_)
        , directory(directory_)
        , name(name_ ? name_ : "") {}

    bool operator==(const entry_ref&) const = default;

    int32 device = -1;
    int64 directory = -1;
    std::string name;
};

// Identifies a file or directory itself, independent of its name: its device and its number
// there.
struct node_ref {
    auto operator<=>(const node_ref&) const = default;

    int32 device = -1;
    int64 node = -1;
};
