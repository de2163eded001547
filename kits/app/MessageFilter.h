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
    // For messages with this command, delivered in this way from there.
    BMessageFilter(message_delivery delivery, message_source source, uint32 command,
                   filter_hook hook = nullptr);
    // For this command, however it was delivered.
    explicit BMessageFilter(uint32 command, filter_hook hook = nullptr);
    virtual ~BMessageFilter();

    BMessageFilter(const BMessageFilter&) = delete;
    BMessageFilter& operator=(const BMessageFilter&) = delete;

    // Decides about the message; B_SKIP_MESSAGE drops it. May change `target` to another handler
    // of the same looper. This one calls the hook, or dispatches without one.
    virtual filter_result Filter(BMessage* message, BHandler** target);

    // Whether the message meets the conditions.
    bool Concerns(const BMessage& message) const;

private:
    const message_delivery fDelivery;
    const message_source fSource;
    const uint32 fCommand;
    const filter_hook fHook;
};
