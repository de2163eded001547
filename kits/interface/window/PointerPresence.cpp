#include "kits/interface/window/PointerPresence.h"

#include "kits/kernel/StopToken.h"

// Never deleted: the display thread may call until the process ends.
PointerPresence& PointerPresence::Shared() {
    static auto* presence = new PointerPresence;
    return *presence;
}

bool PointerPresence::IsHere() const {
    std::lock_guard lock(fMutex);
    return !fWindows.empty();
}

status_t PointerPresence::WaitForPointer() {
    std::unique_lock lock(fMutex);
    const bool isHere =
        fChanged.wait(lock, current_stop_token(), [this] { return !fWindows.empty(); });
    return isHere ? B_OK : B_INTERRUPTED;
}

uint64 PointerPresence::Events() const {
    std::lock_guard lock(fMutex);
    return fEvents;
}

status_t PointerPresence::WaitForEvent(uint64 seen) {
    std::unique_lock lock(fMutex);
    const bool hasCome = fChanged.wait(lock, current_stop_token(), [&] { return fEvents > seen; });
    return hasCome ? B_OK : B_INTERRUPTED;
}

void PointerPresence::Note(const void* window, bool isOver) {
    std::unique_lock lock(fMutex);
    const bool isNews = isOver ? fWindows.insert(window).second : fWindows.erase(window) > 0;
    lock.unlock();
    if (isNews)
        NoteEvent();
}

void PointerPresence::NoteEvent() {
    {
        std::lock_guard lock(fMutex);
        fEvents++;
    }
    fChanged.notify_all();
}
