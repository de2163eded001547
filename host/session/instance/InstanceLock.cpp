#include "host/session/instance/InstanceLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>

namespace host {

InstanceLock::InstanceLock(const std::string& signature)
    : fDirectory(true)
    , fName(RuntimeFileName(signature)) {}

status_t InstanceLock::Acquire() {
    if (fDirectory.InitCheck() != B_OK)
        return fDirectory.InitCheck();

    // The file is never removed: one that waits for the lock of a removed file would get it beside
    // the holder of the new file's.
    Descriptor file(openat(fDirectory.Get(), (fName + ".lock").c_str(),
                           O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    if (!file)
        return StatusFromErrno(errno);
    if (flock(file.Get(), LOCK_EX | LOCK_NB) != 0)
        return errno == EWOULDBLOCK ? B_ALREADY_RUNNING : StatusFromErrno(errno);
    fFile = std::move(file);
    return B_OK;
}

} // namespace host
