#include "host/session/instance/InstanceConnection.h"

#include <sys/socket.h>

#include <cerrno>
#include <cstring>

#include "host/session/instance/InstanceSocket.h"

namespace host {

namespace {

constexpr bigtime_t kLongestConnection = 2'000'000;
constexpr size_t kHeaderSize = sizeof(uint32);

} // namespace

InstanceConnection::InstanceConnection(Descriptor connection,
                                       std::function<void(std::string_view)> onMessage,
                                       std::function<void()> onDone)
    : fConnection(std::move(connection))
    , fOnMessage(std::move(onMessage))
    , fWatch(fConnection.Get(),
             [this, onDone] {
                 if (Receive())
                     onDone();
             })
    , fDeadline(kLongestConnection, 0, onDone) {}

bool InstanceConnection::Receive() {
    char bytes[16384];
    for (;;) {
        const ssize_t count = recv(fConnection.Get(), bytes, sizeof bytes, 0);
        if (count < 0)
            return errno != EAGAIN && errno != EINTR;
        if (count == 0)
            return true;
        fReceived.append(bytes, static_cast<size_t>(count));
        if (fReceived.size() < kHeaderSize)
            continue;

        uint32 size;
        memcpy(&size, fReceived.data(), kHeaderSize);
        if (size == 0 || size > kMaxInstanceMessage || fReceived.size() - kHeaderSize > size)
            return true;
        if (fReceived.size() - kHeaderSize == size) {
            fOnMessage(std::string_view(fReceived).substr(kHeaderSize));
            send(fConnection.Get(), "", 1, MSG_NOSIGNAL);
            return true;
        }
    }
}

} // namespace host
