#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

#include "kits/app/Looper.h"

// All handlers that exist, by the tokens that messengers hold; a token is never used again. Any
// thread.
//
// Order of locks: a looper's lock, then the registry's or a queue's. Those two are never held
// together, and nothing is locked under them.
class HandlerRegistry {
public:
    static HandlerRegistry& Shared();

    // Returns the new handler's token.
    int64 Enter(BHandler& handler);
    void Leave(int64 token);

    // Make a handler belong to a looper, or to none. The looper exists meanwhile.
    void SetLooper(BHandler& handler, BLooper* looper);

    // The state of the looper that the handler belongs to; null if there is none.
    std::shared_ptr<BLooper::State> StateOf(int64 token);
    std::shared_ptr<BLooper::State> StateOf(const BHandler& handler);

    // The handler of this token and (may be null) its looper, null if they are gone. They may go at
    // any time unless the looper is locked by the caller.
    BHandler* Find(int64 token, BLooper** looper = nullptr);

private:
    std::mutex fMutex;
    // Guarded by fMutex.
    std::unordered_map<int64, BHandler*> fHandlers;
    int64 fLastToken = 0;
};
