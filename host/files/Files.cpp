#include "host/files/Files.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "host/files/Paths.h"

namespace host {

namespace {

constexpr int kSafely = O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
constexpr int kDirectory = O_RDONLY | O_DIRECTORY | kSafely;

status_t RefuseUnlessFile(NodeKind kind) {
    if (kind == NodeKind::File)
        return B_OK;
    return kind == NodeKind::Directory ? B_IS_A_DIRECTORY : B_NOT_ALLOWED;
}

status_t CreateDirectory(const std::string& path, mode_t mode) {
    return mkdir(path.c_str(), mode) == 0 ? B_OK : StatusFromErrno(errno);
}

status_t SyncDirectory(const std::string& path) {
    Descriptor directory(open(path.c_str(), kDirectory));
    return directory && fsync(directory.Get()) == 0 ? B_OK : StatusFromErrno(errno);
}

// For disks whose rename cannot refuse to replace.
status_t RenameUnlessExists(const std::string& from, const std::string& to) {
    NodeStatus there;
    if (Stat(to, there) == B_OK)
        return B_FILE_EXISTS;
    return rename(from.c_str(), to.c_str()) == 0 ? B_OK : StatusFromErrno(errno);
}

} // namespace

status_t OpenPathOnly(const std::string& path, Descriptor& node, bool follow) {
    int flags = O_PATH | O_CLOEXEC | (follow ? 0 : O_NOFOLLOW);
    node = Descriptor(open(path.c_str(), flags));
    return node ? B_OK : StatusFromErrno(errno);
}

status_t OpenNode(const std::string& path, FoundNode& node, Opening opening) {
    node.path = path;
    status_t status = B_NOT_ALLOWED;
    if (opening == Opening::File) {
        node.descriptor = Descriptor(open(path.c_str(), O_RDONLY | O_NOFOLLOW | kSafely));
        status = node.descriptor ? B_OK : StatusFromErrno(errno);
    }
    if (status != B_OK)
        status = OpenPathOnly(path, node.descriptor, opening == Opening::Following);
    return status == B_OK ? Stat(node.descriptor.Get(), "", node.status) : status;
}

std::string DescriptorPath(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

status_t OpenFile(const std::string& path, int flags, Descriptor& file) {
    NodeStatus there;
    status_t status = Stat(path, there, true);
    if (status == B_OK)
        status = RefuseUnlessFile(there.kind);
    if (status != B_OK && !(status == B_ENTRY_NOT_FOUND && (flags & O_CREAT)))
        return status;

    Descriptor opened(open(path.c_str(), flags | kSafely, 0666));
    if (!opened)
        return StatusFromErrno(errno);
    status = Stat(opened.Get(), "", there);
    if (status == B_OK)
        status = RefuseUnlessFile(there.kind);
    if (status == B_OK)
        file = std::move(opened);
    return status;
}

status_t SyncNode(int descriptor) {
    if (fsync(descriptor) == 0)
        return B_OK;
    if (errno != EBADF)
        return StatusFromErrno(errno);

    // It is an O_PATH descriptor.
    NodeStatus status;
    status_t result = Stat(descriptor, "", status);
    if (result != B_OK || (status.kind != NodeKind::File && status.kind != NodeKind::Directory))
        return result;
    Descriptor opened(open(DescriptorPath(descriptor).c_str(), O_RDONLY | kSafely));
    return opened && fsync(opened.Get()) == 0 ? B_OK : StatusFromErrno(errno);
}

status_t LockNode(int descriptor, Descriptor& lock) {
    Descriptor opened(open(DescriptorPath(descriptor).c_str(), O_RDONLY | kSafely));
    int result = opened ? 0 : -1;
    if (opened) {
        do
            result = flock(opened.Get(), LOCK_EX);
        while (result != 0 && errno == EINTR);
    }
    if (result != 0)
        return StatusFromErrno(errno);
    lock = std::move(opened);
    return B_OK;
}

status_t CreateDirectories(const std::string& path, mode_t mode) {
    status_t status = CreateDirectory(path, mode);
    if (status == B_ENTRY_NOT_FOUND && path != "/") {
        status = CreateDirectories(ParentPath(path), mode);
        if (status == B_OK)
            status = CreateDirectory(path, mode);
    }
    if (status != B_FILE_EXISTS)
        return status;
    NodeStatus there;
    status = Stat(path, there, true);
    if (status != B_OK)
        return status;
    return there.kind == NodeKind::Directory ? B_OK : B_NOT_A_DIRECTORY;
}

status_t Rename(const std::string& from, const std::string& to, bool replace) {
    if (!replace) {
        if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
            return B_OK;
        return errno == EINVAL || errno == ENOSYS ? RenameUnlessExists(from, to)
                                                  : StatusFromErrno(errno);
    }
    if (rename(from.c_str(), to.c_str()) != 0)
        return StatusFromErrno(errno);
    // The replacement has happened; a disk that cannot sync a directory does not undo it.
    SyncDirectory(ParentPath(to));
    return B_OK;
}

status_t Remove(const std::string& path) {
    return remove(path.c_str()) == 0 ? B_OK : StatusFromErrno(errno);
}

status_t ReadLink(int link, std::string& target) {
    char buffer[PATH_MAX];
    const ssize_t length = readlinkat(link, "", buffer, sizeof buffer);
    if (length < 0)
        return errno == ENOENT ? B_BAD_VALUE : StatusFromErrno(errno);
    target.assign(buffer, static_cast<size_t>(length));
    return B_OK;
}

status_t SetPermissions(int node, mode_t mode) {
    if (fchmod(node, mode) == 0)
        return B_OK;
    if (errno != EBADF)
        return StatusFromErrno(errno);
    return chmod(DescriptorPath(node).c_str(), mode) == 0 ? B_OK : StatusFromErrno(errno);
}

status_t ResolvePath(const std::string& path, std::string& resolved) {
    std::unique_ptr<char, decltype(&free)> real(realpath(path.c_str(), nullptr), &free);
    if (!real)
        return StatusFromErrno(errno);
    resolved = real.get();
    return B_OK;
}

status_t DirectoryScan::Open(const std::string& path) {
    fStream.reset(opendir(path.c_str()));
    return fStream ? B_OK : StatusFromErrno(errno);
}

status_t DirectoryScan::Open(const Descriptor& directory) {
    return Open(DescriptorPath(directory.Get()));
}

status_t DirectoryScan::Next(Entry& entry) {
    for (;;) {
        errno = 0;
        dirent* next = readdir(fStream.get());
        if (!next)
            return errno == 0 ? B_ENTRY_NOT_FOUND : StatusFromErrno(errno);
        if (strcmp(next->d_name, ".") == 0 || strcmp(next->d_name, "..") == 0)
            continue;
        entry.name = next->d_name;
        const bool isKnown = next->d_type != DT_UNKNOWN;
        entry.kind = isKnown ? KindOfMode(DTTOIF(next->d_type)) : NodeKind::Unknown;
        return B_OK;
    }
}

} // namespace host
