#include "tests/support/Screen.h"

#include <algorithm>
#include <cstring>

#include "host/x11/server/Connection.h"

namespace test {

using host::Reply;

bool WindowInfo::HasType(const std::string& name) const {
    return std::find(types.begin(), types.end(), name) != types.end();
}

uint32_t Screen::Pixel(int x, int y) const {
    const Picture one = Grab({x, y, 1, 1});
    return one.pixels.empty() ? 0 : one.pixels[0];
}

Picture Screen::Grab(const Box& part) const {
    xcb_connection_t* connection = fDesktop.Connection();
    const auto cookie =
        xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, fDesktop.Root(),
                      static_cast<int16_t>(part.x), static_cast<int16_t>(part.y),
                      static_cast<uint16_t>(part.width), static_cast<uint16_t>(part.height), ~0u);
    const Reply<xcb_get_image_reply_t> reply(xcb_get_image_reply(connection, cookie, nullptr));
    if (!reply)
        return {};
    Picture picture{part.width, part.height, {}};
    picture.pixels.resize(static_cast<size_t>(part.width) * part.height);
    memcpy(picture.pixels.data(), xcb_get_image_data(reply.get()), picture.pixels.size() * 4);
    for (uint32_t& pixel : picture.pixels)
        pixel &= 0xffffff;
    return picture;
}

std::vector<WindowInfo> Screen::Windows() const {
    std::vector<WindowInfo> found;
    Collect(fDesktop.Root(), 0, found);
    return found;
}

std::vector<WindowInfo>
Screen::Windows(const std::function<bool(const WindowInfo&)>& filter) const {
    std::vector<WindowInfo> found = Windows();
    std::erase_if(found, [&](const WindowInfo& window) { return !filter(window); });
    return found;
}

std::vector<WindowInfo> Screen::Shown(const std::string& type) const {
    return Windows([&](const WindowInfo& window) {
        return window.viewable && window.HasType("_NET_WM_WINDOW_TYPE_" + type);
    });
}

// A program's window is a child of the root, or lies some levels deeper in the manager's frame.
void Screen::Collect(xcb_window_t parent, int depth, std::vector<WindowInfo>& found) const {
    xcb_connection_t* connection = fDesktop.Connection();
    const Reply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, parent), nullptr));
    if (!tree)
        return;
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        const WindowInfo window = Describe(children[i]);
        if (window.pid != 0 || !window.className.empty() || !window.title.empty() ||
            !window.types.empty())
            found.push_back(window);
        else if (depth < 4)
            Collect(children[i], depth + 1, found);
    }
}

WindowInfo Screen::Describe(xcb_window_t window) const {
    xcb_connection_t* connection = fDesktop.Connection();
    WindowInfo info;
    info.id = window;
    const auto geometryCookie = xcb_get_geometry(connection, window);
    const auto attributesCookie = xcb_get_window_attributes(connection, window);
    const auto placeCookie = xcb_translate_coordinates(connection, window, fDesktop.Root(), 0, 0);
    const Reply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection, geometryCookie, nullptr));
    const Reply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(connection, attributesCookie, nullptr));
    const Reply<xcb_translate_coordinates_reply_t> place(
        xcb_translate_coordinates_reply(connection, placeCookie, nullptr));
    if (!geometry || !attributes || !place)
        return info;
    info.frame = {place->dst_x, place->dst_y, geometry->width, geometry->height};
    info.border = geometry->border_width;
    info.viewable = attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    info.overrideRedirect = attributes->override_redirect != 0;
    const std::vector<uint32_t> pid = Cardinals(window, "_NET_WM_PID");
    info.pid = pid.empty() ? 0 : static_cast<pid_t>(pid[0]);
    info.title = Text(window, "_NET_WM_NAME");
    if (info.title.empty())
        info.title = Text(window, "WM_NAME");
    const std::string names = Text(window, "WM_CLASS");
    info.instance = names.c_str();
    if (info.instance.size() + 1 < names.size())
        info.className = names.c_str() + info.instance.size() + 1;
    info.types = Atoms(window, "_NET_WM_WINDOW_TYPE");
    return info;
}

