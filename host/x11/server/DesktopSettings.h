#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "host/x11/server/Connection.h"

namespace host {

// How the desktop wants its programs to look and feel.
struct DesktopSettings {
    double scale = 1; // device pixels per logical pixel, in quarter steps
    bigtime_t doubleClickTime = 400'000;
    int doubleClickDistance = 5; // in logical pixels
    int pointerSize = 0;         // in device pixels; 0 if the desktop sets none
    std::string pointerTheme{};

    int PointerSize() const;
    bool operator==(const DesktopSettings&) const = default;
};

// The settings as a settings manager publishes them; without one, those of the resources. All of it
// is other programs' data: what cannot be read counts as not there.
DesktopSettings ReadDesktopSettings(std::span<const uint8> published, std::string_view resources);

// The settings on the server, and the events that announce other ones. The display thread, or the
// one that opens the display.
class SettingsReader {
public:
    explicit SettingsReader(const Connection& connection)
        : fConnection(connection) {}

    // Sends the requests for Read.
    void Ask();
    DesktopSettings Read();

    // Whether `event` announces a change.
    bool IsConcernedBy(const xcb_generic_event_t& event) const;

private:
    const Connection& fConnection;
    xcb_get_property_cookie_t fResources{};
    xcb_get_selection_owner_cookie_t fOwner{};
    xcb_window_t fManager = XCB_WINDOW_NONE; // publishes the settings
};

} // namespace host
