// The desk's pixels and windows.

#include <algorithm>
#include <cstring>

#include "tests/support/Desk.h"

namespace test {

namespace {

using PropertyReply = XReply<xcb_get_property_reply_t>;

std::string Bytes(const PropertyReply& reply) {
    if (!reply)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<size_t>(xcb_get_property_value_length(reply.get()))};
}

std::vector<uint32_t> Words(const PropertyReply& reply) {
    const std::string bytes = Bytes(reply);
    std::vector<uint32_t> words(bytes.size() / 4);
    if (!words.empty())
        memcpy(words.data(), bytes.data(), words.size() * 4);
    return words;
}

} // namespace

size_t Picture::Count(uint32_t color) const {
    return static_cast<size_t>(std::count(pixels.begin(), pixels.end(), color));
}

bool WindowInfo::HasType(const std::string& name) const {
    return std::find(types.begin(), types.end(), name) != types.end();
}

uint32_t Desk::Pixel(int x, int y) const {
    const Picture one = Grab({x, y, 1, 1});
    return one.pixels.empty() ? 0 : one.pixels[0];
}

Picture Desk::Grab(const Box& part) const {
    const auto reply = Ask<xcb_get_image, xcb_get_image_reply>(
        fConnection, uint8_t{XCB_IMAGE_FORMAT_Z_PIXMAP}, Root(), static_cast<int16_t>(part.x),
        static_cast<int16_t>(part.y), static_cast<uint16_t>(part.width),
        static_cast<uint16_t>(part.height), ~0u);
    if (!reply)
        return {};
    Picture picture{part.width, part.height, {}};
    picture.pixels.resize(static_cast<size_t>(part.width) * part.height);
    memcpy(picture.pixels.data(), xcb_get_image_data(reply.get()), picture.pixels.size() * 4);
    for (uint32_t& pixel : picture.pixels)
        pixel &= 0xffffff;
    return picture;
}

Picture Desk::Settled(const Box& part) const {
    Picture last;
    WaitUntil([&] {
        const Picture now = Grab(part);
        const bool settled =
            now == last && std::set(now.pixels.begin(), now.pixels.end()).size() > 2;
        last = now;
        return settled;
    });
    return last;
}

std::vector<WindowInfo> Desk::Windows(const Filter& filter) const {
    std::vector<WindowInfo> found;
    Collect(Root(), 0, found);
    std::erase_if(found, [&](const WindowInfo& window) { return !filter(window); });
    return found;
}

std::vector<WindowInfo> Desk::Shown(const std::string& type, pid_t pid) const {
    return Windows([&](const WindowInfo& window) {
        return window.viewable && (pid == 0 || window.pid == pid) &&
               window.HasType("_NET_WM_WINDOW_TYPE_" + type);
    });
}

// A program's window is a child of the root, or lies some levels deeper in the manager's frame.
void Desk::Collect(xcb_window_t parent, int depth, std::vector<WindowInfo>& found) const {
    const auto tree = Ask<xcb_query_tree, xcb_query_tree_reply>(fConnection, parent);
    if (!tree)
        return;
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        const WindowInfo window = Describe(children[i]);
        if (window.pid != 0 || !window.title.empty() || !window.types.empty())
            found.push_back(window);
        if (window.pid == 0 && depth < 4)
            Collect(children[i], depth + 1, found);
    }
}

auto Desk::SendGetProperty(xcb_window_t window, const std::string& name) const {
    return Send<xcb_get_property, xcb_get_property_reply>(
        fConnection, uint8_t{0}, window, Atom(name), xcb_atom_t{XCB_GET_PROPERTY_TYPE_ANY}, 0u,
        1u << 20);
}

// All requests are sent before the first reply is awaited: this is what waits ask all the time.
WindowInfo Desk::Describe(xcb_window_t window) const {
    const auto geometry = Send<xcb_get_geometry, xcb_get_geometry_reply>(fConnection, window);
    const auto attributes =
        Send<xcb_get_window_attributes, xcb_get_window_attributes_reply>(fConnection, window);
    const auto place = Send<xcb_translate_coordinates, xcb_translate_coordinates_reply>(
        fConnection, window, Root(), int16_t{0}, int16_t{0});
    const auto pid = SendGetProperty(window, "_NET_WM_PID");
    const auto title = SendGetProperty(window, "_NET_WM_NAME");
    const auto types = SendGetProperty(window, "_NET_WM_WINDOW_TYPE");

    WindowInfo info;
    info.id = window;
    for (const uint32_t number : Words(pid()))
        info.pid = static_cast<pid_t>(number);
    info.title = Bytes(title());
    info.types = AtomNames(Words(types()));
    const auto size = geometry();
    const auto state = attributes();
    const auto corner = place();
    if (!size || !state || !corner)
        return info;
    info.frame = {corner->dst_x, corner->dst_y, size->width, size->height};
    info.viewable = state->map_state == XCB_MAP_STATE_VIEWABLE;
    return info;
}

std::vector<uint32_t> Desk::Cardinals(xcb_window_t window, const std::string& property) const {
    return Words(SendGetProperty(window, property)());
}

std::vector<std::string> Desk::AtomNames(const std::vector<uint32_t>& atoms) const {
    std::vector<std::string> names;
    for (const uint32_t atom : atoms) {
        const auto reply = Ask<xcb_get_atom_name, xcb_get_atom_name_reply>(fConnection, atom);
        names.emplace_back(xcb_get_atom_name_name(reply.get()),
                           static_cast<size_t>(xcb_get_atom_name_name_length(reply.get())));
    }
    return names;
}

bool Desk::HasState(xcb_window_t window, const std::string& state) const {
    const auto states = AtomNames(Cardinals(window, "_NET_WM_STATE"));
    return std::find(states.begin(), states.end(), state) != states.end();
}

xcb_window_t Desk::ActiveWindow() const {
    const std::vector<uint32_t> window = Cardinals(Root(), "_NET_ACTIVE_WINDOW");
    return window.empty() ? static_cast<xcb_window_t>(XCB_NONE) : window[0];
}

bool Desk::HasKeyboard(xcb_window_t window) const {
    const auto focus = Ask<xcb_get_input_focus, xcb_get_input_focus_reply>(fConnection);
    return ActiveWindow() == window && focus && focus->focus == window;
}

std::vector<xcb_window_t> Desk::Stacking() const {
    return Cardinals(Root(), "_NET_CLIENT_LIST_STACKING");
}

void Desk::Activate(xcb_window_t window) const {
    constexpr uint32_t kFromPager = 2;
    SendToRoot(window, "_NET_ACTIVE_WINDOW", {kFromPager});
}

void Desk::Close(xcb_window_t window) const {
    constexpr uint32_t kFromPager = 2;
    SendToRoot(window, "_NET_CLOSE_WINDOW", {XCB_CURRENT_TIME, kFromPager});
}

void Desk::SendToRoot(xcb_window_t window, const std::string& type,
                      const std::vector<uint32_t>& data) const {
    const xcb_client_message_event_t event = Message(window, type, data);
    xcb_send_event(fConnection, 0, Root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
    Sync();
}

} // namespace test
