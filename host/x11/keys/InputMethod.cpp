#include "host/x11/keys/InputMethod.h"

#include <cstdlib>
#include <utility>

#include "host/x11/server/Connection.h"

namespace host {

namespace {

constexpr bigtime_t kPatience = 500'000;
constexpr int kMaxFailures = 3;
constexpr std::size_t kMaxName = 128;

bool IsPress(const xcb_key_press_event_t& key) {
    return (key.response_type & 0x7f) == XCB_KEY_PRESS;
}

// "@im=NAME", perhaps among others of the kind. "none" and "local" are no servers.
std::string NamedServer(const std::string& modifiers) {
    std::size_t start = modifiers.find("@im=");
    if (start == std::string::npos)
        return {};
    start += 4;
    std::string name = modifiers.substr(start, modifiers.find('@', start) - start);
    return name == "none" || name == "local" || name.size() > kMaxName ? std::string() : name;
}

std::string ServerModifiers() {
    const char* modifiers = std::getenv("XMODIFIERS");
    std::string name = modifiers ? NamedServer(modifiers) : std::string();
    return name.empty() ? name : "@im=" + name;
}

} // namespace

InputMethod::InputMethod(const Connection& connection, xcb_window_t wakeable, KeyHandler onKey,
                         TextHandler onText)
    : fConnection(connection)
    , fWakeable(wakeable)
    , fModifiers(ServerModifiers())
    , fOnKey(std::move(onKey))
    , fOnText(std::move(onText)) {}

InputMethod::~InputMethod() = default;

void InputMethod::SetCaret(xcb_window_t window, std::optional<xcb_point_t> spot) {
    if (fModifiers.empty())
        return;
    std::lock_guard lock(fLock);
    if (!spot && fWanted.window != window)
        return;
    if (spot && fWanted.window != window)
        fWanted.focus++;
    else if (spot && spot->x == fWanted.spot.x && spot->y == fWanted.spot.y)
        return;
    fWanted.window = spot ? window : xcb_window_t{XCB_WINDOW_NONE};
    fWanted.spot = spot.value_or(xcb_point_t{});
    Wake();
}

void InputMethod::Wake() const {
    fConnection.SendMessageTo(fWakeable);
}

void InputMethod::Attend() {
    if (fTimer && Now() >= fWaitsSince + kPatience)
        GiveUpWaiting();
    Caret wanted;
    {
        std::lock_guard lock(fLock);
        wanted = fWanted;
    }
    if (wanted.window != fCaret.window || wanted.focus != fCaret.focus) {
        ChangeFocus(wanted);
    } else if (wanted.spot.x != fCaret.spot.x || wanted.spot.y != fCaret.spot.y) {
        fCaret.spot = wanted.spot;
        if (fClient)
            fClient->SetSpot(fCaret.spot);
    }
    fConnection.Flush();
}

void InputMethod::ChangeFocus(const Caret& wanted) {
    fCaret = wanted;
    if (fClient)
        fClient->SetFocus(fCaret.window, fCaret.spot);
    LetAllThrough();
    if (!fClient)
        Connect();
}

// Later the window's field may have the focus still, or again: with the window it gets a context.
void InputMethod::HandleFocusLoss(xcb_window_t window) {
    if (window == fCaret.window)
        ChangeFocus({.focus = fCaret.focus});
}

void InputMethod::HandleServersChanged() {
    if (!IsConnected())
        Connect();
    fConnection.Flush();
}

xcb_window_t InputMethod::FindServer() {
    if (fServerName == XCB_ATOM_NONE)
        fServerName = fConnection.Intern("@server=" + fModifiers.substr(4));
    return fConnection.OwnerOf(fServerName);
}

void InputMethod::Connect() {
    fClient.reset();
    fIsLost = false;
    if (fCaret.window == XCB_WINDOW_NONE)
        return;
    xcb_window_t before = std::exchange(fServer, FindServer());
    if (fServer != before)
        fFailures = 0;
    if (fServer == XCB_WINDOW_NONE || fFailures >= kMaxFailures)
        return;
    const InputMethodLibrary* library = InputMethodLibrary::Load();
    if (!library)
        return;
    InputMethodClient::Listener& self = *this;
    fClient = std::make_unique<InputMethodClient>(fConnection, *library, fModifiers, self);
    fClient->SetFocus(fCaret.window, fCaret.spot);
}

bool InputMethod::Filter(xcb_generic_event_t& event) {
    if (!fClient)
        return false;
    bool isTaken = fClient->Filter(event);
    if (fIsLost) {
        LetAllThrough();
        Connect();
    }
    if (isTaken)
        fConnection.Flush();
    return isTaken;
}

// A new connection gets no answers that come too late for the old one.
void InputMethod::GiveUpWaiting() {
    fFailures++;
    LetAllThrough();
    Connect();
}

bool InputMethod::TakeKey(const xcb_key_press_event_t& key) {
    if (!fClient || key.event != fCaret.window || !fClient->IsExpected())
        return false;
    fKeys.push_back(key);
    if (fKeys.size() == 1)
        SendNext();
    fConnection.Flush();
    return true;
}

void InputMethod::SendNext() {
    fTimer.reset();
    fHasComeBack = false;
    while (!fKeys.empty()) {
        if (!fClient->IsReady()) {
            Wait();
            return;
        }
        if (fClient->Wants(fKeys.front())) {
            fClient->Send(fKeys.front());
            Wait();
            return;
        }
        xcb_key_press_event_t key = fKeys.front();
        fKeys.pop_front();
        Deliver(key);
    }
}

void InputMethod::Wait() {
    fWaitsSince = Now();
    fTimer = std::make_unique<Timer>(kPatience, 0, [this] { Wake(); });
}

void InputMethod::ContextCame(bool isMade) {
    if (isMade)
        SendNext();
    else
        LetAllThrough();
}

void InputMethod::KeyCame(const xcb_key_press_event_t& key) {
    bool isFirst = !fKeys.empty() && !fHasComeBack && fKeys.front().detail == key.detail &&
                   IsPress(fKeys.front()) == IsPress(key);
    if (isFirst) {
        fHasComeBack = true;
        Deliver(fKeys.front());
    } else if (IsPress(key)) {
        DeliverLate(key);
    }
}

// A press that the server was slow to let go, or has made up.
void InputMethod::DeliverLate(xcb_key_press_event_t key) {
    bool isHeld = fTaken[key.detail];
    fTaken.reset(key.detail);
    key.event = fCaret.window;
    key.root = fConnection.Root();
    key.response_type = XCB_KEY_PRESS;
    fOnKey(key);
    if (isHeld)
        return;
    key.response_type = XCB_KEY_RELEASE;
    fOnKey(key);
}

void InputMethod::TextCame(const std::string& text) {
    fOnText(fCaret.window, text);
}

void InputMethod::KeyWasSeen() {
    if (fKeys.empty())
        return;
    fFailures = 0;
    xcb_key_press_event_t key = fKeys.front();
    fKeys.pop_front();
    if (!fHasComeBack && IsPress(key))
        fTaken.set(key.detail);
    else if (!fHasComeBack)
        Deliver(key);
    SendNext();
}

void InputMethod::LetAllThrough() {
    fTimer.reset();
    std::deque<xcb_key_press_event_t> keys = std::exchange(fKeys, {});
    if (std::exchange(fHasComeBack, false) && !keys.empty())
        keys.pop_front();
    for (const xcb_key_press_event_t& key : keys)
        Deliver(key);
}

void InputMethod::Deliver(const xcb_key_press_event_t& key) {
    bool wasTaken = fTaken[key.detail];
    fTaken.reset(key.detail);
    if (IsPress(key) || !wasTaken)
        fOnKey(key);
}

} // namespace host
