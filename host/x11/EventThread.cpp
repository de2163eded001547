#include "host/x11/EventThread.h"

#include <cstdio>

#include "host/x11/XDisplay.h"
#include "host/x11/XWindow.h"
#include "host/x11/server/Connection.h"

namespace host {

namespace {

constexpr uint8 kError = 0;
constexpr uint8 kEventType = 0x7f;

// 0 for another one than the first three, whose bits in a state mask are one behind the other.
uint32 ButtonOf(xcb_button_t button) {
    return button >= 1 && button <= 3 ? ButtonsOf(XCB_BUTTON_MASK_1 << (button - 1)) : 0;
}

// The server's wheels are buttons.
constexpr xcb_button_t kFirstWheel = 4;
constexpr std::pair<float, float> kWheelSteps[] = {{0, -1}, {0, 1}, {-1, 0}, {1, 0}};

template <typename T>
const T& As(const xcb_generic_event_t& event) {
    return reinterpret_cast<const T&>(event);
}

// Key, button, motion and crossing events have these fields, under these names.
template <typename T>
PointerMoved PlaceOf(const T& event, XWindow& window) {
    auto [x, y] = window.ContentPlace(event.event, event.event_x, event.event_y);
    return {.x = x,
            .y = y,
            .screenX = event.root_x,
            .screenY = event.root_y,
            .buttons = ButtonsOf(event.state),
            .modifiers = ModifiersOf(event.state)};
}

} // namespace

EventThread::EventThread(XDisplay& display, DisplaySink* sink)
    : fDisplay(display)
    , fConnection(display.Server())
    , fSink(sink)
    , fKeyboard(fConnection)
    , fRawKeys(fConnection, sink)
    , fInput(
          fConnection, display.Identity().leader,
          [this](const xcb_key_press_event_t& key) { HandleKey(key); },
          [this](xcb_window_t window, const std::string& text) {
              Notify(window, TextCommitted{text});
          })
    , fGrabWatch(display, sink) {}

void EventThread::Start() {
    SetClickLimits();
    fThread = std::thread([this] { Run(); });
}

void EventThread::SetClickLimits() {
    const DesktopSettings settings = fDisplay.Settings();
    fClicks.SetLimits(settings.doubleClickTime,
                      static_cast<int>(settings.doubleClickDistance * settings.scale));
}

EventThread::~EventThread() {
    fIsEnding = true;
    fConnection.SendMessageTo(fDisplay.Identity().leader);
    if (fThread.joinable())
        fThread.join();
}

void EventThread::Run() {
    while (Event event = Next()) {
        if (fIsEnding)
            return;
        if (!fInput.Filter(*event))
            Handle(*event);
    }
    if (!fIsEnding)
        fSink->DisplayLost();
}

EventThread::Event EventThread::Next() {
    Event event = fWaiting ? std::move(fWaiting) : Event(xcb_wait_for_event(fConnection));
    if (event && (event->response_type & kEventType) == XCB_MOTION_NOTIFY)
        return NewestMotion(std::move(event));
    return event;
}

// Of a run of motions that waits only the last counts.
EventThread::Event EventThread::NewestMotion(Event motion) {
    while (Event next{xcb_poll_for_queued_event(fConnection)}) {
        const auto& older = As<xcb_motion_notify_event_t>(*motion);
        const auto& newer = As<xcb_motion_notify_event_t>(*next);
        bool isSame = (next->response_type & kEventType) == XCB_MOTION_NOTIFY &&
                      newer.event == older.event && newer.state == older.state;
        if (!isSame) {
            fWaiting = std::move(next);
            break;
        }
        motion = std::move(next);
    }
    return motion;
}

void EventThread::Notify(xcb_window_t window, const WindowEvent& event) {
    fDisplay.Windows().Deliver(window, [&](XWindow& target) { target.Notify(event); });
}

template <typename T>
void EventThread::Deliver(const xcb_generic_event_t& event, void (XWindow::*handle)(const T&)) {
    const auto& specific = As<T>(event);
    fDisplay.Windows().Deliver(specific.window,
                               [&](XWindow& window) { (window.*handle)(specific); });
}

void EventThread::Handle(const xcb_generic_event_t& event) {
    CheckSettings(event);
    CheckMonitors(event);
    switch (event.response_type & kEventType) {
    case kError:
        return Report(As<xcb_generic_error_t>(event));
    case XCB_KEY_PRESS:
    case XCB_KEY_RELEASE:
        fDisplay.NoteInputTime(As<xcb_key_press_event_t>(event).time);
        if (!fInput.TakeKey(As<xcb_key_press_event_t>(event)))
            HandleKey(As<xcb_key_press_event_t>(event));
        return;
    case XCB_BUTTON_PRESS:
        return HandlePress(As<xcb_button_press_event_t>(event));
    case XCB_BUTTON_RELEASE:
        return HandleRelease(As<xcb_button_release_event_t>(event));
    case XCB_MOTION_NOTIFY:
        return HandleMotion(As<xcb_motion_notify_event_t>(event));
    case XCB_ENTER_NOTIFY:
        return HandleCrossing(As<xcb_enter_notify_event_t>(event), true);
    case XCB_LEAVE_NOTIFY:
        return HandleCrossing(As<xcb_enter_notify_event_t>(event), false);
    case XCB_FOCUS_IN:
        return HandleFocus(As<xcb_focus_in_event_t>(event), true);
    case XCB_FOCUS_OUT:
        return HandleFocus(As<xcb_focus_in_event_t>(event), false);
    case XCB_EXPOSE:
        return Deliver(event, &XWindow::HandleExpose);
    case XCB_CONFIGURE_NOTIFY:
        return Deliver(event, &XWindow::HandleConfigure);
    case XCB_MAP_NOTIFY:
        return Deliver(event, &XWindow::HandleMap);
    case XCB_REPARENT_NOTIFY:
        return Deliver(event, &XWindow::HandleReparent);
    case XCB_DESTROY_NOTIFY:
        // By another program: ours takes its windows from the registry first.
        return Notify(As<xcb_destroy_notify_event_t>(event).window, CloseRequested{});
    case XCB_PROPERTY_NOTIFY:
        return HandleProperty(As<xcb_property_notify_event_t>(event));
    case XCB_SELECTION_CLEAR:
    case XCB_SELECTION_REQUEST:
    case XCB_SELECTION_NOTIFY:
        return HandleSelection(event);
    case XCB_CLIENT_MESSAGE:
        return HandleMessage(As<xcb_client_message_event_t>(event));
    case XCB_GE_GENERIC:
        return fRawKeys.HandleEvent(As<xcb_ge_generic_event_t>(event));
    default:
        fKeyboard.HandleNotice(event);
    }
}

void EventThread::HandleKey(const xcb_key_press_event_t& event) {
    bool down = (event.response_type & kEventType) == XCB_KEY_PRESS;
    // Where no window of the program has the focus, the release of a key that ended one grab goes
    // elsewhere: pressed in the next grab the key must not count as held.
    uint32 grab = event.event == fConnection.Root() ? fDisplay.Grab().Count() : 0;
    if (grab != 0 && fKeyGrab != 0 && grab != fKeyGrab)
        fKeyboard.ForgetHeldKeys();
    fKeyGrab = grab;
    if (event.event == fConnection.Root())
        fRawKeys.HandleGrabbedKey(event.detail, down);
    KeyChanged change = fKeyboard.Translate(event, down);
    if (auto states = fRawKeys.States())
        change.states = *states; // also of keys that were pressed elsewhere
    if (fDisplay.Drags().HandleKey(change))
        return;
    Notify(fDisplay.Grab().TargetOf(event.event), change);
}

void EventThread::HandlePress(const xcb_button_press_event_t& event) {
    fDisplay.NoteInputTime(event.time);
    uint32 button = ButtonOf(event.detail);
    int32 clicks = button ? fClicks.Count(event) : 0;
    xcb_window_t target = fDisplay.Grab().TargetOf(event.event);
    fDisplay.Windows().Deliver(target, [&](XWindow& window) {
        PointerMoved at = PlaceOf(event, window);
        const std::size_t wheel = event.detail - kFirstWheel;
        if (event.detail >= kFirstWheel && wheel < std::size(kWheelSteps))
            window.Notify(WheelTurned{at, kWheelSteps[wheel].first, kWheelSteps[wheel].second});
        if (!button)
            return;
        at.buttons |= button;
        window.Notify(ButtonPressed{at, clicks, TimeOf(event.time)});
    });
    fDisplay.Windows().Deliver(target, [&](XWindow& window) { window.HandlePress(event.time); });
}

void EventThread::HandleRelease(const xcb_button_release_event_t& event) {
    uint32 button = ButtonOf(event.detail);
    if (!button)
        return;
    xcb_window_t target = fDisplay.Grab().TargetOf(event.event);
    fDisplay.Windows().Deliver(target, [&](XWindow& window) {
        PointerMoved at = PlaceOf(event, window);
        at.buttons &= ~button;
        window.Notify(ButtonReleased{at, Now()});
    });
    fDisplay.Drags().HandleRelease(event, ButtonsOf(event.state) & ~button);
}

void EventThread::HandleMotion(const xcb_motion_notify_event_t& event) {
    xcb_window_t target = fDisplay.Grab().TargetOf(event.event);
    fDisplay.Windows().Deliver(target,
                               [&](XWindow& window) { window.Notify(PlaceOf(event, window)); });
    fDisplay.Drags().HandleMotion(event);
}

void EventThread::HandleCrossing(const xcb_enter_notify_event_t& event, bool entered) {
    if (event.event == fConnection.Root())
        return fGrabWatch.HandleRootCrossing(event, entered);
    bool isGrab = event.mode == XCB_NOTIFY_MODE_GRAB;
    Notify(event.event, PointerOver{entered && !isGrab});
    // The pointer has not left when another program takes hold of it for a moment, as window
    // managers do with each click. When a menu of ours takes it, it has.
    bool isForeignGrab = isGrab && !fDisplay.Grab().IsHeld();
    if (isForeignGrab || (entered && isGrab))
        return;
    fDisplay.Windows().Deliver(event.event, [&](XWindow& window) {
        if (entered)
            window.Notify(PlaceOf(event, window));
        else
            window.Notify(PointerLeft{});
    });
}

void EventThread::HandleFocus(const xcb_focus_in_event_t& event, bool active) {
    bool isGrab = event.mode == XCB_NOTIFY_MODE_GRAB || event.mode == XCB_NOTIFY_MODE_UNGRAB;
    if (active ? !isGrab : !(isGrab && fDisplay.Grab().IsHeld()))
        fKeyboard.ForgetHeldKeys();
    bool isAboutPointer = event.detail >= XCB_NOTIFY_DETAIL_POINTER;
    if (isGrab || isAboutPointer || event.detail == XCB_NOTIFY_DETAIL_INFERIOR)
        return;
    if (!active && event.mode == XCB_NOTIFY_MODE_WHILE_GRABBED && fDisplay.Grab().IsHeld())
        fGrabWatch.HandleFocusLoss();
    if (!active)
        fInput.HandleFocusLoss(event.event);
    fDisplay.Windows().Deliver(event.event, [&](XWindow& window) { window.HandleFocus(active); });
}

void EventThread::HandleProperty(const xcb_property_notify_event_t& event) {
    if (fDisplay.Selections().HandleProperty(event) || fDisplay.Drops().HandleProperty(event))
        return;
    if (event.window == fConnection.Root()) {
        if (event.atom == fConnection[kNetActiveWindow])
            fGrabWatch.HandleActiveWindow();
        else if (event.atom == fConnection[kXimServers])
            fInput.HandleServersChanged();
    } else if (event.atom == fConnection[kWmState] || event.atom == fConnection[kNetWmState]) {
        fDisplay.Windows().Deliver(event.window,
                                   [](XWindow& window) { window.HandleStateChange(); });
    }
}

void EventThread::HandleSelection(const xcb_generic_event_t& event) {
    uint8 type = event.response_type & kEventType;
    if (type == XCB_SELECTION_REQUEST &&
        As<xcb_selection_request_event_t>(event).selection == fConnection[kXdndSelection]) {
        fDisplay.Drags().HandleRequest(As<xcb_selection_request_event_t>(event));
        return;
    }
    if (type == XCB_SELECTION_NOTIFY)
        fDisplay.Drops().HandleNotify(As<xcb_selection_notify_event_t>(event));
    fDisplay.Selections().Handle(event);
}

void EventThread::HandleMessage(const xcb_client_message_event_t& event) {
    if (event.window == fDisplay.Identity().leader)
        fInput.Attend();
    if (fDisplay.Drops().HandleMessage(event) || fDisplay.Drags().HandleMessage(event))
        return;
    if (event.type != fConnection[kWmProtocols] || event.format != 32 ||
        !fDisplay.Windows().Contains(event.window))
        return;
    xcb_atom_t protocol = event.data.data32[0];
    if (protocol == fConnection[kWmDeleteWindow]) {
        Notify(event.window, CloseRequested{});
    } else if (protocol == fConnection[kNetWmPing]) {
        const uint32* words = event.data.data32;
        fConnection.SendToRoot(fConnection.Root(), event.type, {words, words + 5});
        fConnection.Flush();
    }
}

void EventThread::CheckSettings(const xcb_generic_event_t& event) {
    if (!fDisplay.UpdateSettings(event))
        return;
    SetClickLimits();
    fSink->SettingsChanged();
}

void EventThread::CheckMonitors(const xcb_generic_event_t& event) {
    MonitorList& monitors = fDisplay.MonitorFrames();
    if (monitors.IsConcernedBy(event) && monitors.Update())
        fSink->MonitorsChanged();
}

void EventThread::Report(const xcb_generic_error_t& error) {
    if (!fReported.emplace(error.major_code, error.error_code).second)
        return;
    std::fprintf(stderr, "%s: the display server refused a request (error %u, request %u.%u)\n",
                 fDisplay.Identity().instanceName.c_str(), error.error_code, error.major_code,
                 error.minor_code);
}

} // namespace host
