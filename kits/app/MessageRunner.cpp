#include "kits/app/MessageRunner.h"

#include <mutex>

#include "host/loop/ServiceLoop.h"
#include "kits/app/Message.h"

struct BMessageRunner::State {
    const BMessenger target;
    const BMessage message;
    // Service thread only.
    int32 remaining;

    // The timer may elapse before the constructor has kept it.
    std::mutex mutex;
    std::unique_ptr<host::Timer> timer;

    void Send() {
        const bool isGone = target.SendMessage(&message) != B_OK;
        if (isGone || (remaining > 0 && --remaining == 0))
            Stop();
    }

    // Not destroyed under the lock: that waits for Send(), which may wait for the lock.
    void Stop() {
        std::unique_ptr<host::Timer> stopped;
        std::lock_guard lock(mutex);
        stopped.swap(timer);
    }
};

BMessageRunner::BMessageRunner(BMessenger target, const BMessage* message, bigtime_t interval,
                               int32 count)
    : fStatus(B_OK) {
    if (!message || interval <= 0 || count == 0)
        fStatus = B_BAD_VALUE;
    else if (!target.IsValid())
        fStatus = B_BAD_HANDLER;
    if (fStatus != B_OK)
        return;
    fState.reset(new State{target, *message, count, {}, {}});
    std::lock_guard lock(fState->mutex);
    fState->timer = std::make_unique<host::Timer>(interval, interval,
                                                  [state = fState.get()] { state->Send(); });
}

BMessageRunner::~BMessageRunner() {
    if (fState)
        fState->Stop();
}
