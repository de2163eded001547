#include "host/x11/XWindow.h"

#include <algorithm>

#include "host/x11/XDisplay.h"
#include "host/x11/windows/StartupNotice.h"

namespace host {

namespace {

constexpr int kMaxSide = 16384;
constexpr int kFarthest = 32000;
constexpr std::size_t kMaxDragBytes = 65536;

constexpr uint32 kEvents =
    XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE |
    XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
    XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW |
    XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE;

// WM_STATE
constexpr uint32 kIconicState = 3;

// The second word of a _NET_ACTIVE_WINDOW message: what a person asked for.
constexpr uint32 kDirectUserAction = 2;

// They need some time to let go of a window that is hidden.
constexpr bigtime_t kLettingGoTime = 150'000;
// Within it they give the focus to a window that was clicked.
constexpr bigtime_t kFocusTime = 100'000;
// Within it they bring a window up that asks for it.
constexpr bigtime_t kBringUpTime = 300'000;

// Limits of the protocol's 16-bit numbers.
PixelRect Bounded(const PixelRect& frame) {
    int left = std::clamp(frame.left, -kFarthest, kFarthest);
    int top = std::clamp(frame.top, -kFarthest, kFarthest);
    return {left, top, left + std::clamp(frame.Width(), 1, kMaxSide),
            top + std::clamp(frame.Height(), 1, kMaxSide)};
}

bool HasSize(const PixelRect& one, const PixelRect& other) {
    return one.Width() == other.Width() && one.Height() == other.Height();
}

} // namespace

XWindow::XWindow(XDisplay& display, const WindowSpec& spec, WindowSink* sink)
    : fDisplay(display)
    , fConnection(display.Server())
    , fSink(sink)
    , fKind(spec.kind)
    , fBorder(BoundedBorder(spec.border))
    , fIsResizable(spec.resizable)
    , fId(xcb_generate_id(fConnection))
    , fParent(fConnection.Root())
    , fReported(Bounded(spec.frame))
    , fPicture(fConnection, display.DrawingPens())
    , fFrame(fReported)
    , fState{.floating = spec.floating, .allDesktops = spec.allDesktops}
    , fPlace(fConnection, fId, fLock, [this](std::pair<int, int> corner) { AskForPlace(corner); }) {
    Create(spec);
    fDisplay.Windows().Add(fId, this);
}

XWindow::~XWindow() {
    fDisplay.Windows().Remove(fId);
    NoteVisible(false);
    fDisplay.Drags().Forget(fId);
    fDisplay.Drops().Forget(fId);
    ReleaseInput();
    SetTextCaret(std::nullopt);
    xcb_destroy_window(fConnection, fId);
    fConnection.Flush();
}

int XWindow::BoundedBorder(int border) {
    constexpr int kWidestBorder = 64;
    return std::clamp(border, 0, kWidestBorder);
}

PixelRect XWindow::Outer(const PixelRect& content) const {
    return {content.left - fBorder, content.top - fBorder, content.right + fBorder,
            content.bottom + fBorder};
}

void XWindow::Create(const WindowSpec& spec) {
    PixelRect outer = Outer(fFrame);
    const uint32 values[] = {XCB_GRAVITY_NORTH_WEST, !IsManaged(fKind), !IsManaged(fKind), kEvents};
    xcb_create_window(
        fConnection, XCB_COPY_FROM_PARENT, fId, fConnection.Root(), outer.left, outer.top,
        outer.Width(), outer.Height(), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
        XCB_CW_BIT_GRAVITY | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_SAVE_UNDER | XCB_CW_EVENT_MASK,
        values);
    fPicture.Resize(fId, fFrame.Width(), fFrame.Height(), fBorder);
    SetFixedProperties(fConnection, fId, spec, fDisplay.Identity());
    if (IsManaged(fKind)) {
        SetIconProperty(fConnection, fId, fDisplay.Icons());
        SetFrameHints(fConnection, fId, outer, fIsResizable);
    }
    if (fKind == WindowKind::Bubble)
        fConnection.LetInputThrough(fId);
}

void XWindow::NoteVisible(bool visible) {
    if (!IsManaged(fKind) || fKind == WindowKind::Alert)
        return;
    if (visible)
        fDisplay.SetAlertParent(fId);
    else
        fDisplay.ClearAlertParent(fId);
}

// A manager that does not look at the time of the last input gives each new window the focus,
// unless the window does not want it from the manager.
void XWindow::Show() {
    fTakesFocusItself =
        fKind == WindowKind::Bar && !fConnection.IsSupportedByManager(kNetWmUserTime);
    Map(!fTakesFocusItself);
}

void XWindow::Map(bool takesFocus) {
    std::lock_guard lock(fLock);
    fIsShown = true;
    fAskedPlace = fFrame;
    NoteVisible(!fState.minimized);
    if (IsManaged(fKind)) {
        fState.alertParent = fDisplay.AlertParent();
        fState.takesFocus = takesFocus;
        SetInitialState(fConnection, fId, fKind, fState, fDisplay.Identity());
        // Zero would mean that the window wants no focus.
        uint32 userTime = fDisplay.LastInputTime();
        if (fKind != WindowKind::Bar && userTime != 0) {
            fConnection.SetValues(fId, fConnection[kNetWmUserTime], XCB_ATOM_CARDINAL, {userTime});
        }
    } else {
        StackOnTop();
    }
    xcb_map_window(fConnection, fId);
    fConnection.Flush();
}

void XWindow::Hide() {
    std::lock_guard lock(fLock);
    fIsShown = false;
    NoteVisible(false);
    xcb_unmap_window(fConnection, fId);
    if (IsManaged(fKind)) {
        // A minimised window is not mapped, so the window manager sees nothing of the unmapping.
        xcb_unmap_notify_event_t event{};
        event.response_type = XCB_UNMAP_NOTIFY;
        event.event = fConnection.Root();
        event.window = fId;
        xcb_send_event(fConnection, false, fConnection.Root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&event));
    }
    fConnection.Flush();
}

