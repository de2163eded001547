#include "kits/app/Messenger.h"

#include "host/session/instance/InstanceSocket.h"
#include "kits/app/AppDefs.h"
#include "kits/app/HandlerRegistry.h"
#include "kits/app/LooperState.h"
#include "kits/app/Message.h"
#include "kits/app/OpenRefs.h"

BMessenger::BMessenger(const BHandler* handler, const BLooper* looper, status_t* result) {
    status_t status = B_OK;
    if (!handler && !looper)
        status = B_BAD_VALUE;
    else if (handler && !handler->Looper())
        status = B_BAD_HANDLER;
    else if (handler && looper && handler->Looper() != looper)
        status = B_MISMATCHED_VALUES;
    if (status == B_OK) {
        fToken = handler ? handler->fToken : looper->fToken;
        fPreferred = !handler;
    }
    if (result)
        *result = status;
}

BMessenger::BMessenger(const char* signature, status_t* result)
    : fSignature(signature ? signature : "") {
    if (result)
        *result = fSignature.empty() ? B_BAD_VALUE : B_OK;
}

status_t BMessenger::SendMessage(uint32 what, BHandler* replyTo) const {
    const BMessage message(what);
    return SendMessage(&message, replyTo);
}

status_t BMessenger::SendMessage(const BMessage* message, BHandler* replyTo,
                                 bigtime_t timeout) const {
    if (!message)
        return B_BAD_VALUE;
    if (!fSignature.empty()) {
        if (message->what == B_REFS_RECEIVED && !host::InstanceRuns(fSignature))
            return OpenRefs(fSignature, *message);
        std::string text;
        const status_t status = message->Flatten(&text);
        return status == B_OK ? host::SendToInstance(fSignature, text, timeout) : status;
    }
    if (fToken == 0)
        return B_BAD_PORT_ID;
    const auto state = HandlerRegistry::Shared().StateOf(fToken);
    const bool isPosted =
        state && BLooper::Post(*state, *message, fPreferred ? 0 : fToken, replyTo);
    return isPosted ? B_OK : B_BAD_HANDLER;
}

bool BMessenger::IsValid() const {
    if (!fSignature.empty())
        return host::InstanceRuns(fSignature);
    const auto state = HandlerRegistry::Shared().StateOf(fToken);
    return state && !state->queue.IsClosed();
}

BHandler* BMessenger::Target(BLooper** looper) const {
    BHandler* const handler = HandlerRegistry::Shared().Find(fToken, looper);
    return fPreferred ? nullptr : handler;
}

bool BMessenger::LockTarget() const {
    return LockTargetWithTimeout(B_INFINITE_TIMEOUT) == B_OK;
}

status_t BMessenger::LockTargetWithTimeout(bigtime_t timeout) const {
    HandlerRegistry& registry = HandlerRegistry::Shared();
    const auto state = registry.StateOf(fToken);
    if (!state)
        return B_BAD_VALUE;
    const status_t status = state->LockUnlessDeleted(timeout);
    if (status != B_OK || registry.StateOf(fToken) == state)
        return status;
    state->lock.Unlock();
    return B_BAD_VALUE;
}
