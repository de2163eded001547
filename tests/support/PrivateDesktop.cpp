#include "tests/support/PrivateDesktop.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <stdexcept>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>
#include <xcb/randr.h>
#include <xcb/xcbext.h>

#include "host/x11/server/Connection.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Screen.h"

namespace test {

namespace {

constexpr char kWindowManagerSettings[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
<focus><focusNew>yes</focusNew><followMouse>no</followMouse><focusLast>yes</focusLast></focus>
<placement><policy>Smart</policy><center>no</center></placement>
<theme><name>Clearlooks</name><animateIconify>no</animateIconify></theme>
<desktops><number>2</number><popupTime>0</popupTime></desktops>
<resize><popupShow>Never</popupShow></resize>
<keyboard></keyboard>
<mouse>
<dragThreshold>1</dragThreshold><doubleClickTime>300</doubleClickTime>
<context name="Client">
<mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
<mousebind button="Middle" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
<mousebind button="Right" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
</context>
<context name="Titlebar">
<mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
<mousebind button="Left" action="Drag"><action name="Move"/></mousebind>
</context>
<context name="Close">
<mousebind button="Left" action="Click"><action name="Close"/></mousebind>
</context>
</mouse>
</openbox_config>
)";

std::string ReadLine(int descriptor) {
    std::string text;
    pollfd ready{descriptor, POLLIN, 0};
    char byte = 0;
    while (poll(&ready, 1, static_cast<int>(kDeadline.count())) == 1 &&
           read(descriptor, &byte, 1) == 1) {
        if (byte == '\n')
            return text;
        text += byte;
    }
    throw std::runtime_error("the private desktop did not start");
}

xcb_randr_output_t FindOutput(xcb_connection_t* connection, xcb_window_t root) {
    const auto cookie = xcb_randr_get_screen_resources_current(connection, root);
    auto* reply = xcb_randr_get_screen_resources_current_reply(connection, cookie, nullptr);
    if (reply == nullptr || reply->num_outputs == 0)
        throw std::runtime_error("the private X server has no output");
    const xcb_randr_output_t output = xcb_randr_get_screen_resources_current_outputs(reply)[0];
    free(reply);
    return output;
}

// Sent by hand: xcb_randr_set_monitor of libxcb 1.15 aborts in an assertion on its length.
struct SetMonitorRequest {
    xcb_randr_set_monitor_request_t head;
    xcb_randr_monitor_info_t info;
    xcb_randr_output_t output; // if info.nOutput is 1
};

void Send(xcb_connection_t* connection, SetMonitorRequest& request) {
    const xcb_protocol_request_t description = {1, &xcb_randr_id, XCB_RANDR_SET_MONITOR, 1};
    const size_t size = sizeof request - (request.info.nOutput == 0 ? sizeof request.output : 0);
    iovec parts[3] = {{}, {}, {&request, size}}; // the library writes to the two before
    xcb_send_request(connection, 0, parts + 2, &description);
}

} // namespace

PrivateDesktop& PrivateDesktop::Shared() {
    static PrivateDesktop desktop{Options{}};
    return desktop;
}

PrivateDesktop::PrivateDesktop(const Options& options) {
    if (const char* old = getenv("DISPLAY"))
        fOldDisplay = old;
    StartServer(options);
    setenv("DISPLAY", fName.c_str(), 1);
    fConnection = xcb_connect(fName.c_str(), nullptr);
    if (xcb_connection_has_error(fConnection) != 0)
        throw std::runtime_error("cannot connect to the private X server");
    fScreen = xcb_setup_roots_iterator(xcb_get_setup(fConnection)).data;
    SetResources(options.dpi);
    if (!options.monitors.empty())
        SetMonitors(options.monitors);
    if (options.windowManager)
        StartWindowManager();
}

PrivateDesktop::~PrivateDesktop() {
    xcb_disconnect(fConnection);
    fWindowManager.reset();
    KillServer();
    if (!fFolder.empty())
        std::filesystem::remove_all(fFolder);
    if (fOldDisplay.empty())
        unsetenv("DISPLAY");
    else
        setenv("DISPLAY", fOldDisplay.c_str(), 1);
}

void PrivateDesktop::StartServer(const Options& options) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    const std::string size = std::to_string(options.width) + "x" + std::to_string(options.height) +
                             "x" + std::to_string(options.depth);
    ChildProcess::Options server;
    server.arguments = {"Xvfb",      "-displayfd", std::to_string(ends[1]),
                        "-screen",   "0",          size,
                        "-nolisten", "tcp",        "-noreset"};
    server.errors = "/dev/null";
    server.keep = ends[1];
    fServer = std::make_unique<ChildProcess>(server);
    close(ends[1]);
    fName = ":" + ReadLine(ends[0]); // written when clients may connect
    close(ends[0]);
}

