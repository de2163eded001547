#include "host/x11/exchange/DropSearch.h"

#include <algorithm>

#include "host/x11/exchange/DragMessages.h"

namespace host {

namespace {

constexpr int kMaxDepth = 32;

struct Question {
    Question(const Connection& connection, xcb_window_t asked)
        : window(asked)
        , aware(connection.AskForValues(asked, connection[kXdndAware], XCB_ATOM_ATOM))
        , proxy(connection.AskForValues(asked, connection[kXdndProxy], XCB_ATOM_WINDOW)) {}

    xcb_window_t window;
    xcb_get_property_cookie_t aware;
    xcb_get_property_cookie_t proxy;
};

uint32 VersionIn(const std::vector<uint32>& aware) {
    uint32 version = aware.empty() ? 0 : std::min(aware[0], kXdndVersion);
    return version >= kLowestXdndVersion ? version : 0;
}

DropPlace Read(const Connection& connection, const Question& question) {
    uint32 version = VersionIn(connection.ReadValues(question.aware));
    auto proxy = connection.ReadValues(question.proxy);
    if (!proxy.empty() && proxy[0] != question.window) {
        // A proxy that is gone may have left its number to any window: a true one names itself.
        Question ask(connection, proxy[0]);
        uint32 proxyVersion = VersionIn(connection.ReadValues(ask.aware));
        if (connection.ReadValues(ask.proxy) == proxy && proxyVersion != 0)
            return {question.window, proxy[0], proxyVersion};
    }
    if (version == 0)
        return {};
    return {question.window, question.window, version};
}

} // namespace

DropPlace FindDropPlace(const Connection& connection, int screenX, int screenY) {
    xcb_window_t root = connection.Root();
    xcb_window_t window = root;
    DropPlace desktop;
    for (int depth = 0; depth < kMaxDepth && window != XCB_WINDOW_NONE; depth++) {
        auto askChild = xcb_translate_coordinates(
            connection, root, window, static_cast<int16>(screenX), static_cast<int16>(screenY));
        DropPlace found = Read(connection, Question(connection, window));
        Reply<xcb_translate_coordinates_reply_t> child(
            xcb_translate_coordinates_reply(connection, askChild, nullptr));
        if (window == root)
            desktop = found; // only where nothing else is
        else if (found.window != XCB_WINDOW_NONE)
            return found;
        window = child ? child->child : xcb_window_t{XCB_WINDOW_NONE};
    }
    return desktop;
}

} // namespace host
