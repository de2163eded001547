#include "kits/app/MessageQueue.h"

#include <algorithm>

bool BMessageQueue::Post(std::unique_ptr<BMessage> message) {
    std::lock_guard lock(fMutex);
    if (fIsClosed)
        return false;
    fMessages.push_back(std::move(message));
    fChanged.notify_one();
    return true;
}

bool BMessageQueue::RemoveMessage(BMessage* message) {
    std::lock_guard lock(fMutex);
    const auto found =
        std::find_if(fMessages.begin(), fMessages.end(),
                     [message](const auto& waiting) { return waiting.get() == message; });
    if (found == fMessages.end())
        return false;
    // The caller's now.
    static_cast<void>(found->release());
    fMessages.erase(found);
    return true;
}

std::unique_ptr<BMessage> BMessageQueue::WaitForMessage() {
    std::unique_lock lock(fMutex);
    fChanged.wait(lock, [this] { return fIsClosed || !fMessages.empty(); });
    if (fIsClosed)
        return nullptr;
    auto message = std::move(fMessages.front());
    fMessages.pop_front();
    return message;
}

void BMessageQueue::Close() {
    std::lock_guard lock(fMutex);
    fIsClosed = true;
    fChanged.notify_all();
}

bool BMessageQueue::IsClosed() const {
    std::lock_guard lock(fMutex);
    return fIsClosed;
}

BMessage* BMessageQueue::FindMessage(int32 index) const {
    std::lock_guard lock(fMutex);
    return index >= 0 && index < CountMessages() ? fMessages[index].get() : nullptr;
}

BMessage* BMessageQueue::FindMessage(uint32 what, int32 index) const {
    std::lock_guard lock(fMutex);
    for (const auto& message : fMessages) {
        if (message->what == what && index-- == 0)
            return message.get();
    }
    return nullptr;
}

int32 BMessageQueue::CountMessages() const {
    std::lock_guard lock(fMutex);
    return static_cast<int32>(fMessages.size());
}

bool BMessageQueue::Lock() {
    fMutex.lock();
    return true;
}

void BMessageQueue::Unlock() {
    fMutex.unlock();
}
