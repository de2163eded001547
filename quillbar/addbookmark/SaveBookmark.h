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

    bool operator==(const QBBookmarkText&) const = default;
};

enum class QBSaveResult {
    Saved,
    NoFolder,   // nothing was written
    NotCreated, // there is no new file
    NotTyped,   // the new file stays as it is, empty
    NotRenamed, // the old bookmark stays as it is
    Incomplete, // not all texts could be written
};

struct QBSaveOutcome {
    QBSaveResult result;
    BString reason; // for the user; may be empty, and is for Saved
};

// Renames the folder to its name, if it can be, and makes the file of the slot's bookmark, or
// renames the one that fills the slot; then writes the texts. A slot that is shown through a
// symbolic link has its texts written into the link's target, which keeps its name. Apart from that
// nothing outside the folder is touched: a name with a "/" is refused. Any thread; the store is not
// used.
QBSaveOutcome SaveBookmark(const QBBookmarkText& bookmark);
