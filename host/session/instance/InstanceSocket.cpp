#include "host/session/instance/InstanceSocket.h"

#include <fcntl.h>

#include <cerrno>
#include <list>

#include "host/loop/ServiceLoop.h"
#include "host/session/instance/InstanceAddress.h"
#include "host/session/instance/InstanceConnection.h"
#include "host/session/instance/InstanceLock.h"

namespace host {

namespace {

constexpr size_t kMostConnections = 16;

Descriptor OpenReserve() {
    return Descriptor(open("/dev/null", O_RDONLY | O_CLOEXEC));
}

} // namespace

// Used on the service thread only, between construction and destruction.
struct InstanceSocket::State {
    State(const InstanceLock& lock, std::function<void(std::string_view)> onMessage_)
        : directory(lock.Directory())
        , address(lock.Directory(), lock.Name())
        , onMessage(std::move(onMessage_)) {}

    status_t Listen();
    void AcceptAll();
    void Serve(Descriptor connection);

    const RuntimeDirectory& directory;
    const InstanceAddress address;
    const std::function<void(std::string_view)> onMessage;
    status_t status = B_NO_INIT;
    Descriptor listener;
    // Given up for a moment when there are no descriptors left: a connection that could not be
    // accepted would wake the thread for ever.
    Descriptor reserve = OpenReserve();
    std::list<InstanceConnection> connections;
    std::unique_ptr<DescriptorWatch> watch;
};

status_t InstanceSocket::State::Listen() {
    unlinkat(directory.Get(), address.FileName().c_str(), 0);
    listener = Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!listener || bind(listener.Get(), address.Get(), address.Size()) != 0 ||
        listen(listener.Get(), kMostConnections) != 0)
        return StatusFromErrno(errno);
    watch = std::make_unique<DescriptorWatch>(listener.Get(), [this] { AcceptAll(); });
    return B_OK;
}

void InstanceSocket::State::AcceptAll() {
    for (;;) {
        Descriptor connection(
            accept4(listener.Get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (connection) {
            Serve(std::move(connection));
        } else if ((errno == EMFILE || errno == ENFILE) && reserve) {
            // Just one that waits: without descriptors, the system says the same when none does.
            reserve.Close();
            Descriptor(accept4(listener.Get(), nullptr, nullptr, SOCK_CLOEXEC)).Close();
            reserve = OpenReserve();
            return;
        } else if (errno != EINTR && errno != ECONNABORTED) {
            return;
        }
    }
}

void InstanceSocket::State::Serve(Descriptor connection) {
    if (connections.size() >= kMostConnections || !PeerIsThisUser(connection.Get()))
        return;
    const auto place = connections.end();
    const auto entry = std::make_shared<std::list<InstanceConnection>::iterator>(place);
    *entry = connections.emplace(place, std::move(connection), onMessage,
                                 [this, entry] { connections.erase(*entry); });
}

InstanceSocket::InstanceSocket(const InstanceLock& lock,
                               std::function<void(std::string_view)> onMessage)
    : fState(std::make_unique<State>(lock, std::move(onMessage))) {
    ServiceLoop::Shared().InvokeAndWait([this] { fState->status = fState->Listen(); });
}

InstanceSocket::~InstanceSocket() {
    ServiceLoop::Shared().InvokeAndWait([this] {
        if (fState->listener)
            unlinkat(fState->directory.Get(), fState->address.FileName().c_str(), 0);
        fState.reset();
    });
}

status_t InstanceSocket::InitCheck() const {
    return fState->status;
}

} // namespace host
