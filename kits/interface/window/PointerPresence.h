#pragma once

#include <condition_variable>
#include <mutex>
#include <set>

#include "base/Types.h"

// Whether the pointer is over one of the program's windows, for a thread that has work only then
// and would have to ask again and again. It is not over them while a menu is open or another
// program has hold of it. An addition to the platform. It lives as long as the process; any thread.
class PointerPresence {
public:
    static PointerPresence& Shared();

    bool IsHere() const;

    // Waits until the pointer is here; B_INTERRUPTED if the calling thread was asked to stop.
    status_t WaitForPointer();

    // The number of times that the pointer has come, gone or moved here.
    uint64 Events() const;
    // Waits until there are more events than `seen`; otherwise the same.
    status_t WaitForEvent(uint64 seen);

    // The kit's own, from the display thread: whether the pointer is over `window`, and that it
    // has moved there.
    void Note(const void* window, bool isOver);
    void NoteEvent();

private:
    PointerPresence() = default;

    mutable std::mutex fMutex;
    // Guarded by fMutex.
    std::condition_variable_any fChanged;
    std::set<const void*>
        fWindows; // that it is over; two for a moment when it goes from one to another
    uint64 fEvents = 0;
};
