#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/Types.h"

namespace host {

// The most bytes of one message between programs. A message is one packet, which has to fit into a
// socket's default buffer.
inline constexpr size_t kMaxInstanceMessage = 1 << 16;

// Sends `bytes` to the running program of that signature, and waits until it has taken them, each
// step at most `timeout` microseconds. B_BAD_VALUE without bytes or with too many, B_BAD_PORT_ID if
// no such program runs, B_TIMED_OUT if it does not answer in time, B_BUSY if it hangs up,
// B_NOT_ALLOWED if another user's program answers. Any thread but the service thread.
status_t SendToInstance(const std::string& signature, std::string_view bytes, bigtime_t timeout);

// Whether a program of that signature runs, for this user. Never waits. Any thread.
bool InstanceRuns(const std::string& signature);

// The right to be the running program of a signature, and the socket at which it takes messages of
// other programs of the same user. Its files are in $XDG_RUNTIME_DIR/quillbar, or without that
// variable in /tmp/quillbar-UID; a directory of another user's, that others may enter or that is a
// link is not used. The kernel gives the right back when the process ends, in whatever way.
// One thread at a time.
class InstanceSocket {
public:
    explicit InstanceSocket(const std::string& signature);
    // Closes the socket and gives the right back.
    ~InstanceSocket();

    // Takes the right without waiting. B_ALREADY_RUNNING while another process has it; another
    // failure means that this system cannot tell whether the program runs. May be tried again.
    status_t Acquire();

    // Opens the socket, after Acquire(); one that a killed program left behind is replaced. From
    // then on `onMessage` runs on the service thread with the bytes of each message. A hostile peer
    // only loses its own connection; the number of connections is bounded.
    status_t Listen(std::function<void(std::string_view)> onMessage);

    // Closes the socket. When this has returned, `onMessage` is not running and never runs again.
    void Close();

    // The directory of its files, for reports.
    const std::string& Directory() const;

    InstanceSocket(const InstanceSocket&) = delete;

private:
    struct State;
    const std::unique_ptr<State> fState;
};

} // namespace host
