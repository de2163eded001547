#include "kits/app/Looper.h"

#include <algorithm>

#include "kits/app/AppDefs.h"
#include "kits/app/HandlerRegistry.h"
#include "kits/app/Message.h"

status_t BLooper::State::LockUnlessDeleted(bigtime_t timeout) {
    const status_t status = lock.LockWithTimeout(timeout);
    if (status != B_OK || !isDeleted)
        return status;
    lock.Unlock();
    return B_BAD_VALUE;
}

void BLooper::State::UnlockFully() {
    while (lock.IsLocked())
        lock.Unlock();
}

BLooper::BLooper(const char* name)
    : BHandler(name)
    , fState(std::make_shared<State>()) {
    fState->lock.Lock();
    fHandlers.push_back(this);
    HandlerRegistry::Shared().SetLooper(*this, this);
}

BLooper::~BLooper() {
    fState->queue.Close();
    while (!fHandlers.empty())
        LetGo(*fHandlers.back());
    fState->isDeleted = true;
    fState->UnlockFully();
}

status_t BLooper::PostMessage(uint32 what, BHandler* handler) {
    const BMessage message(what);
    return PostMessage(&message, handler);
}

status_t BLooper::PostMessage(const BMessage* message, BHandler* handler) {
    if (!message)
        return B_BAD_VALUE;
    if (handler && handler->Looper() != this)
        return B_MISMATCHED_VALUES;
    return Post(*fState, *message, handler ? handler->fToken : fToken) ? B_OK : B_BAD_PORT_ID;
}

bool BLooper::Post(State& state, const BMessage& message, int64 targetToken) {
    auto copy = std::make_unique<BMessage>(message);
    copy->fTargetToken = targetToken;
    return state.queue.Post(std::move(copy));
}

void BLooper::DispatchMessage(BMessage* message, BHandler* handler) {
    if (message->what == B_QUIT_REQUESTED && handler == this) {
        if (QuitRequested())
            Quit();
        return;
    }
    handler->MessageReceived(message);
}

BMessageQueue* BLooper::MessageQueue() const {
    return &fState->queue;
}

void BLooper::AddHandler(BHandler* handler) {
    if (!handler || handler->Looper())
        return;
    fHandlers.push_back(handler);
    handler->SetNextHandler(this);
    HandlerRegistry::Shared().SetLooper(*handler, this);
}

bool BLooper::RemoveHandler(BHandler* handler) {
    if (!handler || handler == this || handler->Looper() != this)
        return false;
    LetGo(*handler);
    return true;
}

void BLooper::LetGo(BHandler& handler) {
    HandlerRegistry::Shared().SetLooper(handler, nullptr);
    handler.fNextHandler = nullptr;
    std::erase(fHandlers, &handler);
}

bool BLooper::HasHandler(const BHandler* handler) const {
    return std::find(fHandlers.begin(), fHandlers.end(), handler) != fHandlers.end();
}

void BLooper::AddCommonFilter(BMessageFilter* filter) {
    if (filter)
        fCommonFilters.emplace_back(filter);
}

thread_id BLooper::Run() {
    // The looper may be deleted as soon as it is unlocked.
    const auto state = fState;
    const thread_id thread = spawn_thread(RunThread, Name(), B_NORMAL_PRIORITY, this);
    state->thread = thread;
    const status_t status = resume_thread(thread);
    if (status != B_OK) {
        state->thread = B_BAD_THREAD_ID;
        return status;
    }
    state->lock.Unlock();
    return thread;
}

status_t BLooper::RunThread(void* data) {
    BLooper* const looper = static_cast<BLooper*>(data);
    // The thread that called Run() may still hold it.
    looper->Lock();
    looper->Loop();
    delete looper;
    return B_OK;
}

void BLooper::Loop() {
    // The looper may be deleted during the wait, when others may hold it.
    const auto state = fState;
    state->thread = find_thread(nullptr);
    for (;;) {
        state->lock.Unlock();
        const auto message = state->queue.WaitForMessage();
        state->lock.Lock();
        if (!message || state->queue.IsClosed())
            return;
        Handle(*message);
        if (state->queue.IsClosed())
            return;
    }
}

void BLooper::EndLoop() {
    fState->queue.Close();
}

void BLooper::Handle(BMessage& message) {
    fCurrentMessage = &message;
    BHandler* target = PassFilters(message, TargetOf(message));
    if (target)
        DispatchMessage(&message, target);
    if (!fState->queue.IsClosed())
        MessageHandled();
    fCurrentMessage = nullptr;
}

// Null if the target has gone, or is another looper's now.
BHandler* BLooper::TargetOf(const BMessage& message) {
    BHandler* const target = HandlerRegistry::Shared().Find(message.fTargetToken);
    return HasHandler(target) ? target : nullptr;
}

// The handler that the common filters, then the target's leave the message to; one that a target's
// filter names instead has filters of its own. Null if the message was skipped.
BHandler* BLooper::PassFilters(BMessage& message, BHandler* target) {
    target = PassFilters(fCommonFilters, message, target);
    for (size_t i = 0; target && i < fHandlers.size(); ++i) {
        BHandler* const named = PassFilters(target->fFilters, message, target);
        if (named == target)
            return target;
        target = named;
    }
    return target;
}

BHandler* BLooper::PassFilters(FilterList& filters, BMessage& message, BHandler* target) {
    // By index: a filter may add filters.
    for (size_t i = 0; target && i < filters.size(); ++i) {
        BMessageFilter& filter = *filters[i];
        if (!filter.Concerns(message))
            continue;
        const filter_result result = filter.Filter(&message, &target);
        if (result == B_SKIP_MESSAGE || !HasHandler(target))
            return nullptr;
    }
    return target;
}

void BLooper::Quit() {
    const auto state = fState;
    const thread_id thread = state->thread;
    EndLoop();
    if (thread == find_thread(nullptr))
        return;
    if (thread < 0) {
        delete this;
        return;
    }
    state->UnlockFully();
    wait_for_thread(thread, nullptr);
}

bool BLooper::Lock() {
    return LockWithTimeout(B_INFINITE_TIMEOUT) == B_OK;
}

status_t BLooper::LockWithTimeout(bigtime_t timeout) {
    const auto state = fState;
    return state->LockUnlessDeleted(timeout);
}

void BLooper::Unlock() {
    // A copy: the next holder may delete the looper before this returns.
    const auto state = fState;
    state->lock.Unlock();
}

thread_id BLooper::Thread() const {
    return fState->thread;
}
