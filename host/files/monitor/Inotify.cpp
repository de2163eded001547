#include "host/files/monitor/Inotify.h"

#include <sys/inotify.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "host/files/Files.h"

namespace host {

namespace {

constexpr size_t kBufferSize = 65536;

} // namespace

const char* WatchLimitFile(status_t status) {
    if (status == B_DEVICE_FULL)
        return "/proc/sys/fs/inotify/max_user_watches";
    return status == B_NO_MORE_FDS ? "/proc/sys/fs/inotify/max_user_instances" : nullptr;
}

status_t Inotify::Open() {
    fDescriptor = Descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    return fDescriptor ? B_OK : Report(errno);
}

status_t Inotify::Add(const Descriptor& node, uint32 mask, int& watch) {
    watch = inotify_add_watch(Get(), DescriptorPath(node.Get()).c_str(), mask | IN_MASK_ADD);
    return watch >= 0 ? B_OK : Report(errno);
}

void Inotify::Remove(int watch) {
    inotify_rm_watch(Get(), watch);
}

bool Inotify::Read(std::vector<InotifyEvent>& events) {
    // On the stack, where only the pages that are read into cost memory: a variable of the thread
    // would stand, cleared, in every thread of the program.
    alignas(inotify_event) char buffer[kBufferSize];
    ssize_t size = read(Get(), buffer, sizeof(buffer));
    for (ssize_t at = 0; at < size;) {
        inotify_event event;
        memcpy(&event, buffer + at, sizeof(event));
        // The name is padded with NULs.
        const char* name = event.len > 0 ? buffer + at + sizeof(event) : "";
        events.push_back({event.wd, event.mask, event.cookie, name});
        at += ssize_t(sizeof(event) + event.len);
    }
    return size > 0;
}

// Running out is a limit of the system that a person has to raise: reported once, since it stays.
status_t Inotify::Report(int error) {
    status_t status = StatusFromErrno(error);
    const char* limit = WatchLimitFile(status);
    if (limit && !fReported) {
        fReported = true;
        fprintf(stderr,
                "The system gives no more file watches: changes of some files will not be "
                "noticed. The limit is in %s.\n",
                limit);
    }
    return status;
}

} // namespace host
