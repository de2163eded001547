#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "base/Types.h"
#include "kits/app/MessageFilter.h"

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

    // Handles a message. This one passes it to the next handler; at the end of the chain the
    // message is dropped.
    virtual void MessageReceived(BMessage* message);

    // The looper it belongs to, or null. Any thread.
    BLooper* Looper() const { return fLooper.load(); }

    const char* Name() const { return fName.c_str(); }

    // Sets the handler that gets the messages this one does not know: at first its looper.
    void SetNextHandler(BHandler* handler) { fNextHandler = handler; }

    // Adds a filter, which the handler then owns. Filters see the handler's messages in the order
    // in which they were added. Does nothing for null.
    void AddFilter(BMessageFilter* filter);

private:
    friend class BLooper;
    friend class BMessenger;
    friend class HandlerRegistry;

    using FilterList = std::vector<std::unique_ptr<BMessageFilter>>;

    const int64 fToken;
    // Written under the registry's lock, so that a lookup sees a looper that still exists.
    std::atomic<BLooper*> fLooper = nullptr;
    const std::string fName;
    BHandler* fNextHandler = nullptr;
    FilterList fFilters;
};
