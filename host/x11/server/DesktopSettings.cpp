#include "host/x11/server/DesktopSettings.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace host {

namespace {

constexpr double kBaseDpi = 96;
constexpr double kUsualPointer = 24;
constexpr double kLargestPointer = 1024;
constexpr uint32 kMaxPropertyWords = 64 * 1024;

// Reads the settings' binary form; past its end everything is 0 and `IsGood` false.
class PublishedReader {
public:
    explicit PublishedReader(std::span<const uint8> bytes)
        : fRest(bytes) {
        fIsBigEndian = Number(1) != 0;
        Skip(3);
    }

    bool IsGood() const { return fIsGood; }

    uint32 Number(std::size_t size) {
        uint32 number = 0;
        const auto bytes = Take(size);
        for (std::size_t i = 0; i < bytes.size(); i++)
            number |= uint32{bytes[i]} << 8 * (fIsBigEndian ? size - 1 - i : i);
        return number;
    }

    std::string_view Text(std::size_t length) {
        auto part = Take(length);
        Skip(-length & 3);
        return {reinterpret_cast<const char*>(part.data()), part.size()};
    }

    void Skip(std::size_t size) { Take(size); }

private:
    std::span<const uint8> Take(std::size_t size) {
        if (size > fRest.size()) {
            fIsGood = false;
            fRest = {};
            return {};
        }
        auto part = fRest.first(size);
        fRest = fRest.subspan(size);
        return part;
    }

    std::span<const uint8> fRest;
    bool fIsBigEndian = false;
    bool fIsGood = true;
};

double ScaleOfDpi(double dpi) {
    return std::clamp(std::round(dpi / kBaseDpi * 4) / 4, 1.0, 4.0);
}

void ApplySetting(DesktopSettings& settings, std::string_view name, int32 value) {
    if (name == "Xft/DPI" && value > 0)
        settings.scale = ScaleOfDpi(value / 1024.0);
    else if (name == "Net/DoubleClickTime" && value > 0)
        settings.doubleClickTime = std::min(value, 5000) * bigtime_t{1000};
    else if (name == "Net/DoubleClickDistance" && value > 0)
        settings.doubleClickDistance = std::min(value, 100);
    else if (name == "Gtk/CursorThemeSize" && value > 0)
        settings.pointerSize = value;
}

void ApplySetting(DesktopSettings& settings, std::string_view name, std::string_view value) {
    if (name == "Gtk/CursorThemeName")
        settings.pointerTheme = value;
}

void ApplyPublished(DesktopSettings& settings, std::span<const uint8> published) {
    enum { kInteger, kString, kColor };

    PublishedReader reader(published);
    reader.Skip(4);
    uint32 count = reader.Number(4);
    while (count-- > 0 && reader.IsGood()) {
        uint32 type = reader.Number(1);
        reader.Skip(1);
        std::string_view name = reader.Text(reader.Number(2));
        reader.Skip(4);
        if (type == kInteger) {
            auto value = static_cast<int32>(reader.Number(4));
            if (reader.IsGood())
                ApplySetting(settings, name, value);
        } else if (type == kString) {
            std::string_view value = reader.Text(reader.Number(4));
            if (reader.IsGood())
                ApplySetting(settings, name, value);
        } else if (type == kColor) {
            reader.Skip(8);
        } else {
            return;
        }
    }
}

// The value behind `key` at the start of a line; empty if it is another line.
std::string_view ValueBehind(std::string_view key, std::string_view line) {
    if (!line.starts_with(key))
        return {};
    line.remove_prefix(key.size());
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    return line;
}

double NumberBehind(std::string_view key, std::string_view line) {
    std::string_view value = ValueBehind(key, line);
    double number = 0;
    std::from_chars(value.data(), value.data() + value.size(), number);
    return number;
}

void ApplyResources(DesktopSettings& settings, std::string_view resources) {
    while (!resources.empty()) {
        std::string_view line = resources.substr(0, resources.find('\n'));
        resources.remove_prefix(std::min(line.size() + 1, resources.size()));
        if (double dpi = NumberBehind("Xft.dpi:", line); dpi > 0)
            settings.scale = ScaleOfDpi(dpi);
        if (double size = NumberBehind("Xcursor.size:", line); size >= 1)
            settings.pointerSize = static_cast<int>(std::min(size, kLargestPointer));
        if (std::string_view theme = ValueBehind("Xcursor.theme:", line); !theme.empty())
            settings.pointerTheme = theme;
    }
}

} // namespace

int DesktopSettings::PointerSize() const {
    return pointerSize > 0 ? pointerSize : static_cast<int>(kUsualPointer * scale);
}

DesktopSettings ReadDesktopSettings(std::span<const uint8> published, std::string_view resources) {
    DesktopSettings settings;
    ApplyResources(settings, resources);
    ApplyPublished(settings, published);
    return settings;
}

void SettingsReader::Ask() {
    fResources = xcb_get_property(fConnection, false, fConnection.Root(), XCB_ATOM_RESOURCE_MANAGER,
                                  XCB_ATOM_STRING, 0, kMaxPropertyWords);
    fOwner = xcb_get_selection_owner(fConnection, fConnection[kXSettingsOwner]);
}

DesktopSettings SettingsReader::Read() {
    Reply<xcb_get_property_reply_t> resources(
        xcb_get_property_reply(fConnection, fResources, nullptr));
    Reply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(fConnection, fOwner, nullptr));
    fManager = owner ? owner->owner : xcb_window_t{XCB_WINDOW_NONE};
    Reply<xcb_get_property_reply_t> published;
    if (fManager != XCB_WINDOW_NONE) {
        // The events come first, so that no change is missed. The manager may be gone already.
        const uint32 events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        auto watch =
            xcb_change_window_attributes_checked(fConnection, fManager, XCB_CW_EVENT_MASK, &events);
        xcb_discard_reply(fConnection, watch.sequence);
        xcb_atom_t property = fConnection[kXSettingsSettings];
        auto cookie = xcb_get_property(fConnection, false, fManager, property, property, 0,
                                       kMaxPropertyWords);
        published.reset(xcb_get_property_reply(fConnection, cookie, nullptr));
    }
    std::string_view bytes = BytesOf(published);
    DesktopSettings settings = ReadDesktopSettings(
        {reinterpret_cast<const uint8*>(bytes.data()), bytes.size()}, BytesOf(resources));
    if (const char* size = std::getenv("XCURSOR_SIZE"))
        std::from_chars(size, size + std::strlen(size), settings.pointerSize);
    return settings;
}

bool SettingsReader::IsConcernedBy(const xcb_generic_event_t& event) const {
    switch (event.response_type & 0x7f) {
    case XCB_PROPERTY_NOTIFY: {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        return change.window == fConnection.Root() ? change.atom == XCB_ATOM_RESOURCE_MANAGER
                                                   : change.atom == fConnection[kXSettingsSettings];
    }
    case XCB_CLIENT_MESSAGE: {
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        return message.type == fConnection[kManager] && message.format == 32 &&
               message.data.data32[1] == fConnection[kXSettingsOwner];
    }
    case XCB_DESTROY_NOTIFY:
        return reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == fManager;
    default:
        return false;
    }
}

} // namespace host