void XWindow::SetFrame(const PixelRect& content) {
    bool isPlaced;
    {
        std::lock_guard lock(fLock);
        fPlace.NoteMove();
        fFrame = Bounded(content);
        fPicture.Resize(fId, fFrame.Width(), fFrame.Height(), fBorder);
        PixelRect outer = Outer(fFrame);
        if (IsManaged(fKind))
            SetFrameHints(fConnection, fId, outer, fIsResizable);
        Configure(outer);
        isPlaced = IsManaged(fKind) && fIsShown && !fAskedPlace;
    }
    if (isPlaced)
        KeepPlace(Bounded(content));
}

void XWindow::KeepPlace(const PixelRect& content) {
    const PixelRect outer = Outer(content);
    fPlace.Keep({outer.left, outer.top});
}

void XWindow::AskForPlace(std::pair<int, int> corner) {
    const PixelRect outer = Outer(fFrame);
    if (fIsShown)
        Configure(Moved(outer, corner.first - outer.left, corner.second - outer.top));
}

void XWindow::Configure(const PixelRect& outer) {
    const auto [shiftX, shiftY] = fPlace.Shift();
    const uint32 values[] = {
        static_cast<uint32>(outer.left - shiftX), static_cast<uint32>(outer.top - shiftY),
        static_cast<uint32>(outer.Width()), static_cast<uint32>(outer.Height())};
    auto cookie = xcb_configure_window(fConnection, fId,
                                       XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y |
                                           XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                                       values);
    fConfigureSequence = cookie.sequence;
    fConnection.Flush();
}

void XWindow::StackOnTop() const {
    const uint32 above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(fConnection, fId, XCB_CONFIG_WINDOW_STACK_MODE, &above);
}

