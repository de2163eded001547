#pragma once

#include <optional>
#include <vector>

#include "quillbarctl/Slots.h"
#include "quillbarctl/formats/Collection.h"

// Where bookmarks that come in are to be.

enum class Fate { Placed, IsThere, NoRoom };

struct Placed {
    const Bookmark* bookmark;
    Fate fate;
    size_t folder; // of one that is placed
    size_t slot;
};

size_t RoomIn(const Folder& folder);

// Finds empty slots for all; the disk is not used. `folders` is then as if
// they were there, names included. Each group is kept together, in a folder of its name, else in
// one without a name or bookmarks, which gets the group's, else in the first with room for all of
// it; only where none has that it is divided, beginning with the emptiest. A group that asks for a
// folder gets what is free there first, each bookmark the slot that it asks for if that is. With
// `only` no other folder is used.
std::vector<Placed> PlaceAll(const Collection& collection, std::optional<size_t> only,
                             Folders& folders);
