#pragma once

#include <optional>
#include <string>
#include <vector>

#include "quillbarctl/Bookmark.h"

// Bookmarks on their way in or out. Folders and slots are digits.

struct CollectedBookmark {
    Bookmark bookmark;
    std::optional<size_t> slot; // where it wants to be
};

// What belongs together: a browser's folder, or one of ours.
struct Group {
    std::string name;
    std::optional<size_t> folder;
    std::vector<CollectedBookmark> bookmarks;
};

using Collection = std::vector<Group>;