bool Screen::IsViewable(xcb_window_t window) const {
    return Describe(window).viewable;
}

std::vector<uint8_t> Screen::Property(xcb_window_t window, const std::string& name) const {
    xcb_connection_t* connection = fDesktop.Connection();
    const auto cookie = xcb_get_property(connection, 0, window, fDesktop.Atom(name),
                                         XCB_GET_PROPERTY_TYPE_ANY, 0, 1u << 20);
    const Reply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply)
        return {};
    const auto* bytes = static_cast<const uint8_t*>(xcb_get_property_value(reply.get()));
    return {bytes, bytes + xcb_get_property_value_length(reply.get())};
}

std::string Screen::Text(xcb_window_t window, const std::string& property) const {
    const std::vector<uint8_t> bytes = Property(window, property);
    return {bytes.begin(), bytes.end()};
}

std::vector<uint32_t> Screen::Cardinals(xcb_window_t window, const std::string& property) const {
    const std::vector<uint8_t> bytes = Property(window, property);
    std::vector<uint32_t> values(bytes.size() / 4);
    if (!values.empty())
        memcpy(values.data(), bytes.data(), values.size() * 4);
    return values;
}

std::vector<std::string> Screen::Atoms(xcb_window_t window, const std::string& property) const {
    xcb_connection_t* connection = fDesktop.Connection();
    std::vector<std::string> names;
    for (const uint32_t atom : Cardinals(window, property)) {
        const Reply<xcb_get_atom_name_reply_t> reply(
            xcb_get_atom_name_reply(connection, xcb_get_atom_name(connection, atom), nullptr));
        if (reply)
            names.emplace_back(xcb_get_atom_name_name(reply.get()),
                               static_cast<size_t>(xcb_get_atom_name_name_length(reply.get())));
    }
    return names;
}

bool Screen::HasState(xcb_window_t window, const std::string& state) const {
    const std::vector<std::string> states = Atoms(window, "_NET_WM_STATE");
    return std::find(states.begin(), states.end(), state) != states.end();
}

bool Screen::IsMinimized(xcb_window_t window) const {
    constexpr uint32_t kIconic = 3;
    const std::vector<uint32_t> state = Cardinals(window, "WM_STATE");
    return !state.empty() && state[0] == kIconic;
}

xcb_window_t Screen::ActiveWindow() const {
    const std::vector<uint32_t> window = Cardinals(fDesktop.Root(), "_NET_ACTIVE_WINDOW");
    return window.empty() ? static_cast<xcb_window_t>(XCB_NONE) : window[0];
}

xcb_window_t Screen::FocusedWindow() const {
    xcb_connection_t* connection = fDesktop.Connection();
    const Reply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    return reply ? reply->focus : static_cast<xcb_window_t>(XCB_NONE);
}

xcb_window_t Screen::SelectionOwner(const std::string& selection) const {
    xcb_connection_t* connection = fDesktop.Connection();
    const Reply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, fDesktop.Atom(selection)), nullptr));
    return reply ? reply->owner : static_cast<xcb_window_t>(XCB_NONE);
}

std::vector<xcb_window_t> Screen::Stacking() const {
    return Cardinals(fDesktop.Root(), "_NET_CLIENT_LIST_STACKING");
}

void Screen::Activate(xcb_window_t window) const {
    constexpr uint32_t kFromPager = 2;
    SendToRoot(window, "_NET_ACTIVE_WINDOW", kFromPager);
}

void Screen::Close(xcb_window_t window) const {
    SendToRoot(window, "_NET_CLOSE_WINDOW", XCB_CURRENT_TIME);
}

void Screen::SendToRoot(xcb_window_t window, const std::string& type, uint32_t first) const {
    const uint32_t second = type == "_NET_CLOSE_WINDOW" ? 2 : 0;
    const xcb_client_message_event_t event = fDesktop.Message(window, type, {first, second});
    xcb_send_event(fDesktop.Connection(), 0, fDesktop.Root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
    fDesktop.Sync();
}

} // namespace test
