#include "host/x11/server/Connection.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstring>
#include <string_view>

#include <unistd.h>

#include <xcb/randr.h>
#include <xcb/shape.h>
#include <xcb/xinput.h>
// The extension's header has a member of this name, a keyword here.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

namespace host {

namespace {

constexpr uint32 kMaxValues = 1024;

constexpr std::array<std::string_view, kAtomCount> kAtomNames = {
#define ATOM(index, name) name,
    X11_ATOMS(ATOM)
#undef ATOM
};

const char* ConnectProblem(int error) {
    switch (error) {
    case XCB_CONN_CLOSED_PARSE_ERR:
        return "the name is not one of a display";
    case XCB_CONN_CLOSED_INVALID_SCREEN:
        return "the display has no such screen";
    case XCB_CONN_CLOSED_EXT_NOTSUPPORTED:
    case XCB_CONN_CLOSED_MEM_INSUFFICIENT:
        return "not enough memory";
    default:
        return "no display server answers, or it refuses this user";
    }
}

xcb_screen_t* FindScreen(xcb_connection_t* connection, int number) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; number > 0 && screens.rem > 1; number--)
        xcb_screen_next(&screens);
    return screens.data;
}

bool HasWholeWords(const xcb_setup_t& setup, uint8 depth) {
    const xcb_format_t* formats = xcb_setup_pixmap_formats(&setup);
    int count = xcb_setup_pixmap_formats_length(&setup);
    return std::any_of(formats, formats + count, [&](const xcb_format_t& format) {
        return format.depth == depth && format.bits_per_pixel == 32;
    });
}

} // namespace

bigtime_t Now() {
    using namespace std::chrono;
    return duration_cast<microseconds>(steady_clock::now().time_since_epoch()).count();
}

bigtime_t TimeOf(uint32 serverTime) {
    constexpr uint32 kPlausibleAge = 5'000;
    const bigtime_t now = Now();
    const uint32 age = static_cast<uint32>(now / 1000) - serverTime;
    return age < kPlausibleAge ? (now / 1000 - age) * 1000 : now;
}

std::string HostName() {
    char name[256] = {};
    gethostname(name, sizeof(name) - 1);
    return name;
}

std::string_view BytesOf(const Reply<xcb_get_property_reply_t>& reply) {
    if (!reply || reply->format != 8)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

xcb_visualid_t FindVisual(const xcb_screen_t& screen, uint8 depth, xcb_visualid_t id) {
    auto depths = xcb_screen_allowed_depths_iterator(&screen);
    for (; depths.rem; xcb_depth_next(&depths)) {
        auto visuals = xcb_depth_visuals_iterator(depths.data);
        for (; depths.data->depth == depth && visuals.rem; xcb_visualtype_next(&visuals)) {
            const xcb_visualtype_t& visual = *visuals.data;
            if ((id == XCB_NONE || visual.visual_id == id) &&
                visual._class == XCB_VISUAL_CLASS_TRUE_COLOR && visual.red_mask == 0xff0000 &&
                visual.green_mask == 0xff00 && visual.blue_mask == 0xff)
                return visual.visual_id;
        }
    }
    return XCB_NONE;
}

std::unique_ptr<Connection> Connection::Open(const char* name, std::string& problem) {
    std::unique_ptr<Connection> opened(new Connection);
    int screen = 0;
    opened->fConnection = xcb_connect(name, &screen);
    xcb_connection_t* connection = opened->fConnection;
    if (int error = xcb_connection_has_error(connection)) {
        problem = ConnectProblem(error);
        return nullptr;
    }
    opened->fScreen = FindScreen(connection, screen);
    problem = opened->CheckScreen();
    if (!problem.empty())
        return nullptr;
    xcb_prefetch_extension_data(connection, &xcb_randr_id);
    xcb_prefetch_extension_data(connection, &xcb_xkb_id);
    opened->ReadAtoms();
    return opened;
}

void Connection::ReadAtoms() {
    std::array<xcb_intern_atom_cookie_t, kAtomCount> cookies;
    for (std::size_t i = 0; i < kAtomCount; i++)
        cookies[i] =
            xcb_intern_atom(fConnection, false, kAtomNames[i].size(), kAtomNames[i].data());
    for (std::size_t i = 0; i < kAtomCount; i++) {
        Reply<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(fConnection, cookies[i], nullptr));
        fAtoms[i] = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }
}

Connection::~Connection() {
    xcb_disconnect(fConnection);
}

std::string Connection::CheckScreen() const {
    const xcb_setup_t& setup = *xcb_get_setup(fConnection);
    uint8 depth = fScreen->root_depth;
    if (depth != 24 && depth != 32)
        return "its screen has " + std::to_string(depth) + " bits a pixel, 24 are needed";
    if (FindVisual(*fScreen, depth, fScreen->root_visual) == XCB_NONE)
        return "its screen does not take colours as red, green and blue bytes";
    bool isLittleEndian = std::endian::native == std::endian::little;
    if (!HasWholeWords(setup, depth) ||
        (setup.image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST) != isLittleEndian)
        return "it keeps pixels in another byte order than this computer";
    return {};
}

