#include "kits/storage/File.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "host/files/Files.h"
#include "host/files/NodeStatus.h"
#include "host/files/Paths.h"
#include "kits/storage/Path.h"

namespace {

int FlagsOf(uint32 openMode) {
    constexpr int kAccess[] = {O_RDONLY, O_WRONLY, O_RDWR, O_RDWR};
    int flags = kAccess[openMode & 3];
    if (openMode & B_CREATE_FILE)
        flags |= O_CREAT;
    if ((openMode & B_CREATE_FILE) && (openMode & B_FAIL_IF_EXISTS))
        flags |= O_EXCL;
    if (openMode & B_ERASE_FILE)
        flags |= O_TRUNC;
    return flags;
}

// Goes on until everything is moved, the end is reached or `step`, which moves what follows the
// first bytes, fails.
template <typename Step>
ssize_t Move(size_t size, Step step) {
    size_t moved = 0;
    while (moved < size) {
        ssize_t count = step(moved, size - moved);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 && moved == 0)
            return StatusFromErrno(errno);
        if (count <= 0)
            break;
        moved += size_t(count);
    }
    return ssize_t(moved);
}

} // namespace

BFile::BFile(const char* path, uint32 openMode) {
    SetTo(path, openMode);
}

status_t BFile::SetTo(const char* path, uint32 openMode) {
    BPath plain;
    status_t status = plain.SetTo(path);
    host::Descriptor file;
    if (status == B_OK)
        status = host::OpenFile(host::HostPath(plain.Path()), FlagsOf(openMode), file);
    return status == B_OK ? SetToDescriptor(std::move(file)) : Fail(status);
}

ssize_t BFile::Read(void* buffer, size_t size) {
    if (InitCheck() != B_OK)
        return InitCheck();
    return Move(size, [&](size_t done, size_t left) {
        return read(fDescriptor.Get(), static_cast<char*>(buffer) + done, left);
    });
}

ssize_t BFile::Write(const void* buffer, size_t size) {
    if (InitCheck() != B_OK)
        return InitCheck();
    return Move(size, [&](size_t done, size_t left) {
        return write(fDescriptor.Get(), static_cast<const char*>(buffer) + done, left);
    });
}

status_t BFile::GetSize(off_t* size) const {
    if (InitCheck() != B_OK)
        return InitCheck();
    host::NodeStatus there;
    status_t status = size ? host::Stat(fDescriptor.Get(), "", there) : B_BAD_VALUE;
    if (status == B_OK)
        *size = there.size;
    return status;
}