void XWindow::Raise() {
    StackOnTop();
    fConnection.Flush();
}

// One that has put the window into a frame is there, and when it ends the server takes it out
// again: then nobody need ask the server, which a press would wait for.
bool XWindow::HasWindowManager() const {
    return fParent != fConnection.Root() || fConnection.HasWindowManager();
}

void XWindow::Activate() {
    ActivateAt(fDisplay.LastKnownPressTime());
}

// Without a time of its own the request is as new as the server can know. A manager that looks at
// such times does what it is asked, and would give a window that is mapped anew no focus.
void XWindow::BringUp(const std::string& startupId) {
    ActivateAt(StartupTime(startupId));
    EndStartup(fConnection, fId, startupId);
    if (!fTakesFocusItself || !HasWindowManager())
        return;
    fBringUpChecks[0] = std::make_unique<Timer>(kBringUpTime, 0, [this] { MapUnlessActive(); });
}

// Some Wayland compositors give the focus to no X window that asks for it, but to a new one. They
// take time to let go of the window, and some put it elsewhere then.
void XWindow::MapUnlessActive() {
    PixelRect place;
    {
        std::lock_guard lock(fLock);
        if (fReportedActive || !fIsShown)
            return;
        place = fFrame;
    }
    Hide();
    fBringUpChecks[1] = std::make_unique<Timer>(kLettingGoTime, 0, [this, place] {
        SetFrame(place);
        Map(true);
    });
}

void XWindow::ActivateAt(xcb_timestamp_t time) {
    bool isManaged = IsManaged(fKind) && HasWindowManager();
    std::lock_guard lock(fLock);
    fState.minimized = false;
    AcceptFocus();
    if (!fIsShown)
        return;
    xcb_map_window(fConnection, fId);
    if (isManaged) {
        fConnection.SendToRoot(fId, fConnection[kNetActiveWindow], {kDirectUserAction, time});
    } else {
        StackOnTop();
        xcb_set_input_focus(fConnection, XCB_INPUT_FOCUS_POINTER_ROOT, fId, XCB_CURRENT_TIME);
    }
    fConnection.Flush();
}

void XWindow::SetMinimized(bool minimized) {
    if (!IsManaged(fKind))
        return;
    if (!minimized) {
        Activate();
        return;
    }
    // Nobody else could bring the window back.
    if (!HasWindowManager() || !CanBeMinimized())
        return;
    std::lock_guard lock(fLock);
    fState.minimized = true;
    if (fIsShown)
        fConnection.SendToRoot(fId, fConnection[kWmChangeState], {kIconicState});
    fConnection.Flush();
}

// Some managers do not minimise, or not this window.
bool XWindow::CanBeMinimized() const {
    const auto actions = fConnection.ReadValues(
        fConnection.AskForValues(fId, fConnection[kNetWmAllowedActions], XCB_ATOM_ATOM));
    return actions.empty() ||
           std::ranges::find(actions, fConnection[kNetWmActionMinimize]) != actions.end();
}

void XWindow::ChangeState(bool add, AtomIndex state) {
    fConnection.SendToRoot(fId, fConnection[kNetWmState], {add, fConnection[state], 0, 1});
}

void XWindow::SetFloating(bool floating) {
    std::lock_guard lock(fLock);
    fState.floating = floating;
    if (fIsShown && IsManaged(fKind))
        ChangeState(floating, kNetWmStateAbove);
    fConnection.Flush();
}

void XWindow::SetAllDesktops(bool allDesktops) {
    auto current = fConnection.ReadValues(fConnection.AskForValues(
        fConnection.Root(), fConnection[kNetCurrentDesktop], XCB_ATOM_CARDINAL));
    std::lock_guard lock(fLock);
    fState.allDesktops = allDesktops;
    if (fIsShown && IsManaged(fKind) && (allDesktops || !current.empty())) {
        fConnection.SendToRoot(fId, fConnection[kNetWmDesktop],
                               {allDesktops ? kAllDesktops : current[0], 1});
    }
    fConnection.Flush();
}

