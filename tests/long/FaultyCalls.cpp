// Preloaded into a program. While the file FAULT_LOG exists, each call that touches a path with
// FAULT_PATH in it adds a byte to that file, and call number FAULT_AT fails for want of space, or
// kills the program if FAULT_KILLS is set.

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

namespace {

bool Strikes(const char* path) {
    const char* target = getenv("FAULT_PATH");
    if (target == nullptr || path == nullptr || strstr(path, target) == nullptr)
        return false;
    const auto log = static_cast<int>(
        syscall(SYS_openat, AT_FDCWD, getenv("FAULT_LOG"), O_WRONLY | O_APPEND | O_CLOEXEC));
    if (log < 0)
        return false;
    syscall(SYS_write, log, ".", 1);
    const off_t count = lseek(log, 0, SEEK_END);
    syscall(SYS_close, log);
    if (count != atoi(getenv("FAULT_AT")))
        return false;
    if (getenv("FAULT_KILLS") != nullptr)
        raise(SIGKILL);
    errno = ENOSPC;
    return true;
}

bool Strikes(int descriptor) {
    char path[4096] = {};
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    return readlink(link.c_str(), path, sizeof path - 1) > 0 && Strikes(path);
}

template <typename Result, typename Key, typename... Arguments>
Result Call(Key key, long number, Arguments... arguments) {
    return Strikes(key) ? Result(-1) : static_cast<Result>(syscall(number, arguments...));
}

} // namespace

// The declarations of the library are not included: some of these may not throw there.
extern "C" {

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = va_arg(rest, mode_t);
    va_end(rest);
    return Call<int>(path, SYS_openat, AT_FDCWD, path, flags, mode);
}
int rename(const char* from, const char* to) noexcept {
    return Call<int>(to, SYS_rename, from, to);
}
int renameat2(int from, const char* old, int to, const char* path, unsigned flags) noexcept {
    return Call<int>(path, SYS_renameat2, from, old, to, path, flags);
}
int mkdir(const char* path, mode_t mode) noexcept {
    return Call<int>(path, SYS_mkdir, path, mode);
}
ssize_t write(int file, const void* data, size_t size) {
    return Call<ssize_t>(file, SYS_write, file, data, size);
}
int fsync(int file) {
    return Call<int>(file, SYS_fsync, file);
}
int fchmod(int file, mode_t mode) noexcept {
    return Call<int>(file, SYS_fchmod, file, mode);
}
int setxattr(const char* path, const char* name, const void* data, size_t size,
             int flags) noexcept {
    return Call<int>(path, SYS_setxattr, path, name, data, size, flags);
}
}
