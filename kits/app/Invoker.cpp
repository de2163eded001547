#include "kits/app/Invoker.h"

BInvoker::BInvoker(BMessage* message, const BMessenger& target)
    : fMessage(message)
    , fTarget(target) {}

BInvoker::~BInvoker() = default;

status_t BInvoker::SetMessage(BMessage* message) {
    if (message != fMessage.get())
        fMessage.reset(message);
    return B_OK;
}

status_t BInvoker::SetTarget(const BMessenger& target) {
    fTarget = target;
    return B_OK;
}

status_t BInvoker::SetTarget(const BHandler* handler, const BLooper* looper) {
    status_t status;
    fTarget = BMessenger(handler, looper, &status);
    return status;
}

status_t BInvoker::Invoke(BMessage* message) {
    const BMessage* const invoked = message ? message : fMessage.get();
    if (!invoked)
        return B_BAD_VALUE;
    BMessage copy(*invoked);
    if (!copy.HasInt64("when"))
        copy.AddInt64("when", system_time());
    if (!copy.HasPointer("source"))
        copy.AddPointer("source", this);
    return fTarget.SendMessage(&copy);
}