void XWindow::SetPointer(PointerShape shape) {
    ShowCursor(fDisplay.PointerShapes().Of(shape));
}

void XWindow::SetPointer(const PointerImage& image) {
    ShowCursor(fDisplay.PointerShapes().Of(image, fDisplay.Settings().PointerSize()));
}

void XWindow::ShowCursor(xcb_cursor_t cursor) {
    xcb_change_window_attributes(fConnection, fId, XCB_CW_CURSOR, &cursor);
    fConnection.Flush();
}

void XWindow::Present(const Image& picture, const std::vector<PixelRect>& damage) {
    std::lock_guard lock(fLock);
    for (const PixelRect& area : damage)
        fPicture.Put(picture, area);
    if (fIsShown) {
        for (const PixelRect& area : damage)
            fPicture.CopyTo(fId, Moved(Intersection(area, fPicture.Content()), fBorder, fBorder));
    }
    fConnection.Flush();
}

void XWindow::SetTextCaret(std::optional<PixelRect> caret) {
    std::optional<xcb_point_t> spot;
    if (caret)
        spot = {static_cast<int16>(caret->left + fBorder),
                static_cast<int16>(caret->bottom + fBorder)};
    fDisplay.TextInput().SetCaret(fId, spot);
}

void XWindow::AcceptLinks() {
    fDisplay.Drops().AcceptLinks(fId);
}

status_t XWindow::GrabInput(bigtime_t timeout) {
    return fDisplay.Grab().Take(fId, timeout);
}

void XWindow::ReleaseInput() {
    fDisplay.Grab().Release(fId);
}

status_t XWindow::Drag(const DragSpec& spec, std::shared_ptr<DragSink> sink) {
    bool isTooMuch = std::ranges::any_of(
        spec.data, [](const DragData& data) { return data.bytes.size() > kMaxDragBytes; });
    if (isTooMuch)
        return B_BAD_VALUE;
    return fDisplay.Drags().Start(fId, fDisplay.LastInputTime(), spec, std::move(sink));
}

std::pair<int, int> XWindow::ContentPlace(xcb_window_t window, int x, int y) {
    if (window == fId)
        return {x - fBorder, y - fBorder};
    std::lock_guard lock(fLock);
    return {x - fFrame.left, y - fFrame.top};
}

void XWindow::HandleExpose(const xcb_expose_event_t& event) {
    std::lock_guard lock(fLock);
    fPicture.CopyTo(fId, {event.x, event.y, event.x + event.width, event.y + event.height});
    fConnection.Flush();
}

// Whether the server sent it before it had the last SetFrame.
bool XWindow::IsStale(const xcb_configure_notify_event_t& event) const {
    auto full = reinterpret_cast<const xcb_generic_event_t&>(event).full_sequence;
    return fConfigureSequence != 0 && static_cast<int32>(full - fConfigureSequence) < 0;
}

// The place on the screen: a window manager sends it, the server sends it only for windows that
// have not been put into another. Managers that give the window a border do not agree on whether
// the place that they send is inside of it.
bool XWindow::FindPlace(const xcb_configure_notify_event_t& event, int& left, int& top) const {
    bool isFromManager = event.response_type & 0x80;
    if ((isFromManager && event.border_width == 0) || fParent == fConnection.Root()) {
        left = event.x + event.border_width;
        top = event.y + event.border_width;
        return true;
    }
    const auto reply = fConnection.Ask<xcb_translate_coordinates, xcb_translate_coordinates_reply>(
        fId, fConnection.Root(), 0, 0);
    if (!reply)
        return false;
    left = reply->dst_x;
    top = reply->dst_y;
    return true;
}

