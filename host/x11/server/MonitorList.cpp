#include "host/x11/server/MonitorList.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

constexpr uint16 kChanges = XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE |
                            XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE;

PixelRect FrameOf(const xcb_randr_monitor_info_t& monitor) {
    return {monitor.x, monitor.y, monitor.x + monitor.width, monitor.y + monitor.height};
}

} // namespace

MonitorList::MonitorList(const Connection& connection)
    : fConnection(connection) {
    const xcb_query_extension_reply_t* randr = xcb_get_extension_data(fConnection, &xcb_randr_id);
    if (randr && randr->present) {
        fHasRandr = true;
        fFirstEvent = randr->first_event;
        // The server treats the program as one of the version that it announces.
        auto version = xcb_randr_query_version(fConnection, 1, 5);
        xcb_discard_reply(fConnection, version.sequence);
        xcb_randr_select_input(fConnection, fConnection.Root(), kChanges);
    }
    Ask();
}

void MonitorList::Ask() {
    if (fHasRandr)
        fMonitors = xcb_randr_get_monitors(fConnection, fConnection.Root(), true);
    fRoot = xcb_get_geometry(fConnection, fConnection.Root());
}

std::vector<PixelRect> MonitorList::ReadMonitors() const {
    std::vector<PixelRect> frames;
    if (!fHasRandr)
        return frames;
    Reply<xcb_randr_get_monitors_reply_t> reply(
        xcb_randr_get_monitors_reply(fConnection, fMonitors, nullptr));
    if (!reply)
        return frames;
    auto monitors = xcb_randr_get_monitors_monitors_iterator(reply.get());
    for (; monitors.rem; xcb_randr_monitor_info_next(&monitors)) {
        PixelRect frame = FrameOf(*monitors.data);
        bool isKnown = std::ranges::find(frames, frame) != frames.end();
        if (!frame.IsEmpty() && !isKnown)
            frames.insert(monitors.data->primary ? frames.begin() : frames.end(), frame);
    }
    return frames;
}

bool MonitorList::Read() {
    std::vector<PixelRect> frames = ReadMonitors();
    Reply<xcb_get_geometry_reply_t> root(xcb_get_geometry_reply(fConnection, fRoot, nullptr));
    if (frames.empty() && root)
        frames.push_back({0, 0, root->width, root->height});
    if (frames.empty()) {
        const xcb_screen_t& screen = fConnection.Screen();
        frames.push_back({0, 0, screen.width_in_pixels, screen.height_in_pixels});
    }
    std::lock_guard lock(fLock);
    return std::exchange(fFrames, frames) != frames;
}

bool MonitorList::Update() {
    Ask();
    return Read();
}

bool MonitorList::IsConcernedBy(const xcb_generic_event_t& event) const {
    uint8 type = event.response_type & 0x7f;
    // Monitors that a person combines of others show in the root window's size only.
    if (type == XCB_CONFIGURE_NOTIFY) {
        const auto& configure = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        return configure.window == fConnection.Root();
    }
    return fHasRandr && (type == fFirstEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                         type == fFirstEvent + XCB_RANDR_NOTIFY);
}

std::vector<PixelRect> MonitorList::Frames() const {
    std::lock_guard lock(fLock);
    return fFrames;
}

} // namespace host
