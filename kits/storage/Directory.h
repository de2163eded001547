#pragma once

#include <sys/types.h>

#include <memory>
#include <string>

#include "kits/storage/StorageDefs.h"

class BEntry;

namespace host {
class DirectoryScan;
}

// An open directory and a walk through its entries. One thread at a time.
class BDirectory {
public:
    // Opens the directory; a symbolic link to one is followed. B_NOT_A_DIRECTORY,
    // B_ENTRY_NOT_FOUND, B_PERMISSION_DENIED. The walk starts at the first entry.
    explicit BDirectory(const BEntry* entry);
    ~BDirectory();

    // B_OK when a directory is open, or why none is.
    status_t InitCheck() const { return fStatus; }

    // Sets `entry` to the next entry, in the order of the disk, without "." and "..".
    // B_ENTRY_NOT_FOUND, with `entry` unset, when there are no more. With `traverse` a symbolic
    // link is replaced by the place it leads to; one that leads nowhere yields B_OK and an `entry`
    // whose InitCheck gives the reason, so that it does not end the walk. A walk takes time in
    // proportion to the entries and opens none of them.
    status_t GetNextEntry(BEntry* entry, bool traverse = false);

private:
    std::string fHostPath;
    std::unique_ptr<host::DirectoryScan> fScan;
    status_t fStatus;
};

// Creates the directory `path` and those on the way to it that are missing, with the permission
// bits `mode` less the umask. B_OK if it is there already. Any thread.
status_t create_directory(const char* path, mode_t mode);