void XWindow::HandleMap(const xcb_map_notify_event_t& /*event*/) {
    std::optional<PixelRect> asked;
    {
        std::lock_guard lock(fLock);
        asked = std::exchange(fAskedPlace, std::nullopt);
    }
    if (asked && IsManaged(fKind))
        KeepPlace(*asked);
}

// The window manager may be replaced: the new one finds the window where the old one has left it.
void XWindow::HandleReparent(const xcb_reparent_notify_event_t& event) {
    if (event.parent == fConnection.Root()) {
        fKeptPlace = fReported;
        std::lock_guard lock(fLock);
        fPlace.ForgetShift();
    } else if (auto kept = std::exchange(fKeptPlace, std::nullopt)) {
        KeepPlace(*kept);
    }
    fParent = event.parent;
}

void XWindow::HandleConfigure(const xcb_configure_notify_event_t& event) {
    int left, top;
    if (!FindPlace(event, left, top))
        return;
    PixelRect frame{left + fBorder, top + fBorder, left - fBorder + event.width,
                    top - fBorder + event.height};
    // Any program can send such an event.
    if (frame.IsEmpty() || frame != Bounded(frame))
        return;
    {
        std::lock_guard lock(fLock);
        if (frame != fFrame && IsStale(event))
            return;
        if (!HasSize(fReported, frame) || !HasSize(fPicture.Content(), frame)) {
            fPicture.Resize(fId, frame.Width(), frame.Height(), fBorder);
            fPicture.CopyTo(fId, fPicture.Bounds());
            fConnection.Flush();
        }
        fFrame = frame;
    }
    if (frame == fReported)
        return;
    fReported = frame;
    Notify(FrameChanged{frame});
}

// Also windows that are rolled up or on another desktop have an iconic state; only minimised ones
// are hidden besides.
void XWindow::HandleStateChange() {
    auto askState = fConnection.AskForValues(fId, fConnection[kWmState], fConnection[kWmState]);
    auto askHidden = fConnection.AskForValues(fId, fConnection[kNetWmState], XCB_ATOM_ATOM);
    auto state = fConnection.ReadValues(askState);
    auto states = fConnection.ReadValues(askHidden);
    bool isMinimized = !state.empty() && state[0] == kIconicState &&
                       std::ranges::find(states, fConnection[kNetWmStateHidden]) != states.end();
    if (isMinimized == fReportedMinimized)
        return;
    {
        std::lock_guard lock(fLock);
        fState.minimized = isMinimized;
        NoteVisible(fIsShown && !isMinimized);
    }
    fReportedMinimized = isMinimized;
    Notify(MinimizedChanged{isMinimized});
}

void XWindow::HandleFocus(bool active) {
    if (active == fReportedActive)
        return;
    fReportedActive = active;
    Notify(FocusChanged{active});
}

void XWindow::TakeFocus(xcb_timestamp_t time) {
    std::lock_guard lock(fLock);
    AcceptFocus();
    // An error is no fault: the window may just have been minimised.
    const auto cookie =
        xcb_set_input_focus_checked(fConnection, XCB_INPUT_FOCUS_POINTER_ROOT, fId, time);
    xcb_discard_reply(fConnection, cookie.sequence);
    fConnection.Flush();
}

void XWindow::AcceptFocus() {
    if (!std::exchange(fState.takesFocus, true))
        SetManagerHints(fConnection, fId, fState, fDisplay.Identity());
}

// Some window managers give the focus to nobody while no other window is there.
void XWindow::HandlePress(xcb_timestamp_t time) {
    if (fReportedActive || !IsManaged(fKind))
        return;
    if (!HasWindowManager())
        return TakeFocus(XCB_CURRENT_TIME);
    // Some managers remember for good that it wanted none.
    if (fTakesFocusItself)
        return TakeFocus(time);
    fFocusCheck = std::make_unique<Timer>(kFocusTime, 0, [this, time] {
        if (!fReportedActive)
            TakeFocus(time);
    });
}

} // namespace host
