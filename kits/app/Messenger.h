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
    // a handler, at the looper itself.
    // `result` (may be null): B_BAD_VALUE without either, B_BAD_HANDLER if the handler belongs to
    // no looper, B_MISMATCHED_VALUES if it belongs to another one; the messenger then has no
    // target.
    explicit BMessenger(const BHandler* handler, const BLooper* looper = nullptr,
                        status_t* result = nullptr);

    // Aimed at the running program of this signature. `result` (may be null): B_BAD_VALUE without a
    // signature. Whether it runs is found out by each call.
    explicit BMessenger(const char* signature, status_t* result = nullptr);

    // Puts a copy of the message into the target's queue and returns at once, whatever thread holds
    // the target's lock: queues have no bound. For another program `timeout` (microseconds) bounds
    // the sending, pointers in the message are left out, and a text of more than 64 KiB is refused;
    // B_REFS_RECEIVED for a signature under which no program listens starts the desktop's program
    // for it with the entries "refs" as its arguments: the programs of this desktop take what they
    // are to open with their start. B_BAD_HANDLER if the target is gone, B_BAD_VALUE without a
    // message; B_BAD_PORT_ID if there is no target or the other program does not run; with "refs"
    // B_NAME_NOT_FOUND, B_ENTRY_NOT_FOUND if a directory of one is gone, or the result of
    // BRoster::Launch().
    status_t SendMessage(uint32 what) const;
    status_t SendMessage(const BMessage* message, bigtime_t timeout = B_INFINITE_TIMEOUT) const;

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
    std::string fSignature;
};
