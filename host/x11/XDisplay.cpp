#include "host/x11/XDisplay.h"

#include <cstdio>
#include <cstdlib>
#include <tuple>

#include "host/x11/XWindow.h"

namespace host {

namespace {

std::atomic<Display*> sShared = nullptr;

void Report(const char* program, const std::string& problem) {
    const char* display = std::getenv("DISPLAY"); // NOLINT(concurrency-mt-unsafe): nobody sets it
    if (display && *display)
        std::fprintf(stderr, "%s: cannot use the display %s: %s\n", program, display,
                     problem.c_str());
    else
        std::fprintf(stderr,
                     "%s: there is no display: DISPLAY is not set.\n"
                     "Start it within a desktop of X11, or of Wayland with XWayland.\n",
                     program);
}

} // namespace

status_t Display::Open(DisplaySink* sink, const char* instanceName, const char* className) {
    std::string problem;
    auto display = XDisplay::Connect(nullptr, sink, instanceName, className, problem);
    if (!display) {
        Report(instanceName, problem);
        return B_ERROR;
    }
    // As long as the process: windows of any thread may still use it while the process ends.
    sShared = display.release();
    return B_OK;
}

Display* Display::Shared() {
    return sShared;
}

std::unique_ptr<XDisplay> XDisplay::Connect(const char* name, DisplaySink* sink,
                                            const char* instanceName, const char* className,
                                            std::string& problem) {
    auto connection = Connection::Open(name, problem);
    if (!connection)
        return nullptr;
    ProgramIdentity identity{instanceName, className, xcb_generate_id(*connection)};
    return std::unique_ptr<XDisplay>(
        new XDisplay(std::move(connection), sink, std::move(identity)));
}

// All requests go out before the first answer is waited for.
XDisplay::XDisplay(std::unique_ptr<Connection> connection, DisplaySink* sink,
                   ProgramIdentity identity)
    : fConnection(std::move(connection))
    , fPens(*fConnection)
    , fIdentity(std::move(identity))
    , fMonitors(*fConnection)
    , fGrab(*fConnection)
    , fCursors(*fConnection)
    , fSelections(*fConnection, fIdentity.leader, fWindows)
    , fDrags(*fConnection, fGrab)
    , fDrops(*fConnection, fWindows,
             [this](xcb_window_t window, xcb_timestamp_t time, const DropEvent& drop) {
                 Deliver(drop, window, time);
             })
    , fSettingsReader(*fConnection)
    , fThread(*this, sink) {
    const uint32 events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(*fConnection, fConnection->Root(), XCB_CW_EVENT_MASK, &events);
    MakeLeader();
    fSettingsReader.Ask();
    fMonitors.Read();
    fSettings = fSettingsReader.Read();
    fThread.Start();
}

XDisplay::~XDisplay() = default;

DesktopSettings XDisplay::Settings() const {
    std::lock_guard lock(fLock);
    return fSettings;
}

bool XDisplay::UpdateSettings(const xcb_generic_event_t& event) {
    if (!fSettingsReader.IsConcernedBy(event))
        return false;
    fSettingsReader.Ask();
    DesktopSettings settings = fSettingsReader.Read();
    {
        std::lock_guard lock(fLock);
        if (std::exchange(fSettings, settings) == settings)
            return false;
    }
    fCursors.ForgetTheme();
    return true;
}

void XDisplay::MakeLeader() {
    const Connection& connection = *fConnection;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, fIdentity.leader, connection.Root(), -1, -1,
                      1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    connection.SetValues(fIdentity.leader, connection[kWmClientLeader], XCB_ATOM_WINDOW,
                         {fIdentity.leader});
}

void XDisplay::SetIcons(const std::vector<Image>& icons) {
    std::vector<std::vector<uint32>> words;
    for (const Image& icon : icons)
        words.push_back(IconWords(icon));
    std::lock_guard lock(fLock);
    fIcons = std::move(words);
}

std::vector<std::vector<uint32>> XDisplay::Icons() const {
    std::lock_guard lock(fLock);
    return fIcons;
}

std::unique_ptr<HostWindow> XDisplay::CreateWindow(const WindowSpec& spec, WindowSink* sink) {
    return std::make_unique<XWindow>(*this, spec, sink);
}

Pointer XDisplay::GetPointer() const {
    const auto reply =
        fConnection->Ask<xcb_query_pointer, xcb_query_pointer_reply>(fConnection->Root());
    if (!reply)
        return {};
    return {.screenX = reply->root_x,
            .screenY = reply->root_y,
            .buttons = ButtonsOf(reply->mask),
            .modifiers = ModifiersOf(reply->mask)};
}

xcb_timestamp_t XDisplay::LastKnownPressTime() const {
    xcb_timestamp_t own = fLastInputTime;
    xcb_timestamp_t any = fThread.Keys().LastPressTime();
    // The server's clock starts again after 49 days.
    return own == 0 || (any != 0 && static_cast<int32>(any - own) > 0) ? any : own;
}

// Its place is on the screen still. A drop is the user's doing, as a press is: what the program
// shows for it may have the focus.
void XDisplay::Deliver(const DropEvent& drop, xcb_window_t id, xcb_timestamp_t time) {
    if (time != XCB_CURRENT_TIME)
        NoteInputTime(time);
    fWindows.Deliver(id, [&](XWindow& window) {
        std::visit(
            [&](auto event) {
                std::tie(event.x, event.y) = window.ContentPlace(XCB_WINDOW_NONE, event.x, event.y);
                window.Notify(event);
            },
            drop);
    });
}

void XDisplay::Beep() {
    xcb_bell(*fConnection, 0);
    fConnection->Flush();
}

void XDisplay::Sync() {
    fConnection->Ask<xcb_get_input_focus, xcb_get_input_focus_reply>();
}

} // namespace host
