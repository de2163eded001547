#include "host/files/DirectoryScan.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>

namespace host {

namespace {

constexpr int kOpenFlags = O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

} // namespace

status_t DirectoryScan::Open(const std::string& path) {
    Descriptor directory(open(path.c_str(), kOpenFlags));
    return directory ? Adopt(std::move(directory)) : StatusFromErrno(errno);
}

status_t DirectoryScan::Open(const Descriptor& directory) {
    Descriptor own(openat(directory.Get(), ".", kOpenFlags));
    return own ? Adopt(std::move(own)) : StatusFromErrno(errno);
}

status_t DirectoryScan::Adopt(Descriptor directory) {
    fStream.reset(fdopendir(directory.Get()));
    if (!fStream)
        return StatusFromErrno(errno);
    directory.Release();
    return B_OK;
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
        entry.kind = KindOfEntryType(next->d_type);
        return B_OK;
    }
}

} // namespace host
