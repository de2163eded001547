#include "host/x11/windows/StartupNotice.h"

#include <algorithm>
#include <charconv>

namespace host {

namespace {

constexpr std::size_t kLongestId = 1024;
constexpr std::string_view kTimeMark = "_TIME";
constexpr std::size_t kMessageBytes = 20;

bool IsPrintable(unsigned char byte) {
    return byte > ' ' && byte < 0x7f;
}

} // namespace

xcb_timestamp_t StartupTime(const std::string& id) {
    const std::size_t mark = id.rfind(kTimeMark);
    if (mark == std::string::npos)
        return 0;
    const char* end = id.data() + id.size();
    xcb_timestamp_t time = 0;
    const auto [behind, error] = std::from_chars(id.data() + mark + kTimeMark.size(), end, time);
    return error == std::errc() && behind == end ? time : 0;
}

// A text that goes out in pieces, the last of which holds its NUL.
void EndStartup(const Connection& connection, xcb_window_t window, const std::string& id) {
    if (id.empty() || id.size() > kLongestId || !std::ranges::all_of(id, IsPrintable))
        return;
    std::string text = "remove: ID=\"";
    for (const char byte : id) {
        if (byte == '"' || byte == '\\')
            text += '\\';
        text += byte;
    }
    text += "\"";
    text += '\0';
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 8;
    event.window = window;
    event.type = connection[kNetStartupInfoBegin];
    for (std::size_t start = 0; start < text.size(); start += kMessageBytes) {
        std::fill_n(event.data.data8, kMessageBytes, uint8{0});
        text.copy(reinterpret_cast<char*>(event.data.data8), kMessageBytes, start);
        xcb_send_event(connection, false, connection.Root(), XCB_EVENT_MASK_PROPERTY_CHANGE,
                       reinterpret_cast<const char*>(&event));
        event.type = connection[kNetStartupInfo];
    }
    connection.Flush();
}

} // namespace host
