#pragma once

#include <memory>
#include <vector>

#include "kits/app/Handler.h"
#include "kits/app/MessageQueue.h"
#include "kits/kernel/OS.h"

// A thread that handles messages in the order of their arrival, one at a time, and keeps itself
// locked while it handles one. It is a handler of itself.
//
// It is constructed locked, by the constructing thread, and lives on the heap: Run() starts it and
// gives that lock back, Quit() ends and deletes it. A thread that cannot know whether it still
// exists goes through a BMessenger.
class BLooper : public BHandler {
public:
    // `name` is also the thread's.
    explicit BLooper(const char* name = nullptr);
    // Only Quit() deletes a looper that runs. Handlers in it are let go, not deleted; messages that
    // wait are deleted.
    ~BLooper() override;

    // Puts a copy of the message into the queue; it is never blocked by the looper's lock, and may
    // be called before Run(): the message waits. The target is `handler`, which must belong to
    // the looper, or for null the looper itself. B_BAD_VALUE without a message,
    // B_MISMATCHED_VALUES for a handler of another looper, B_BAD_PORT_ID if the looper quits. Any
    // thread.
    status_t PostMessage(uint32 what, BHandler* handler = nullptr);
    status_t PostMessage(const BMessage* message, BHandler* handler = nullptr);

    // Passes a message that the filters let through to its handler; B_QUIT_REQUESTED for the
    // looper itself asks QuitRequested() and quits. Looper's thread, locked.
    virtual void DispatchMessage(BMessage* message, BHandler* handler);

    // The message being handled, or null outside of that. The looper owns it. Looper's thread.
    BMessage* CurrentMessage() const { return fCurrentMessage; }
    // The messages that wait. Any thread.
    BMessageQueue* MessageQueue() const;

    // Make a handler belong to the looper, with the looper as its next handler; and let it go
    // (false if it was not here). A handler that belongs to a looper already is not added. Locked.
    void AddHandler(BHandler* handler);
    bool RemoveHandler(BHandler* handler);

    // Adds a filter that sees the messages of all its handlers, before the handlers' own filters.
    // Otherwise as AddFilter(). Locked.
    void AddCommonFilter(BMessageFilter* filter);

    // Starts the thread and unlocks the looper once. The thread's id or a negative status.
    virtual thread_id Run();

    // Ends and deletes the looper, which the caller has locked; what waits in the queue is deleted
    // unread. On the looper's own thread it returns, and the looper is deleted when the message
    // being handled has been; no other message is handled. On another thread it returns when the
    // looper is deleted and its thread has ended: the looper must not wait for a lock of the caller
    // meanwhile. One that never ran is deleted at once.
    virtual void Quit();
    // Whether the looper agrees to quit. This one does. Looper's thread, locked.
    virtual bool QuitRequested() { return true; }

    // As those of BLocker. Lock() is false if the looper was deleted while the caller waited.
    bool Lock();
    status_t LockWithTimeout(bigtime_t timeout);
    void Unlock();

    // The thread that handles its messages; B_BAD_THREAD_ID before Run(). Any thread.
    thread_id Thread() const;

protected:
    // Called after each message, a skipped one too, unless the looper quits. This one does nothing.
    // Looper's thread, locked.
    virtual void MessageHandled() {}

    // For a looper that runs on its caller's thread: handles messages until EndLoop(), then returns
    // with the looper locked. Called with the looper locked once.
    void Loop();
    // Makes Loop() return after the message being handled. Any thread.
    void EndLoop();

private:
    friend class BHandler;
    friend class BMessenger;
    friend class HandlerRegistry;

    struct State;

    static status_t RunThread(void* looper);
    void Handle(BMessage& message);
    BHandler* TargetOf(const BMessage& message);
    BHandler* PassFilters(BMessage& message, BHandler* target);
    BHandler* PassFilters(FilterList& filters, BMessage& message, BHandler* target);
    // False if the looper quits.
    static bool Post(State& state, const BMessage& message, int64 targetToken);
    void LetGo(BHandler& handler);
    bool HasHandler(const BHandler* handler) const;

    const std::shared_ptr<State> fState;
    // Looper locked.
    BMessage* fCurrentMessage = nullptr;
    std::vector<BHandler*> fHandlers;
    FilterList fCommonFilters;
};
