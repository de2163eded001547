#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "base/Types.h"
#include "kits/app/MessageFilter.h"

class BList;
class BLooper;
class BMessage;

// Receives messages. It gets them on the thread of the looper that it was added to, which is locked
// meanwhile. A handler that belongs to a looper is used, changed and deleted only with that looper
// locked, except where a function says "any thread".
class BHandler {
public:
    explicit BHandler(const char* name = nullptr);
    // Takes itself out of its looper and deletes its filters. Messages under way to it are dropped.
    virtual ~BHandler();

    BHandler(const BHandler&) = delete;
    BHandler& operator=(const BHandler&) = delete;

    // Handles a message. This one passes it on to the next handler, where the chain ends it is
    // lost.
    virtual void MessageReceived(BMessage* message);

    // The looper it belongs to, or null. Any thread.
    BLooper* Looper() const { return fLooper.load(); }

    // Lock its looper, and are false or B_BAD_VALUE if it has none or loses it while the caller
    // waits. B_TIMED_OUT after `timeout` microseconds. Any thread, as long as the handler exists.
    bool LockLooper();
    status_t LockLooperWithTimeout(bigtime_t timeout);
    void UnlockLooper();

    void SetName(const char* name) { fName = name ? name : ""; }
    const char* Name() const { return fName.c_str(); }

    // Who gets what this handler does not know: at first the looper it was added to.
    virtual void SetNextHandler(BHandler* handler) { fNextHandler = handler; }
    BHandler* NextHandler() const { return fNextHandler; }

    // Filters see the handler's messages in the order in which they were added. The handler owns
    // them until RemoveFilter() gives one back (false: it was not there).
    virtual void AddFilter(BMessageFilter* filter);
    virtual bool RemoveFilter(BMessageFilter* filter);
    // Deletes the filters there are and takes over those in the list, and the list; null for none.
    virtual void SetFilterList(BList* filters);

private:
    friend class BLooper;
    friend class BMessenger;
    friend class HandlerRegistry;

    using FilterList = std::vector<std::unique_ptr<BMessageFilter>>;

    static bool TakeOut(FilterList& filters, BMessageFilter* filter);

    const int64 fToken;
    // Written under the registry's lock, so that a lookup sees a looper that still exists.
    std::atomic<BLooper*> fLooper = nullptr;
    std::string fName;
    BHandler* fNextHandler = nullptr;
    FilterList fFilters;
};
