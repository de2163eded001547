#include "kits/app/Messenger.h"

#include <vector>

#include "host/files/KnownPaths.h"
#include "host/files/Paths.h"
#include "host/session/instance/InstanceSocket.h"
#include "kits/app/AppDefs.h"
#include "kits/app/HandlerRegistry.h"
#include "kits/app/Message.h"
#include "kits/app/Roster.h"

namespace {

// Starts the desktop's program that stands for the signature with the entries of "refs".
status_t OpenRefs(const std::string& signature, const BMessage& message) {
    std::vector<std::string> paths;
    entry_ref ref;
    status_t status;
    for (int32 i = 0; (status = message.FindRef("refs", i, &ref)) == B_OK; ++i) {
        std::string directory;
        status = host::KnownPaths::Shared().Find({ref.device, ref.directory}, directory);
        if (status != B_OK)
            return status;
        paths.push_back(host::Join(directory, ref.name));
    }
    if (paths.empty())
        return status;
    std::vector<const char*> arguments;
    for (const std::string& path : paths)
        arguments.push_back(path.c_str());
    return be_roster->Launch(signature.c_str(), static_cast<int>(arguments.size()),
                             arguments.data());
}

status_t SendToProgram(const std::string& signature, const BMessage& message, bigtime_t timeout) {
    if (message.what == B_REFS_RECEIVED && !host::InstanceRuns(signature))
        return OpenRefs(signature, message);
    std::string text;
    const status_t status = message.Flatten(&text);
    return status == B_OK ? host::SendToInstance(signature, text, timeout) : status;
}

} // namespace

BMessenger::BMessenger(const BHandler* handler, const BLooper* looper, status_t* result) {
    status_t status = B_OK;
    if (!handler && !looper)
        status = B_BAD_VALUE;
    else if (handler && !handler->Looper())
        status = B_BAD_HANDLER;
    else if (handler && looper && handler->Looper() != looper)
        status = B_MISMATCHED_VALUES;
    if (status == B_OK)
        fToken = handler ? handler->fToken : looper->fToken;
    if (result)
        *result = status;
}

BMessenger::BMessenger(const char* signature, status_t* result)
    : fSignature(signature ? signature : "") {
    if (result)
        *result = fSignature.empty() ? B_BAD_VALUE : B_OK;
}

status_t BMessenger::SendMessage(uint32 what) const {
    const BMessage message(what);
    return SendMessage(&message);
}

status_t BMessenger::SendMessage(const BMessage* message, bigtime_t timeout) const {
    if (!message)
        return B_BAD_VALUE;
    if (!fSignature.empty())
        return SendToProgram(fSignature, *message, timeout);
    if (fToken == 0)
        return B_BAD_PORT_ID;
    const auto state = HandlerRegistry::Shared().StateOf(fToken);
    return state && BLooper::Post(*state, *message, fToken) ? B_OK : B_BAD_HANDLER;
}

bool BMessenger::IsValid() const {
    if (!fSignature.empty())
        return host::InstanceRuns(fSignature);
    const auto state = HandlerRegistry::Shared().StateOf(fToken);
    return state && !state->queue.IsClosed();
}

BHandler* BMessenger::Target(BLooper** looper) const {
    return HandlerRegistry::Shared().Find(fToken, looper);
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
