#include "host/session/instance/InstanceAddress.h"

namespace host {

InstanceAddress::InstanceAddress(const RuntimeDirectory& directory, const std::string& name)
    : fFileName(name + ".socket") {
    std::string path = directory.Path() + "/" + fFileName;
    if (path.size() >= sizeof fAddress.sun_path)
        path = "/proc/self/fd/" + std::to_string(directory.Get()) + "/" + fFileName;
    fAddress.sun_family = AF_UNIX;
    path.copy(fAddress.sun_path, sizeof fAddress.sun_path - 1);
}

bool PeerIsThisUser(int connection) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           peer.uid == geteuid();
}

} // namespace host