void PrivateDesktop::SetResources(int dpi) {
    if (dpi == 0)
        return;
    const std::string text = "Xft.dpi:\t" + std::to_string(dpi) + "\n";
    xcb_change_property(fConnection, XCB_PROP_MODE_REPLACE, Root(), XCB_ATOM_RESOURCE_MANAGER,
                        XCB_ATOM_STRING, 8, text.size(), text.data());
    Sync();
}

void PrivateDesktop::SetMonitors(const std::vector<Box>& monitors) {
    const auto cookie = xcb_randr_get_monitors(fConnection, Root(), 0);
    if (auto* reply = xcb_randr_get_monitors_reply(fConnection, cookie, nullptr)) {
        for (auto it = xcb_randr_get_monitors_monitors_iterator(reply); it.rem > 0;
             xcb_randr_monitor_info_next(&it))
            xcb_randr_delete_monitor(fConnection, Root(), it.data->name);
        free(reply);
    }
    // The first one takes the server's only output, which would count as one more monitor.
    const xcb_randr_output_t output = FindOutput(fConnection, Root());
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
        request.output = output;
        Send(fConnection, request);
    }
    Sync();
}

void PrivateDesktop::StartWindowManager() {
    std::string folder = (std::filesystem::temp_directory_path() / "desktop-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    fFolder = folder;
    const std::string settings = fFolder + "/rc.xml";
    std::ofstream(settings) << kWindowManagerSettings;
    // Its first properties come early: what asks to be shown while it still starts is lost. The
    // start-up command comes last.
    const std::string ready = fFolder + "/ready";
    mkfifo(ready.c_str(), 0600);
    const int fifo = open(ready.c_str(), O_RDWR | O_CLOEXEC);
    ChildProcess::Options manager;
    manager.arguments = {"openbox", "--sm-disable", "--config-file",
                         settings,  "--startup",    "sh -c 'echo >" + ready + "'"};
    manager.environment = {{"HOME", fFolder},
                           {"XDG_CONFIG_HOME", fFolder},
                           {"XDG_DATA_HOME", fFolder},
                           {"XDG_DATA_DIRS", "/usr/local/share:/usr/share"}};
    manager.output = "/dev/null";
    manager.errors = "/dev/null";
    fWindowManager = std::make_unique<ChildProcess>(manager);
    ReadLine(fifo);
    close(fifo);
}

xcb_atom_t PrivateDesktop::Atom(const std::string& name) const {
    const auto cookie = xcb_intern_atom(fConnection, 0, name.size(), name.data());
    const host::Reply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(fConnection, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

xcb_client_message_event_t PrivateDesktop::Message(xcb_window_t about, const std::string& type,
                                                   const std::vector<uint32_t>& data) const {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = about;
    message.type = Atom(type);
    std::copy(data.begin(), data.end(), message.data.data32);
    return message;
}

void PrivateDesktop::Sync() const {
    free(xcb_get_input_focus_reply(fConnection, xcb_get_input_focus(fConnection), nullptr));
}

void PrivateDesktop::KillServer() {
    fServer.reset();
}

PlainWindow::PlainWindow(PrivateDesktop& desktop, const Box& frame, const std::string& title)
    : fDesktop(desktop)
    , fWindow(xcb_generate_id(desktop.Connection())) {
    xcb_connection_t* connection = desktop.Connection();
    const uint32_t white = 0xffffff;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, fWindow, desktop.Root(),
                      static_cast<int16_t>(frame.x), static_cast<int16_t>(frame.y),
                      static_cast<uint16_t>(frame.width), static_cast<uint16_t>(frame.height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL,
                      &white);
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, fWindow, XCB_ATOM_WM_NAME,
                        XCB_ATOM_STRING, 8, title.size(), title.data());
    const int32_t userPosition[18] = {1 | 2}; // WM_NORMAL_HINTS: USPosition, USSize
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, fWindow, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, 18, userPosition);
    xcb_map_window(connection, fWindow);
    const Screen screen(desktop);
    if (!WaitUntil([&] { return screen.IsViewable(fWindow); }))
        throw std::runtime_error("the plain window was not shown");
}

PlainWindow::~PlainWindow() {
    xcb_destroy_window(fDesktop.Connection(), fWindow);
    fDesktop.Sync();
}

void PlainWindow::Activate() {
    const Screen screen(fDesktop);
    screen.Activate(fWindow);
    if (!WaitUntil([&] { return screen.ActiveWindow() == fWindow; }))
        throw std::runtime_error("the plain window did not become active");
}

} // namespace test
