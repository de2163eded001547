#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include "host/loop/ServiceLoop.h"
#include "host/x11/server/Connection.h"

namespace host {

// Looks whether a managed window stands where it asked to. Some managers put their frame, or a
// border, where the content shall be. Places are those of the window's left-top pixel on the
// screen.
class PlaceKeeper {
public:
    using Corner = std::pair<int, int>;

    // `lock` guards the window's place, and is held while `ask` asks for one.
    PlaceKeeper(const Connection& connection, xcb_window_t window, std::mutex& lock,
                std::function<void(Corner)> ask);

    // With the lock held. The program asks for another place than that which is looked for.
    void NoteMove() { fMoves++; }
    // With the lock held. The window is in nobody's frame.
    void ForgetShift() { fShift = {}; }
    // With the lock held. How far off the manager places the window: to be taken away from a place
    // that is asked for.
    Corner Shift() const { return fShift; }

    // Without the lock. Looks three times: asks for the place once more; then for one that is as
    // far off on the other side; and for the place again where the manager has its reasons.
    void Keep(Corner corner);

private:
    void Look(Corner corner, uint32 moves, int look);

    const Connection& fConnection;
    const xcb_window_t fWindow;
    std::mutex& fLock;
    const std::function<void(Corner)> fAsk;
    Corner fShift;     // guarded by fLock
    uint32 fMoves = 0; // guarded by fLock

    static constexpr int kLooks = 3;
    std::mutex fTimersLock;
    std::unique_ptr<Timer> fTimers[kLooks];
};

} // namespace host
