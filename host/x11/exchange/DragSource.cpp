#include "host/x11/exchange/DragSource.h"

#include <algorithm>

#include "base/Errors.h"
#include "host/x11/server/Connection.h"

namespace host {

namespace {

constexpr bigtime_t kGrabPatience = 100'000;
constexpr bigtime_t kStatusPatience = 2'000'000;  // after the release
constexpr bigtime_t kTakingPatience = 10'000'000; // without a sign of the other program
constexpr bigtime_t kCheckInterval = 250'000;

constexpr uint32 kEscapeKey = 0x01;

constexpr std::size_t kTypesInMessage = 3;

constexpr uint16 kAnyButton = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;

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

} // namespace

DragSource::DragSource(const Connection& connection, InputGrab& grab)
    : fConnection(connection)
    , fGrab(grab) {}

DragSource::~DragSource() {
    Lock lock(fLock);
    End(lock);
}

status_t DragSource::Start(xcb_window_t window, xcb_timestamp_t time, const DragSpec& spec,
                           std::shared_ptr<DragSink> sink) {
    Lock lock(fLock);
    if (fDrag && fDrag->phase != Phase::Dropped)
        return B_BUSY;
    End(lock);
    auto started = std::make_unique<Drag>(fConnection, window, spec, std::move(sink), time);
    Drag* drag = started.get();
    drag->timer =
        std::make_unique<Timer>(kCheckInterval, kCheckInterval, [this] { CheckProgress(); });
    lock.lock();
    fDrag = std::move(started);
    lock.unlock();
    status_t status = fGrab.Take(window, kGrabPatience);
    const auto pointer =
        fConnection.Ask<xcb_query_pointer, xcb_query_pointer_reply>(fConnection.Root());
    lock.lock();
    bool isHeld = status == B_OK && pointer && (pointer->mask & kAnyButton) != 0;
    if (isHeld && fDrag.get() == drag && drag->phase == Phase::Dragging) {
        Move(pointer->root_x, pointer->root_y, drag->pointerTime);
        return B_OK;
    }
    // The button went up meanwhile.
    if (fDrag.get() == drag && drag->phase == Phase::Dragging) {
        Leave();
        End(lock);
    } else {
        lock.unlock();
    }
    fGrab.Release(window);
    return status == B_OK ? B_CANCELED : status;
}

void DragSource::Forget(xcb_window_t window) {
    Lock lock(fLock);
    if (!fDrag || fDrag->window != window || fDrag->phase == Phase::Dropped)
        return;
    Leave();
    End(lock);
}

// Unlocks `lock`.
void DragSource::End(Lock& lock) {
    std::unique_ptr<Drag> ended = std::move(fDrag);
    lock.unlock();
    if (ended)
        fGrab.Release(ended->window);
}

void DragSource::Send(AtomIndex type, uint32 second, uint32 third, uint32 fourth,
                      uint32 fifth) const {
    fConnection.SendMessage(fDrag->place.receiver, fDrag->place.window, type,
                            {fDrag->offer.Window(), second, third, fourth, fifth});
}

void DragSource::Enter(const DropPlace& place) {
    fDrag->place = place;
    fDrag->isAsking = fDrag->hasMoved = fDrag->isAccepted = false;
    if (place.window == XCB_WINDOW_NONE)
        return;
    const std::vector<xcb_atom_t>& types = fDrag->offer.Types();
    uint32 first[kTypesInMessage] = {};
    std::copy_n(types.begin(), std::min(types.size(), kTypesInMessage), first);
    uint32 hasMore = types.size() > kTypesInMessage ? kHasTypeList : 0;
    Send(kXdndEnter, place.version << 24 | hasMore, first[0], first[1], first[2]);
}

void DragSource::Leave() {
    if (fDrag->place.window != XCB_WINDOW_NONE)
        Send(kXdndLeave);
    fDrag->place = {};
}

void DragSource::AskPlace() {
    fDrag->isAsking = true;
    fDrag->hasMoved = false;
    fDrag->lastProgress = Now();
    auto place = static_cast<uint32>(fDrag->screenX) << 16 | (fDrag->screenY & 0xffff);
    Send(kXdndPosition, 0, place, fDrag->pointerTime, fConnection[kXdndActionCopy]);
}

void DragSource::Move(int screenX, int screenY, xcb_timestamp_t time) {
    fDrag->screenX = screenX;
    fDrag->screenY = screenY;
    fDrag->pointerTime = time;
    fDrag->image->MoveTo(screenX, screenY);
    DropPlace place = FindDropPlace(fConnection, screenX, screenY);
    if (place.window != fDrag->place.window) {
        Leave();
        Enter(place);
    }
    // One question at a time, as the protocol wants it.
    if (fDrag->isAsking)
        fDrag->hasMoved = true;
    else if (fDrag->place.window != XCB_WINDOW_NONE)
        AskPlace();
}

void DragSource::HandleMotion(const xcb_motion_notify_event_t& event) {
    Lock lock(fLock);
    if (fDrag && fDrag->phase == Phase::Dragging)
        Move(event.root_x, event.root_y, event.time);
}

void DragSource::HandleRelease(const xcb_button_release_event_t& event, uint32 buttons) {
    Lock lock(fLock);
    if (!fDrag || buttons != 0)
        return;
    if (fDrag->phase == Phase::Canceled) {
        End(lock);
    } else if (fDrag->phase == Phase::Dragging) {
        Move(event.root_x, event.root_y, event.time);
        Release(lock);
    }
}

// The button is up: the input is everybody's again.
void DragSource::Release(Lock& lock) {
    fDrag->image.reset();
    fGrab.Release(fDrag->window);
    fDrag->phase = Phase::Released;
    if (fDrag->isAsking)
        fDrag->lastProgress = Now();
    else
        DropOrLeave(lock);
}

void DragSource::DropOrLeave(Lock& lock) {
    if (fDrag->isAccepted && fDrag->place.window != XCB_WINDOW_NONE) {
        fDrag->phase = Phase::Dropped;
        fDrag->lastProgress = Now();
        Send(kXdndDrop, 0, fDrag->pointerTime);
        lock.unlock();
    } else {
        Leave();
        End(lock);
    }
}

// The pointer stays held until the button is up: its release must not go to anybody else.
void DragSource::Cancel() {
    Leave();
    fDrag->image.reset();
    fDrag->phase = Phase::Canceled;
}

bool DragSource::HandleKey(const KeyChanged& key) {
    Lock lock(fLock);
    if (!fDrag || !key.down || (fDrag->phase != Phase::Dragging && fDrag->phase != Phase::Canceled))
        return false;
    if (key.key == kEscapeKey && fDrag->phase == Phase::Dragging)
        Cancel();
    return true;
}

bool DragSource::HandleMessage(const xcb_client_message_event_t& event) {
    bool isStatus = event.type == fConnection[kXdndStatus];
    if (event.format != 32 || (!isStatus && event.type != fConnection[kXdndFinished]))
        return false;
    Lock lock(fLock);
    // Anybody can send such a message.
    if (!fDrag || event.window != fDrag->offer.Window() ||
        event.data.data32[0] != fDrag->place.window)
        return true;
    if (isStatus)
        HandleStatus(lock, event.data.data32[1] & kAccepted);
    else if (fDrag->phase == Phase::Dropped)
        End(lock);
    return true;
}

void DragSource::HandleStatus(Lock& lock, bool isAccepted) {
    if (!fDrag->isAsking)
        return;
    fDrag->isAsking = false;
    fDrag->isAccepted = isAccepted;
    if (fDrag->hasMoved)
        AskPlace();
    else if (fDrag->phase == Phase::Released)
        DropOrLeave(lock);
}

void DragSource::HandleRequest(const xcb_selection_request_event_t& request) {
    Lock lock(fLock);
    if (!fDrag || request.owner != fDrag->offer.Window()) {
        SelectionRequest(request).Finish(fConnection, false);
        return;
    }
    fDrag->lastProgress = Now();
    fDrag->offer.HandleRequest(SelectionRequest(request), fDrag->phase == Phase::Dropped);
}

void DragSource::CheckProgress() {
    Lock lock(fLock);
    if (!fDrag)
        return;
    fDrag->offer.CheckSaving();
    bigtime_t age = Now() - fDrag->lastProgress;
    if (fDrag->phase == Phase::Released && age > kStatusPatience) {
        Leave();
        End(lock);
    } else if (fDrag->phase == Phase::Dropped && age > kTakingPatience) {
        End(lock);
    }
}

} // namespace host
