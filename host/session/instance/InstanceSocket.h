#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/Types.h"

namespace host {

// The most bytes that one message between programs may have.
inline constexpr size_t kMaxInstanceMessage = 1 << 20;

// Hands `bytes` to the running program of that signature, and waits until it has taken them, at
// most `timeout` microseconds. B_BAD_VALUE if there are too many bytes, B_BAD_PORT_ID if no such
// program runs, B_TIMED_OUT if it does not answer in time, B_NOT_ALLOWED if another user's program
// answers. Any thread but the service thread.
status_t SendToInstance(const std::string& signature, std::string_view bytes, bigtime_t timeout);

// Whether a program of that signature runs, for this user. Never waits. Any thread.
bool InstanceRuns(const std::string& signature);

class InstanceLock;

// The end at which a running program takes messages of other programs of the same user. While it
// lives, `onMessage` is called on the service thread with the bytes of each. Whatever peers do,
// they only lose their own connection. Several connections are served at a time, a bounded number.
class InstanceSocket {
public:
    // The lock shows that there is no other socket of the signature; one that a program left behind
    // when it was killed is replaced. The lock must outlive this. `InitCheck` says how it went.
    InstanceSocket(const InstanceLock& lock, std::function<void(std::string_view)> onMessage);

    // When this has returned, `onMessage` is not running and never runs again.
    ~InstanceSocket();

    status_t InitCheck() const;

    InstanceSocket(const InstanceSocket&) = delete;

private:
    struct State;
    std::unique_ptr<State> fState;
};

} // namespace host
