#pragma once

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>

#include "kits/app/Message.h"

// Messages that wait, the oldest first. It owns the messages in it and has no bound. Any thread;
// what FindMessage() found is safe to look at only while the caller holds the queue's lock. The
// lock may be taken again by its holder, who must not wait for a looper's lock meanwhile.
class BMessageQueue {
public:
    // Removes the message without deleting it: it is the caller's then. False if it was not there.
    bool RemoveMessage(BMessage* message);

    // The message at `index`, 0 being the oldest, or at `index` among those with this code; null if
    // there is none.
    BMessage* FindMessage(int32 index) const;
    BMessage* FindMessage(uint32 what, int32 index = 0) const;

    int32 CountMessages() const;

    bool Lock();
    void Unlock();

private:
    friend class BLooper;
    friend class BMessenger;

    // Adds the message at the end; false, and deletes it, once the queue was closed.
    bool Post(std::unique_ptr<BMessage> message);
    // Waits for the oldest one; null once the queue was closed.
    std::unique_ptr<BMessage> WaitForMessage();
    // From here on no message is added or delivered.
    void Close();
    bool IsClosed() const;

    mutable std::recursive_mutex fMutex;
    // Guarded by fMutex.
    std::condition_variable_any fChanged;
    std::deque<std::unique_ptr<BMessage>> fMessages;
    bool fIsClosed = false;
};
