#pragma once

#include "kits/support/String.h"

// What is to be in a slot. Numbers count from one.
struct QBBookmarkText {
    int folder;
    int slot;
    BString folderName;
    BString name;
    BString url;
    BString keywords;
};

enum class QBSaveResult {
    Saved,
    NoFolder,   // nothing was written
    NotCreated, // there is no new file
    NotTyped,   // the new file stays as it is, empty
    NotRenamed, // the old bookmark stays as it is
};

// Renames the folder to its name, if it can be, and makes the file of the slot's bookmark, or
// renames the one that fills the slot; then writes the texts. Nothing outside the folder is ever
// touched: a name that is none of a file is refused. `unsaved` tells the user which texts could not
// be written, and why; it is empty if all were. Any thread; the store is not used.
QBSaveResult SaveBookmark(const QBBookmarkText& bookmark, BString* unsaved);
