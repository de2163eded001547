#pragma once

#include <sys/types.h>

#include "base/Types.h"

// Something that bytes are read from and written to, in order.
class BDataIO {
public:
    virtual ~BDataIO() = default;

    // Move at most `size` bytes and return how many; 0 is the end when reading. A negative value is
    // a status_t.
    virtual ssize_t Read(void* buffer, size_t size) = 0;
    virtual ssize_t Write(const void* buffer, size_t size) = 0;
};

// The same with a position, in bytes from the start, that Read and Write move.
class BPositionIO : public BDataIO {
public:
    ssize_t Read(void* buffer, size_t size) override = 0;
    ssize_t Write(const void* buffer, size_t size) override = 0;

    // Leave the position as it is.
    virtual ssize_t ReadAt(off_t position, void* buffer, size_t size) = 0;
    virtual ssize_t WriteAt(off_t position, const void* buffer, size_t size) = 0;

    // Moves by `offset` from the start, the position or the end (SEEK_SET, SEEK_CUR, SEEK_END);
    // returns the new position or a negative status_t.
    virtual off_t Seek(off_t offset, uint32 from) = 0;
    virtual off_t Position() const = 0;
    virtual status_t SetSize(off_t size) = 0;
};
