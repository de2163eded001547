#pragma once

#include "base/Types.h"

class BHandler;
class BLooper;
class BMessage;
class BMessageFilter;

enum filter_result {
    B_SKIP_MESSAGE,
    B_DISPATCH_MESSAGE,
};

enum message_delivery {
    B_ANY_DELIVERY,
    B_DROPPED_DELIVERY,
    B_PROGRAMMED_DELIVERY,
};

enum message_source {
    B_ANY_SOURCE,
    B_REMOTE_SOURCE,
    B_LOCAL_SOURCE,
};

using filter_hook = filter_result (*)(BMessage* message, BHandler** target, BMessageFilter* filter);

// Sees messages before the handler or the looper that it was added to, which owns it. It is asked
// only about messages that meet all of its conditions. Runs on the looper's thread, locked.
class BMessageFilter {
public:
    // For messages of any command, or of this one.
    BMessageFilter(message_delivery delivery, message_source source, filter_hook hook = nullptr);
    BMessageFilter(message_delivery delivery, message_source source, uint32 command,
                   filter_hook hook = nullptr);
    // For this command, however it was delivered.
    explicit BMessageFilter(uint32 command, filter_hook hook = nullptr);
    virtual ~BMessageFilter();

    BMessageFilter(const BMessageFilter&) = delete;
    BMessageFilter& operator=(const BMessageFilter&) = delete;

    // What is to become of the message; B_SKIP_MESSAGE drops it. `target` may be changed to another
    // handler of the same looper. This one asks the hook, or dispatches without one.
    virtual filter_result Filter(BMessage* message, BHandler** target);

    message_delivery MessageDelivery() const { return fDelivery; }
    message_source MessageSource() const { return fSource; }
    bool FiltersAnyCommand() const { return fAnyCommand; }
    uint32 Command() const { return fCommand; }

    // Whether the message meets the conditions.
    bool Concerns(const BMessage& message) const;

private:
    const message_delivery fDelivery;
    const message_source fSource;
    const bool fAnyCommand;
    const uint32 fCommand;
    const filter_hook fHook;
};
