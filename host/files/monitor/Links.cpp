#include "host/files/monitor/Links.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>

namespace host {

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
    // A descriptor that only names the node is refused, its name in /proc is not.
    const std::string name = "/proc/self/fd/" + std::to_string(node);
    return chmod(name.c_str(), mode) == 0 ? B_OK : StatusFromErrno(errno);
}

} // namespace host
