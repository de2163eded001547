#include "host/session/instance/InstanceSocket.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <map>

#include "host/loop/Descriptor.h"
#include "host/loop/ServiceLoop.h"

namespace host {

namespace {

constexpr bigtime_t kLongestTimeout = 3'600'000'000;
constexpr bigtime_t kLongestConnection = 2'000'000;
constexpr size_t kMostConnections = 16;

std::string DirectoryPath() {
    const char* runtime = getenv("XDG_RUNTIME_DIR");
    if (runtime && runtime[0] == '/')
        return std::string(runtime) + "/quillbar";
    return "/tmp/quillbar-" + std::to_string(geteuid());
}

Descriptor OpenDirectory(const std::string& path, status_t& status) {
    Descriptor directory(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat found;
    if (!directory || fstat(directory.Get(), &found) != 0)
        status = StatusFromErrno(errno);
    else if (found.st_uid != geteuid() || (found.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        status = B_NOT_ALLOWED;
    else
        status = B_OK;
    if (status != B_OK)
        directory.Close();
    return directory;
}

// A file name that stands for the signature; it holds no slash.
std::string FileName(const std::string& signature, const char* ending) {
    char* escaped = g_uri_escape_string(signature.c_str(), nullptr, FALSE);
    std::string name = std::string(escaped) + ending;
    g_free(escaped);
    return name;
}

// Makes `call` with the address of the signature's socket; -1 as it fails, with errno. A path too
// long for an address goes through the open directory.
int WithAddress(const Descriptor& directory, const std::string& signature,
                int (*call)(int, const sockaddr*, socklen_t), int socket) {
    const std::string name = FileName(signature, ".socket");
    sockaddr_un address{AF_UNIX, {}};
    std::string path = DirectoryPath() + "/" + name;
    if (path.size() >= sizeof address.sun_path)
        path = "/proc/self/fd/" + std::to_string(directory.Get()) + "/" + name;
    if (path.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return -1;
    }
    path.copy(address.sun_path, path.size());
    return call(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

bool PeerIsThisUser(int connection) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           peer.uid == geteuid();
}

Descriptor OpenSocket(int flags) {
    return Descriptor(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | flags, 0));
}

Descriptor OpenReserve() {
    return Descriptor(open("/dev/null", O_RDONLY | O_CLOEXEC));
}

// The kernel takes no time-out of 0 for one.
void SetTimeout(int socket, bigtime_t timeout) {
    const bigtime_t within = std::clamp<bigtime_t>(timeout, 1, kLongestTimeout);
    const timeval time{within / 1'000'000, within % 1'000'000};
    setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &time, sizeof time);
    setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time);
}

status_t SendFailure(int error) {
    switch (error) {
    case ENOENT:
    case ECONNREFUSED:
        return B_BAD_PORT_ID;
    case EAGAIN:
        return B_TIMED_OUT;
    case EPIPE:
    case ECONNRESET:
        return B_BUSY;
    default:
        return StatusFromErrno(error);
    }
}

// Calls until no signal interrupts.
template <typename Call>
auto Uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

} // namespace

status_t SendToInstance(const std::string& signature, std::string_view bytes, bigtime_t timeout) {
    if (bytes.empty() || bytes.size() > kMaxInstanceMessage)
        return B_BAD_VALUE;
    status_t status;
    const Descriptor directory = OpenDirectory(DirectoryPath(), status);
    const Descriptor connection = OpenSocket(0);
    if (!directory || !connection)
        return B_BAD_PORT_ID;
    const int socket = connection.Get();
    SetTimeout(socket, timeout);
    if (Uninterrupted([&] { return WithAddress(directory, signature, connect, socket); }) != 0)
        return SendFailure(errno);
    if (!PeerIsThisUser(socket))
        return B_NOT_ALLOWED;
    if (Uninterrupted([&] { return send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL); }) < 0)
        return SendFailure(errno);
    // The program answers with one byte when it has taken the message, and hangs up otherwise.
    char answer;
    const ssize_t count = Uninterrupted([&] { return recv(socket, &answer, 1, 0); });
    if (count < 0)
        return SendFailure(errno);
    return count == 1 ? B_OK : B_BUSY;
}

// A program that runs but has no time yet fails with EAGAIN.
bool InstanceRuns(const std::string& signature) {
    status_t status;
    const Descriptor directory = OpenDirectory(DirectoryPath(), status);
    const Descriptor connection = OpenSocket(SOCK_NONBLOCK);
    return directory && connection &&
           (WithAddress(directory, signature, connect, connection.Get()) == 0 || errno == EAGAIN);
}

struct InstanceSocket::State {
    struct Connection {
        const Descriptor peer;
        const DescriptorWatch watch;
        const Timer deadline;
    };

