#pragma once

#include "kits/storage/Node.h"

// An open regular file. Nothing else is ever opened: a directory is B_IS_A_DIRECTORY; a FIFO,
// socket or device is B_NOT_ALLOWED, at once. One thread at a time.
class BFile : public BNode {
public:
    BFile() = default;
    BFile(const char* path, uint32 openMode);

    // Opens the file (a symbolic link is followed) and closes the one that was open. `openMode` is
    // a combination of B_READ_ONLY, B_CREATE_FILE and the others; a new file gets the permission
    // bits 0666 less the process's umask. B_ENTRY_NOT_FOUND, B_FILE_EXISTS, B_PERMISSION_DENIED.
    status_t SetTo(const char* path, uint32 openMode);

    // These return how many bytes they moved, which is fewer than `size` only at the end of the
    // file or on a full disk, or a negative status.
    ssize_t Read(void* buffer, size_t size);
    ssize_t Write(const void* buffer, size_t size);
    // The size in bytes.
    status_t GetSize(off_t* size) const;
};
