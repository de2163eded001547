#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <string>

#include "host/session/instance/RuntimeDirectory.h"

namespace host {

// The address of a running program's socket. One too long for the kernel goes through the open
// directory, which must stay open while the address is used.
class InstanceAddress {
public:
    InstanceAddress(const RuntimeDirectory& directory, const std::string& name);

    const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&fAddress); }
    socklen_t Size() const { return sizeof fAddress; }

    // The socket's file name in the directory.
    const std::string& FileName() const { return fFileName; }

private:
    const std::string fFileName;
    sockaddr_un fAddress{};
};

// Whether the process at the other end of the connection is this user's.
bool PeerIsThisUser(int connection);

} // namespace host