    explicit State(std::string name)
        : signature(std::move(name)) {}

    status_t Listen();
    void AcceptAll();
    void Serve(Descriptor peer);
    void Receive(int peer);

    const std::string signature;
    const std::string path = DirectoryPath();
    Descriptor directory;
    Descriptor lock;

    // Service thread only, between Listen() and Close().
    std::function<void(std::string_view)> onMessage;
    Descriptor listener;
    // Given up for a moment when there are no descriptors left: a connection that could not be
    // accepted would wake the thread for ever.
    Descriptor reserve;
    std::map<int, std::unique_ptr<Connection>> connections; // by the peer's descriptor
    std::unique_ptr<DescriptorWatch> watch;
};

status_t InstanceSocket::State::Listen() {
    unlinkat(directory.Get(), FileName(signature, ".socket").c_str(), 0);
    listener = OpenSocket(SOCK_NONBLOCK);
    if (!listener || WithAddress(directory, signature, bind, listener.Get()) != 0 ||
        listen(listener.Get(), kMostConnections) != 0) {
        const status_t status = StatusFromErrno(errno);
        listener.Close();
        return status;
    }
    reserve = OpenReserve();
    watch = std::make_unique<DescriptorWatch>(listener.Get(), [this] { AcceptAll(); });
    return B_OK;
}

void InstanceSocket::State::AcceptAll() {
    for (;;) {
        Descriptor peer(accept4(listener.Get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (peer) {
            Serve(std::move(peer));
        } else if ((errno == EMFILE || errno == ENFILE) && reserve) {
            // Only one that waits: without descriptors, accept4 fails like this even when no
            // connection waits.
            reserve.Close();
            Descriptor(accept4(listener.Get(), nullptr, nullptr, SOCK_CLOEXEC)).Close();
            reserve = OpenReserve();
            return;
        } else if (errno != EINTR && errno != ECONNABORTED) {
            return;
        }
    }
}

void InstanceSocket::State::Serve(Descriptor peer) {
    if (connections.size() >= kMostConnections || !PeerIsThisUser(peer.Get()))
        return;
    const int number = peer.Get();
    connections[number].reset(
        new Connection{std::move(peer), DescriptorWatch(number, [=, this] { Receive(number); }),
                       Timer(kLongestConnection, 0, [=, this] { connections.erase(number); })});
}

// Takes one message and answers. A peer that sends anything else is turned away.
void InstanceSocket::State::Receive(int peer) {
    std::string bytes(kMaxInstanceMessage, '\0');
    const ssize_t count = recv(peer, bytes.data(), bytes.size(), MSG_TRUNC);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count > 0 && static_cast<size_t>(count) <= bytes.size()) {
        onMessage(std::string_view(bytes).substr(0, static_cast<size_t>(count)));
        send(peer, "", 1, MSG_NOSIGNAL);
    }
    connections.erase(peer);
}

InstanceSocket::InstanceSocket(const std::string& signature)
    : fState(std::make_unique<State>(signature)) {}

InstanceSocket::~InstanceSocket() {
    Close();
}

status_t InstanceSocket::Acquire() {
    if (mkdir(fState->path.c_str(), 0700) != 0 && errno != EEXIST)
        return StatusFromErrno(errno);
    status_t status;
    fState->directory = OpenDirectory(fState->path, status);
    if (status != B_OK)
        return status;
    // The file is never removed: a process that waits for the lock of a removed file would get it
    // beside the holder of the new file's.
    Descriptor file(openat(fState->directory.Get(), FileName(fState->signature, ".lock").c_str(),
                           O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    if (!file)
        return StatusFromErrno(errno);
    if (flock(file.Get(), LOCK_EX | LOCK_NB) != 0)
        return errno == EWOULDBLOCK ? B_ALREADY_RUNNING : StatusFromErrno(errno);
    fState->lock = std::move(file);
    return B_OK;
}

status_t InstanceSocket::Listen(std::function<void(std::string_view)> onMessage) {
    if (!fState->lock)
        return B_NO_INIT;
    status_t status = B_OK;
    ServiceLoop::Shared().InvokeAndWait([&] {
        fState->onMessage = std::move(onMessage);
        status = fState->Listen();
    });
    return status;
}

void InstanceSocket::Close() {
    if (!fState->listener)
        return;
    ServiceLoop::Shared().InvokeAndWait([this] {
        unlinkat(fState->directory.Get(), FileName(fState->signature, ".socket").c_str(), 0);
        fState->watch.reset();
        fState->connections.clear();
        fState->listener.Close();
    });
}

const std::string& InstanceSocket::Directory() const {
    return fState->path;
}

} // namespace host
