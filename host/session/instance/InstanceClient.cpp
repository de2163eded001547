#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>

#include "host/session/instance/InstanceAddress.h"
#include "host/session/instance/InstanceSocket.h"

namespace host {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr bigtime_t kLongestTimeout = 3'600'000'000;

Descriptor OpenSocket() {
    return Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

// A connection to a program that runs but has no time yet fails with EAGAIN.
int TryConnect(int connection, const InstanceAddress& address) {
    while (connect(connection, address.Get(), address.Size()) != 0) {
        if (errno != EINTR)
            return errno;
    }
    return 0;
}

status_t WaitFor(int connection, short events, Clock::time_point deadline) {
    for (;;) {
        const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now()).count();
        pollfd wait{connection, events, 0};
        const int ready = poll(&wait, 1, static_cast<int>(std::max<int64>(left, 0)));
        if (ready > 0)
            return B_OK;
        if (ready == 0)
            return B_TIMED_OUT;
        if (errno != EINTR)
            return StatusFromErrno(errno);
    }
}

status_t Connect(int connection, const InstanceAddress& address, Clock::time_point deadline) {
    for (;;) {
        const int error = TryConnect(connection, address);
        if (error == 0)
            return PeerIsThisUser(connection) ? B_OK : B_NOT_ALLOWED;
        if (error == ENOENT || error == ECONNREFUSED)
            return B_BAD_PORT_ID;
        if (error != EAGAIN)
            return StatusFromErrno(error);
        if (Clock::now() >= deadline)
            return B_TIMED_OUT;
        std::this_thread::sleep_for(milliseconds(5));
    }
}

status_t SendAll(int connection, std::string_view bytes, Clock::time_point deadline) {
    while (!bytes.empty()) {
        const ssize_t sent = send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent >= 0) {
            bytes.remove_prefix(static_cast<size_t>(sent));
        } else if (errno == EAGAIN) {
            const status_t status = WaitFor(connection, POLLOUT, deadline);
            if (status != B_OK)
                return status;
        } else if (errno != EINTR) {
            return B_BUSY;
        }
    }
    return B_OK;
}

// The other end answers with one byte when it has taken the message, and hangs up otherwise.
status_t ReceiveAnswer(int connection, Clock::time_point deadline) {
    const status_t status = WaitFor(connection, POLLIN, deadline);
    if (status != B_OK)
        return status;
    char answer;
    return recv(connection, &answer, 1, 0) == 1 ? B_OK : B_BUSY;
}

} // namespace

status_t SendToInstance(const std::string& signature, std::string_view bytes, bigtime_t timeout) {
    if (bytes.empty() || bytes.size() > kMaxInstanceMessage)
        return B_BAD_VALUE;
    const auto deadline =
        Clock::now() + microseconds(std::clamp<bigtime_t>(timeout, 0, kLongestTimeout));
    const RuntimeDirectory directory(false);
    const Descriptor connection = OpenSocket();
    if (directory.InitCheck() != B_OK || !connection)
        return B_BAD_PORT_ID;

    const uint32 size = static_cast<uint32>(bytes.size());
    const std::string_view header(reinterpret_cast<const char*>(&size), sizeof size);
    status_t status =
        Connect(connection.Get(), InstanceAddress(directory, RuntimeFileName(signature)), deadline);
    if (status == B_OK)
        status = SendAll(connection.Get(), header, deadline);
    if (status == B_OK)
        status = SendAll(connection.Get(), bytes, deadline);
    if (status == B_OK)
        status = ReceiveAnswer(connection.Get(), deadline);
    return status;
}

bool InstanceRuns(const std::string& signature) {
    const RuntimeDirectory directory(false);
    const Descriptor connection = OpenSocket();
    if (directory.InitCheck() != B_OK || !connection)
        return false;
    const int error =
        TryConnect(connection.Get(), InstanceAddress(directory, RuntimeFileName(signature)));
    return error == 0 || error == EAGAIN;
}

} // namespace host
