#pragma once

#include <mutex>
#include <vector>

#include <xcb/randr.h>

#include "host/draw/Image.h"
#include "host/x11/server/Connection.h"

namespace host {

// The monitors as they are now, without asking the server each time.
class MonitorList {
public:
    // Sends the requests for the first Read.
    explicit MonitorList(const Connection& connection);

    // Takes the server's answer; true if the monitors are others now. The display thread, or the
    // one that opens the display.
    bool Read();
    // Asks again and reads.
    bool Update();

    // Whether `event` announces a change. The display thread.
    bool IsConcernedBy(const xcb_generic_event_t& event) const;

    // The primary one first; never empty. Any thread.
    std::vector<PixelRect> Frames() const;

private:
    void Ask();
    std::vector<PixelRect> ReadMonitors() const;

    const Connection& fConnection;
    bool fHasRandr = false;
    uint8 fFirstEvent = 0;
    xcb_randr_get_monitors_cookie_t fMonitors{};
    xcb_get_geometry_cookie_t fRoot{};

    mutable std::mutex fLock;
    std::vector<PixelRect> fFrames;
};

} // namespace host
