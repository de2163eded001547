#include "host/files/NodeStatus.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cerrno>
#include <limits>

namespace host {

namespace {

int64 Nanoseconds(const statx_timestamp& time) {
    return int64(uint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec);
}

// Times of birth differ by much less than the multiplier moves neighbouring inodes apart.
int64 NumberOf(const struct statx& raw) {
    if (!(raw.stx_mask & STATX_BTIME))
        return int64(raw.stx_ino);
    uint64 mixed = raw.stx_ino * 0x9e3779b97f4a7c15 + uint64(Nanoseconds(raw.stx_btime));
    return int64(mixed & std::numeric_limits<int64>::max());
}

} // namespace

NodeKind KindOfMode(uint32 mode) {
    switch (mode & S_IFMT) {
    case S_IFREG:
        return NodeKind::File;
    case S_IFDIR:
        return NodeKind::Directory;
    case S_IFLNK:
        return NodeKind::Link;
    default:
        return NodeKind::Other;
    }
}

status_t Stat(int directory, const std::string& path, NodeStatus& status, bool follow) {
    struct statx raw;
    int flags = (path.empty() ? AT_EMPTY_PATH : 0) | (follow ? 0 : AT_SYMLINK_NOFOLLOW);
    // Reading a status must not trigger an automount.
    flags |= AT_NO_AUTOMOUNT;
    if (statx(directory, path.c_str(), flags, STATX_BASIC_STATS | STATX_BTIME, &raw) != 0) {
        status = NodeStatus();
        return StatusFromErrno(errno);
    }
    status.ref.device = int32(uint32(makedev(raw.stx_dev_major, raw.stx_dev_minor)));
    status.ref.node = NumberOf(raw);
    status.kind = KindOfMode(raw.stx_mode);
    status.mode = raw.stx_mode;
    status.owner = raw.stx_uid;
    status.group = raw.stx_gid;
    status.size = int64(raw.stx_size);
    status.modified = Nanoseconds(raw.stx_mtime);
    return B_OK;
}

status_t Stat(const std::string& path, NodeStatus& status, bool follow) {
    // An empty path would mean the working directory itself.
    if (path.empty()) {
        status = NodeStatus();
        return B_ENTRY_NOT_FOUND;
    }
    return Stat(AT_FDCWD, path, status, follow);
}

} // namespace host
