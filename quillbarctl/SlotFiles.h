#pragma once

#include "base/Types.h"
#include "kits/storage/Node.h"
#include "quillbarctl/Bookmark.h"
#include "quillbarctl/Slots.h"

// Changes of the bookmarks on the disk. Whatever fails is reported on standard error.

// Keeps other runs of this program from changing the bookmarks; makes the root if it is missing.
class StoreLock {
public:
    StoreLock();
    status_t InitCheck() const { return fStatus; }

private:
    BNode fRoot;
    status_t fStatus;
};

// Reads the file with all its attributes.
status_t ReadBookmark(const Slot& slot, Bookmark& bookmark);

// Makes the folder's directory if it has none, and gives it the name if it has none. Directory and
// name are in `folder` then.
status_t MakeFolder(Folder& folder, size_t digit, const std::string& name);

// Makes the file of the bookmark, with its attributes, under a name that stands for no slot, and
// then gives it its own name, over nothing. Either the whole bookmark is there or nothing.
status_t FillSlot(const Folder& folder, size_t digit, const Bookmark& bookmark);

// The same after everything that could fill the slot was moved to the desktop's trash.
status_t ReplaceSlot(const Folder& folder, size_t digit, const Bookmark& bookmark);
