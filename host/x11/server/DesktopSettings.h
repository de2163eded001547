#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "host/x11/server/Connection.h"

namespace host {

// What the desktop says about how its programs are to look and feel.
struct DesktopSettings {
    double scale = 1; // device pixels per logical pixel, in quarter steps
    bigtime_t doubleClickTime = 400'000;
    int doubleClickDistance = 5; // in logical pixels
    int pointerSize = 0;         // in device pixels; 0 if the desktop does not say

    int PointerSize() const;
};

// The settings as a settings manager publishes them; without one, what the resources say. All of it
// is other programs' data: what cannot be read counts as not there.
DesktopSettings ReadDesktopSettings(std::span<const uint8> published, std::string_view resources);

// The same, from the server: the constructor asks, Read takes the answer.
class SettingsQuery {
public:
    explicit SettingsQuery(const Connection& connection);
    DesktopSettings Read() const;

private:
    const Connection& fConnection;
    xcb_get_property_cookie_t fResources;
    xcb_get_selection_owner_cookie_t fManager;
};

} // namespace host
