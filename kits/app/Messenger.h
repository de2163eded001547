#pragma once

#include <compare>
#include <string>

#include "kits/kernel/OS.h"

class BHandler;
class BLooper;
class BMessage;

// The address of a handler, or of another program. It never keeps its target alive and never finds
// another one in its place: a message for a target that is gone is refused. A small value; copies
// are equal; any thread may send.
class BMessenger {
public:
    // Has no target.
    BMessenger() = default;

    // Aimed at `handler`, which must belong to a looper, and to `looper` if one is given. Without
    // a handler, at the handler that `looper` prefers at the time of delivery, else the looper.
    // `result` (may be null): B_BAD_VALUE without either, B_BAD_HANDLER if the handler belongs to
    // no looper, B_MISMATCHED_VALUES if it belongs to another one; the messenger then has no
    // target.
    explicit BMessenger(const BHandler* handler, const BLooper* looper = nullptr,
                        status_t* result = nullptr);

    // Aimed at the running program of this signature. `result` (may be null): B_BAD_VALUE without a
    // signature. Whether it runs is found out by each call.
    explicit BMessenger(const char* signature, status_t* result = nullptr);

    // Puts a copy of the message into the target's queue and returns at once, whoever holds the
    // target's lock; in this process nothing is waited for, since queues have no bound. The copy's
    // ReturnAddress() is `replyTo`. For another program `timeout` (microseconds) bounds the
    // sending, pointers and messengers in the message are left out, and a message of more than 1
    // MiB is refused; B_REFS_RECEIVED for a signature under which no program listens starts the
    // desktop's program for it with the entries "refs". B_BAD_HANDLER if the target is gone,
    // B_BAD_VALUE without a message; B_BAD_PORT_ID if there is no target or the other program does
    // not run.
    status_t SendMessage(uint32 what, BHandler* replyTo = nullptr) const;
    status_t SendMessage(const BMessage* message, BHandler* replyTo = nullptr,
                         bigtime_t timeout = B_INFINITE_TIMEOUT) const;

    // Whether the target takes messages now.
    bool IsValid() const;
    bool IsTargetLocal() const { return fToken != 0; }

    // The target and (may be null) its looper; both null if it is gone or in another program. They
    // stay what they are only while the caller keeps the looper locked.
    BHandler* Target(BLooper** looper) const;
    // Locks the target's looper; false if the target is gone. With a time-out also B_TIMED_OUT or
    // B_INTERRUPTED, as from BLocker.
    bool LockTarget() const;
    status_t LockTargetWithTimeout(bigtime_t timeout) const;

    auto operator<=>(const BMessenger&) const = default;

private:
    int64 fToken = 0;
    bool fPreferred = false;
    std::string fSignature;
};