std::size_t Connection::MaxRequestBytes() const {
    return std::size_t{xcb_get_setup(fConnection)->maximum_request_length} * 4;
}

xcb_get_property_cookie_t Connection::AskForValues(xcb_window_t window, xcb_atom_t property,
                                                   xcb_atom_t type) const {
    return xcb_get_property(fConnection, false, window, property, type, 0, kMaxValues);
}

std::vector<uint32> Connection::ReadValues(xcb_get_property_cookie_t cookie) const {
    Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(fConnection, cookie, nullptr));
    if (!reply || reply->format != 32)
        return {};
    std::vector<uint32> values(xcb_get_property_value_length(reply.get()) / sizeof(uint32));
    if (!values.empty())
        std::memcpy(values.data(), xcb_get_property_value(reply.get()), values.size() * 4);
    return values;
}

void Connection::SetValues(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                           const std::vector<uint32>& values) const {
    xcb_change_property(fConnection, XCB_PROP_MODE_REPLACE, window, property, type, 32,
                        values.size(), values.data());
}

void Connection::SetText(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                         std::string_view text) const {
    xcb_change_property(fConnection, XCB_PROP_MODE_REPLACE, window, property, type, 8, text.size(),
                        text.data());
}

void Connection::SendToRoot(xcb_window_t window, xcb_atom_t type,
                            const std::vector<uint32>& data) const {
    Send(Root(), window, type, data,
         XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
}

void Connection::SendMessage(xcb_window_t receiver, xcb_window_t window, AtomIndex type,
                             const std::vector<uint32>& data) const {
    Send(receiver, window, fAtoms[type], data, XCB_EVENT_MASK_NO_EVENT);
    Flush();
}

void Connection::SendMessageTo(xcb_window_t window) const {
    Send(window, window, XCB_ATOM_NONE, {}, XCB_EVENT_MASK_NO_EVENT);
    Flush();
}

void Connection::Send(xcb_window_t receiver, xcb_window_t window, xcb_atom_t type,
                      const std::vector<uint32>& data, uint32 mask) const {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = type;
    std::copy_n(data.begin(), std::min<std::size_t>(data.size(), 5), event.data.data32);
    auto cookie = xcb_send_event_checked(fConnection, false, receiver, mask,
                                         reinterpret_cast<const char*>(&event));
    xcb_discard_reply(fConnection, cookie.sequence);
}

xcb_atom_t Connection::Intern(std::string_view name) const {
    const auto reply = Ask<xcb_intern_atom, xcb_intern_atom_reply>(
        false, static_cast<uint16>(name.size()), name.data());
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

xcb_window_t Connection::OwnerOf(xcb_atom_t selection) const {
    const auto reply = Ask<xcb_get_selection_owner, xcb_get_selection_owner_reply>(selection);
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

// Of old versions only the devices' names tell.
bool Connection::IsXWayland() const {
    std::call_once(fDevicesRead, [this] { fIsXWayland = HasDeviceNamed("xwayland-"); });
    return fIsXWayland;
}

bool Connection::HasDeviceNamed(std::string_view start) const {
    const auto* extension = xcb_get_extension_data(fConnection, &xcb_input_id);
    if (!extension || !extension->present)
        return false;
    const auto devices = Ask<xcb_input_xi_query_device, xcb_input_xi_query_device_reply>(
        xcb_input_device_id_t{XCB_INPUT_DEVICE_ALL});
    if (!devices)
        return false;
    for (auto it = xcb_input_xi_query_device_infos_iterator(devices.get()); it.rem > 0;
         xcb_input_xi_device_info_next(&it)) {
        const std::string_view name(xcb_input_xi_device_info_name(it.data), it.data->name_len);
        if (name.starts_with(start))
            return true;
    }
    return false;
}

bool Connection::HasShapes() const {
    const auto* extension = xcb_get_extension_data(fConnection, &xcb_shape_id);
    return extension && extension->present;
}

void Connection::LetInputThrough(xcb_window_t window) const {
    if (HasShapes())
        xcb_shape_rectangles(fConnection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT,
                             XCB_CLIP_ORDERING_UNSORTED, window, 0, 0, 0, nullptr);
}

bool Connection::HasWindowManager() const {
    // One that crashed leaves the root's property behind, but not the window that it names.
    xcb_atom_t check = fAtoms[kNetSupportingWmCheck];
    auto named = ReadValues(AskForValues(Root(), check, XCB_ATOM_WINDOW));
    return !named.empty() && ReadValues(AskForValues(named[0], check, XCB_ATOM_WINDOW)) == named;
}

bool Connection::IsSupportedByManager(AtomIndex hint) const {
    const auto known = ReadValues(AskForValues(Root(), fAtoms[kNetSupported], XCB_ATOM_ATOM));
    return std::ranges::find(known, fAtoms[hint]) != known.end();
}

} // namespace host
