#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "kits/app/Looper.h"
#include "kits/kernel/Locker.h"

// State shared with threads that outlive the looper: they post to it, or wait for its lock while it
// is deleted.
struct BLooper::State {
    BLocker lock;
    BMessageQueue queue;
    std::atomic<thread_id> thread = B_BAD_THREAD_ID;
    // Guarded by `lock`.
    bool isDeleted = false;

    // B_BAD_VALUE, and not locked, if the looper is deleted.
    status_t LockUnlessDeleted(bigtime_t timeout);
    // Unlocks as often as the lock was taken.
    void UnlockFully();
};

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

    // Makes a handler belong to a looper, or to none (null). The looper exists meanwhile.
    void SetLooper(BHandler& handler, BLooper* looper);

    // The state of the looper that the handler belongs to, or null.
    std::shared_ptr<BLooper::State> StateOf(int64 token);

    // The handler of this token and its looper (`looper` may be null); null if they are gone. They
    // may go at any time unless the caller has locked the looper.
    BHandler* Find(int64 token, BLooper** looper = nullptr);

private:
    std::mutex fMutex;
    // Guarded by fMutex.
    std::unordered_map<int64, BHandler*> fHandlers;
    int64 fLastToken = 0;
};
