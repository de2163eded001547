#include "kits/app/Handler.h"

#include "kits/app/HandlerRegistry.h"

BHandler::BHandler(const char* name)
    : fToken(HandlerRegistry::Shared().Enter(*this))
    , fName(name ? name : "") {}

BHandler::~BHandler() {
    if (BLooper* const looper = Looper())
        looper->RemoveHandler(this);
    HandlerRegistry::Shared().Leave(fToken);
}

void BHandler::MessageReceived(BMessage* message) {
    if (fNextHandler)
        fNextHandler->MessageReceived(message);
}

void BHandler::AddFilter(BMessageFilter* filter) {
    if (filter)
        fFilters.emplace_back(filter);
}

HandlerRegistry& HandlerRegistry::Shared() {
    // Never destroyed: threads may send messages while the process ends.
    static HandlerRegistry* const registry = new HandlerRegistry;
    return *registry;
}

int64 HandlerRegistry::Enter(BHandler& handler) {
    std::lock_guard lock(fMutex);
    fHandlers[++fLastToken] = &handler;
    return fLastToken;
}

void HandlerRegistry::Leave(int64 token) {
    std::lock_guard lock(fMutex);
    fHandlers.erase(token);
}

void HandlerRegistry::SetLooper(BHandler& handler, BLooper* looper) {
    std::lock_guard lock(fMutex);
    handler.fLooper = looper;
}

std::shared_ptr<BLooper::State> HandlerRegistry::StateOf(int64 token) {
    std::lock_guard lock(fMutex);
    const auto found = fHandlers.find(token);
    BLooper* const looper = found == fHandlers.end() ? nullptr : found->second->Looper();
    return looper ? looper->fState : nullptr;
}

BHandler* HandlerRegistry::Find(int64 token, BLooper** looper) {
    std::lock_guard lock(fMutex);
    const auto found = fHandlers.find(token);
    BHandler* const handler = found == fHandlers.end() ? nullptr : found->second;
    if (looper)
        *looper = handler ? handler->Looper() : nullptr;
    return handler;
}
