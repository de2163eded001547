#pragma once

#include <memory>
#include <string>

#include "kits/storage/Node.h"

class BFile;

namespace host {
class DirectoryScan;
}

// An open directory and a walk through its entries. One thread at a time.
class BDirectory : public BNode {
public:
    BDirectory();
    explicit BDirectory(const char* path);
    explicit BDirectory(const entry_ref* ref);
    explicit BDirectory(const BEntry* entry);
    BDirectory(const BDirectory* directory, const char* path);
    ~BDirectory() override;

    // Opens the directory; a symbolic link to one is followed. B_NOT_A_DIRECTORY,
    // B_ENTRY_NOT_FOUND, B_PERMISSION_DENIED. The walk starts anew.
    status_t SetTo(const char* path);
    status_t SetTo(const entry_ref* ref);
    status_t SetTo(const BEntry* entry);
    status_t SetTo(const BDirectory* directory, const char* path);
    void Unset();

    // The directory's own entry.
    status_t GetEntry(BEntry* entry) const;

    // Sets `entry` to the next entry, in the order of the disk, without "." and "..".
    // B_ENTRY_NOT_FOUND, with `entry` unset, when there are no more. With `traverse` a symbolic
    // link is replaced by the place it leads to; one that leads nowhere yields B_OK and an `entry`
    // whose InitCheck tells why, so that it does not end the walk. A walk takes time in proportion
    // to the entries and opens none of them.
    status_t GetNextEntry(BEntry* entry, bool traverse = false);
    // Starts the walk anew.
    status_t Rewind();

    // Whether `path` (relative to the directory) exists.
    bool Contains(const char* path) const;

    // Creates the directory `path` (relative to this one, or absolute) with the permission bits
    // 0777 less the umask and, if `directory` is given, opens it there. B_FILE_EXISTS.
    status_t CreateDirectory(const char* path, BDirectory* directory);
    // Creates an empty file and, if `file` is given, opens it there for reading and writing. One
    // that exists is emptied, or is B_FILE_EXISTS if `failIfExists`.
    status_t CreateFile(const char* path, BFile* file, bool failIfExists = false);

private:
    friend class BEntry;
    friend class BFile;
    friend class BNode;

    status_t SetToHostPath(const std::string& path);
    std::string HostPathOf(const char* path) const;

    std::string fHostPath;
    std::unique_ptr<host::DirectoryScan> fScan;
};

// Creates the directory `path` and those on the way to it that are missing, with the permission
// bits `mode` less the umask. B_OK if it is there already. Any thread.
status_t create_directory(const char* path, mode_t mode);
