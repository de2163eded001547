#include "tests/support/Desk.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <stdexcept>
#include <sys/uio.h>
#include <unistd.h>
#include <xcb/randr.h>
#include <xcb/xcbext.h>

#include "tests/support/ChildProcess.h"

namespace test {

namespace {

// Sent by hand: xcb_randr_set_monitor of libxcb 1.15 aborts in an assertion on its length.
struct SetMonitorRequest {
    xcb_randr_set_monitor_request_t head;
    xcb_randr_monitor_info_t info;
    xcb_randr_output_t output; // if info.nOutput is 1
};

void SendMonitor(xcb_connection_t* connection, SetMonitorRequest& request) {
    const xcb_protocol_request_t description = {1, &xcb_randr_id, XCB_RANDR_SET_MONITOR, 1};
    const size_t size = sizeof request - (request.info.nOutput == 0 ? sizeof request.output : 0);
    iovec parts[3] = {{}, {}, {&request, size}}; // the library writes to the two before
    xcb_send_request(connection, 0, parts + 2, &description);
}

class LetGoAfterTest : public testing::EmptyTestEventListener {
public:
    explicit LetGoAfterTest(Desk& desk)
        : fDesk(desk) {}

    void OnTestEnd(const testing::TestInfo&) override { fDesk.LetGo(); }

private:
    Desk& fDesk;
};

} // namespace

Desk& Desk::Shared() {
    static Desk* const desk = [] {
        static Desk made{Options{}};
        testing::UnitTest::GetInstance()->listeners().Append(new LetGoAfterTest(made));
        return &made;
    }();
    return *desk;
}

Desk::Desk(const Options& options) {
    if (const char* old = getenv("DISPLAY"))
        fOldDisplay = old;
    StartServer(options);
    setenv("DISPLAY", fName.c_str(), 1);
    fConnection = xcb_connect(fName.c_str(), nullptr);
    if (xcb_connection_has_error(fConnection) != 0)
        throw std::runtime_error("cannot connect to the private X server");
    fScreen = xcb_setup_roots_iterator(xcb_get_setup(fConnection)).data;
    if (options.dpi != 0)
        SetDpi(options.dpi);
    if (!options.monitors.empty())
        SetMonitors(options.monitors);
    if (options.windowManager)
        StartWindowManager();
}

Desk::~Desk() {
    xcb_disconnect(fConnection);
    fWindowManager.reset();
    KillServer();
    if (fOldDisplay.empty())
        unsetenv("DISPLAY");
    else
        setenv("DISPLAY", fOldDisplay.c_str(), 1);
}

void Desk::StartServer(const Options& options) {
    const std::string screen = std::to_string(options.width) + "x" +
                               std::to_string(options.height) + "x" + std::to_string(options.depth);
    const auto name =
        std::filesystem::temp_directory_path() / ("display-" + std::to_string(getpid()));
    fServer = std::make_unique<ChildProcess>(
        ChildProcess::Options{.arguments = {"Xvfb", "-displayfd", "1", "-nolisten", "tcp",
                                            "-noreset", "-screen", "0", screen},
                              .output = name,
                              .errors = "/dev/null",
                              .endsBy = SIGTERM}); // it removes its socket and its lock file
    // It is written, with a new line, when clients may connect.
    std::string number;
    const bool isUp = WaitUntil([&] { return !std::getline(std::ifstream(name), number).eof(); });
    std::filesystem::remove(name);
    if (!isUp)
        throw std::runtime_error("the private X server did not start");
    fName = ":" + number;
}

// Returns when it answers messages: a window that asks to be shown earlier may lie in its queue
// until something else happens, and even its start-up command runs before that.
void Desk::StartWindowManager() {
    ChildProcess::Options manager;
    manager.arguments = {"openbox", "--sm-disable", "--config-file", WINDOW_MANAGER_SETTINGS};
    for (const char* folder : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
        manager.environment[folder] = "/nonexistent";
    manager.environment["XDG_DATA_DIRS"] = "/usr/local/share:/usr/share";
    manager.errors = "/dev/null";
    fWindowManager = std::make_unique<ChildProcess>(manager);

    const xcb_window_t window = xcb_generate_id(fConnection); // never shown
    xcb_create_window(fConnection, XCB_COPY_FROM_PARENT, window, Root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    const bool answered = WaitUntil([&] {
        SendToRoot(window, "_NET_REQUEST_FRAME_EXTENTS", {});
        return !Cardinals(window, "_NET_FRAME_EXTENTS").empty();
    });
    xcb_destroy_window(fConnection, window);
    if (!answered)
        throw std::runtime_error("the window manager does not answer");
}

void Desk::SetDpi(int dpi) {
    fScale = dpi / 96.0;
    const std::string text = "Xft.dpi:\t" + std::to_string(dpi) + "\n";
    xcb_change_property(fConnection, XCB_PROP_MODE_REPLACE, Root(), XCB_ATOM_RESOURCE_MANAGER,
                        XCB_ATOM_STRING, 8, text.size(), text.data());
    Sync();
}

void Desk::SetMonitors(const std::vector<Box>& monitors) {
    const auto old =
        Ask<xcb_randr_get_monitors, xcb_randr_get_monitors_reply>(fConnection, Root(), uint8_t{0});
    for (auto it = xcb_randr_get_monitors_monitors_iterator(old.get()); it.rem > 0;
         xcb_randr_monitor_info_next(&it))
        xcb_randr_delete_monitor(fConnection, Root(), it.data->name);
    // The first one takes the server's only output, which would count as one more monitor.
    const auto resources =
        Ask<xcb_randr_get_screen_resources_current, xcb_randr_get_screen_resources_current_reply>(
            fConnection, Root());
    for (size_t i = 0; i < monitors.size(); ++i) {
        const Box& box = monitors[i];
        SetMonitorRequest request = {};
        request.head.window = Root();
        request.info.name = Atom("monitor" + std::to_string(i));
        request.info.primary = i == 0;
        request.info.nOutput = i == 0;
        request.info.x = static_cast<int16_t>(box.x);
        request.info.y = static_cast<int16_t>(box.y);
        request.info.width = static_cast<uint16_t>(box.width);
        request.info.height = static_cast<uint16_t>(box.height);
        request.info.width_in_millimeters = static_cast<uint32_t>(box.width / 4);
        request.info.height_in_millimeters = static_cast<uint32_t>(box.height / 4);
        request.output = xcb_randr_get_screen_resources_current_outputs(resources.get())[0];
        SendMonitor(fConnection, request);
    }
    Sync();
}

xcb_atom_t Desk::Atom(const std::string& name) const {
    std::lock_guard lock(fLock);
    xcb_atom_t& atom = fAtoms[name];
    if (atom == XCB_NONE) {
        const auto reply = Ask<xcb_intern_atom, xcb_intern_atom_reply>(
            fConnection, uint8_t{0}, static_cast<uint16_t>(name.size()), name.c_str());
        atom = reply ? reply->atom : static_cast<xcb_atom_t>(XCB_NONE);
    }
    return atom;
}

xcb_client_message_event_t Desk::Message(xcb_window_t about, const std::string& type,
                                         const std::vector<uint32_t>& data) const {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = about;
    message.type = Atom(type);
    std::copy(data.begin(), data.end(), message.data.data32);
    return message;
}

void Desk::Sync() const {
    Ask<xcb_get_input_focus, xcb_get_input_focus_reply>(fConnection);
}

void Desk::KillServer() {
    fServer.reset();
}

PlainWindow::PlainWindow(Desk& desk, const Box& frame)
    : fDesk(desk)
    , fWindow(xcb_generate_id(desk.Connection())) {
    xcb_connection_t* connection = desk.Connection();
    const uint32_t white = 0xffffff;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, fWindow, desk.Root(),
                      static_cast<int16_t>(frame.x), static_cast<int16_t>(frame.y),
                      static_cast<uint16_t>(frame.width), static_cast<uint16_t>(frame.height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL,
                      &white);
    // WM_NORMAL_HINTS: USPosition, USSize, PMinSize and PMaxSize, which tiling managers do not
    // tile.
    const int32_t userPosition[18] = {1 | 2 | 16 | 32, 0,           0,           0, 0, frame.width,
                                      frame.height,    frame.width, frame.height};
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, fWindow, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, 18, userPosition);
    xcb_map_window(connection, fWindow);
    if (!WaitUntil([&] { return fDesk.IsViewable(fWindow); }))
        throw std::runtime_error("the plain window was not shown");
}

PlainWindow::~PlainWindow() {
    xcb_destroy_window(fDesk.Connection(), fWindow);
    fDesk.Sync();
}

void PlainWindow::Activate() {
    fDesk.Activate(fWindow);
    if (!WaitUntil([&] { return fDesk.ActiveWindow() == fWindow; }))
        throw std::runtime_error("the plain window did not become active");
}

} // namespace test
