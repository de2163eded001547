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

// A text with more bookmarks or folders is not taken: each takes many times its text's memory.
inline constexpr size_t kMostBookmarks = 100'000;
inline constexpr const char* kTooMany = "it has more than 100,000 bookmarks or folders";
