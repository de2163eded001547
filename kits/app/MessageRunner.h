#pragma once

#include <memory>

#include "base/Types.h"
#include "kits/app/Messenger.h"

class BMessage;

// Sends copies of a message at regular times for as long as it lives. Any thread.
class BMessageRunner {
public:
    // Sends `count` copies of `message` (which stays the caller's), the first after `interval`
    // microseconds and one every `interval` after that; without end if `count` is negative. It
    // stops when the target is gone.
    BMessageRunner(BMessenger target, const BMessage* message, bigtime_t interval,
                   int32 count = -1);
    // When it has returned nothing more is sent; a copy that is in the target's queue stays there.
    ~BMessageRunner();

    BMessageRunner(const BMessageRunner&) = delete;
    BMessageRunner& operator=(const BMessageRunner&) = delete;

    // B_BAD_VALUE without a message, for an interval of 0 or less, or a count of 0;
    // B_BAD_HANDLER if the target is not there.
    status_t InitCheck() const { return fStatus; }

private:
    struct State;

    status_t fStatus;
    std::unique_ptr<State> fState;
};
