#include "host/x11/windows/PlaceKeeper.h"

namespace host {

namespace {

// Window managers need some time to take a window into a frame and to place that.
constexpr bigtime_t kPlacingTime = 150'000;

} // namespace

PlaceKeeper::PlaceKeeper(const Connection& connection, xcb_window_t window, std::mutex& lock,
                         std::function<void(Corner)> ask)
    : fConnection(connection)
    , fWindow(window)
    , fLock(lock)
    , fAsk(std::move(ask)) {}

void PlaceKeeper::Keep(Corner corner) {
    uint32 moves;
    {
        std::lock_guard lock(fLock);
        moves = fMoves;
    }
    std::lock_guard lock(fTimersLock);
    for (int i = 0; i < kLooks; i++) {
        fTimers[i] = std::make_unique<Timer>((i + 1) * kPlacingTime, 0,
                                             [=, this] { Look(corner, moves, i); });
    }
}

// Wayland compositors that place the window themselves have done it where they want it: one of them
// takes every request as one to put it in the middle of the screen.
void PlaceKeeper::Look(Corner corner, uint32 moves, int look) {
    if (fConnection.IsXWayland())
        return;
    const auto now = fConnection.Ask<xcb_translate_coordinates, xcb_translate_coordinates_reply>(
        fWindow, fConnection.Root(), 0, 0);
    std::lock_guard lock(fLock);
    if (!now || moves != fMoves)
        return;
    const Corner wrong(now->dst_x - corner.first, now->dst_y - corner.second);
    if (wrong == Corner(0, 0))
        return;
    fShift = look == 1 ? wrong : Corner(0, 0);
    fAsk(corner);
}

} // namespace host
