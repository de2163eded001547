#pragma once

#include <array>
#include <optional>
#include <string>

#include "base/Types.h"
#include "kits/support/String.h"

// The bookmarks on the disk, as the bar shows them. Folders and slots are named by their digits.

struct Slot {
    bool isFilled = false;
    bool isBookmark = false; // with everything that a bookmark has to have
    std::string path;        // of the file that fills it, the platform's
    std::string name;
    std::string url;
    std::string keywords;
};

struct Folder {
    std::string path; // the platform's; empty if the folder has no directory
    std::string name;
    std::array<Slot, 10> slots;
};

using Folders = std::array<Folder, 10>;

// Reads all folders. A root that is missing has no bookmarks and is no failure; nothing is
// made. On failure the reason is on standard error.
status_t ReadFolders(Folders& folders);

// Its digit; nothing if the folder is full.
std::optional<size_t> FirstEmptySlot(const Folder& folder);
