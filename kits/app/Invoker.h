#pragma once

#include <memory>

#include "kits/app/Message.h"
#include "kits/app/Messenger.h"

// Has a message and a target, and sends the one to the other when it is invoked. Used with the
// looper locked that its owner belongs to.
class BInvoker {
public:
    // Takes over the message; null is allowed.
    BInvoker(BMessage* message, const BMessenger& target);
    virtual ~BInvoker();

    BInvoker(const BInvoker&) = delete;
    BInvoker& operator=(const BInvoker&) = delete;

    // Takes over the message, and deletes the one it had. Always B_OK.
    virtual status_t SetMessage(BMessage* message);
    BMessage* Message() const { return fMessage.get(); }

    // As the constructors of BMessenger, and with their results; the target is changed even if it
    // is not a good one.
    virtual status_t SetTarget(const BMessenger& target);
    virtual status_t SetTarget(const BHandler* handler, const BLooper* looper = nullptr);
    BMessenger Messenger() const { return fTarget; }

    // Sends a copy of `message`, or of its own message for null, to which it adds "when" (int64,
    // system_time()) and "source" (pointer to this invoker) unless the message has them.
    // B_BAD_VALUE if there is no message, else as BMessenger::SendMessage().
    virtual status_t Invoke(BMessage* message = nullptr);

private:
    std::unique_ptr<BMessage> fMessage;
    BMessenger fTarget;
};
