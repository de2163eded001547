#include "host/x11/exchange/DropTarget.h"

#include <algorithm>

#include "base/Errors.h"
#include "host/x11/XWindow.h"
#include "host/x11/exchange/DragMessages.h"
#include "host/x11/exchange/DroppedColor.h"

namespace host {

namespace {

constexpr std::size_t kMaxBytes = 4096; // of a colour

// In XdndEnter's second word.
constexpr uint32 kHasTypeList = 1;
// In XdndStatus' and XdndFinished's second word.
constexpr uint32 kAccepted = 1;

} // namespace

DropTarget::DropTarget(const Connection& connection, WindowRegistry& windows)
    : fConnection(connection)
    , fWindows(windows)
    , fReads(connection, kMaxBytes) {}

bool DropTarget::HandleMessage(const xcb_client_message_event_t& event) {
    if (event.format != 32 || !fWindows.Contains(event.window))
        return false;
    if (event.type == fConnection[kXdndEnter])
        Enter(event);
    else if (event.type == fConnection[kXdndPosition])
        Move(event);
    else if (event.type == fConnection[kXdndLeave])
        Leave(event);
    else if (event.type == fConnection[kXdndDrop])
        Drop(event);
    else
        return false;
    return true;
}

// The answers to an older drag are of no use any more.
void DropTarget::Begin(const Drag& drag) {
    fReads.Cancel();
    std::lock_guard lock(fLock);
    fDrag = drag;
    fCount++;
}

void DropTarget::Enter(const xcb_client_message_event_t& event) {
    Drag drag{.source = event.data.data32[0], .window = event.window};
    if (event.data.data32[1] >> 24 >= kLowestXdndVersion)
        drag.type = TypeOf(event);
    if (drag.type != XCB_ATOM_NONE)
        drag.verdict = Verdict::Unread;
    Begin(drag);
}

// The type among those that are offered, in which a colour may be had; or None.
xcb_atom_t DropTarget::TypeOf(const xcb_client_message_event_t& event) const {
    const uint32* words = event.data.data32;
    std::vector<uint32> offered(words + 2, words + 5);
    if (words[1] & kHasTypeList) {
        offered = fConnection.ReadValues(
            fConnection.AskForValues(words[0], fConnection[kXdndTypeList], XCB_ATOM_ATOM));
    }
    for (xcb_atom_t type : {fConnection[kApplicationColor], fConnection[kUtf8String],
                            fConnection[kTextPlainUtf8], fConnection[kTextPlain]}) {
        if (type != XCB_ATOM_NONE && std::ranges::find(offered, type) != offered.end())
            return type;
    }
    return XCB_ATOM_NONE;
}

void DropTarget::Move(const xcb_client_message_event_t& event) {
    std::unique_lock lock(fLock);
    if (!fDrag.Is(event) || fDrag.isDropped) {
        lock.unlock();
        Tell(event, false);
        return;
    }
    fDrag.screenX = static_cast<int16>(event.data.data32[2] >> 16);
    fDrag.screenY = static_cast<int16>(event.data.data32[2]);
    fDrag.isAwaited = true;
    if (fDrag.verdict != Verdict::Unread) {
        Judge(lock);
        return;
    }
    fDrag.verdict = Verdict::Reading;
    lock.unlock();
    Read(event.data.data32[3]);
}

void DropTarget::Leave(const xcb_client_message_event_t& event) {
    {
        std::lock_guard lock(fLock);
        if (!fDrag.Is(event) || fDrag.isDropped)
            return;
    }
    Begin({});
}

void DropTarget::Drop(const xcb_client_message_event_t& event) {
    std::unique_lock lock(fLock);
    if (!fDrag.Is(event) || fDrag.isDropped) {
        lock.unlock();
        Finish(event, false);
        return;
    }
    fDrag.isDropped = true;
    // Dropped at no place.
    if (fDrag.verdict == Verdict::Unread)
        fDrag.verdict = Verdict::Refused;
    Judge(lock);
}

void DropTarget::Read(xcb_timestamp_t time) {
    std::unique_lock lock(fLock);
    xcb_atom_t type = fDrag.type;
    uint32 drag = fCount;
    lock.unlock();
    fReads.Start(fConnection[kXdndSelection], type, time,
                 [this, drag](status_t status, const std::string& bytes) {
                     TakeAnswer(drag, status, bytes);
                 });
}

// On the display thread if the status is B_OK.
void DropTarget::TakeAnswer(uint32 drag, status_t status, const std::string& bytes) {
    std::unique_lock lock(fLock);
    if (drag != fCount)
        return;
    std::optional<rgb_color> color;
    if (status == B_OK) {
        bool isWords = fDrag.type == fConnection[kApplicationColor];
        color = isWords ? ColorOfWords(bytes) : ColorOfText(bytes);
    }
    fDrag.verdict = color ? Verdict::Color : Verdict::Refused;
    fDrag.color = color.value_or(rgb_color());
    Judge(lock);
}

// Tells the other program what it waits for, and the window of a colour that was dropped. Leaves
// `lock` open.
void DropTarget::Judge(std::unique_lock<std::mutex>& lock) {
    if (fDrag.verdict == Verdict::Reading) {
        lock.unlock();
        return;
    }
    Drag drag = fDrag;
    fDrag.isAwaited = false;
    if (drag.isDropped)
        fDrag = {};
    lock.unlock();
    bool isAccepted = drag.verdict == Verdict::Color;
    xcb_client_message_event_t event{};
    event.window = drag.window;
    event.data.data32[0] = drag.source;
    if (drag.isAwaited)
        Tell(event, isAccepted);
    if (!drag.isDropped)
        return;
    if (isAccepted) {
        fWindows.Deliver(drag.window, [&](XWindow& window) {
            auto [x, y] = window.ContentPlace(XCB_WINDOW_NONE, drag.screenX, drag.screenY);
            window.Tell(ColorDropped{x, y, drag.color});
        });
    }
    Finish(event, isAccepted);
}

void DropTarget::Tell(const xcb_client_message_event_t& event, bool accepted) const {
    SendDragMessage(fConnection, event.data.data32[0], event.data.data32[0], kXdndStatus,
                    {event.window, accepted ? kAccepted : 0, 0, 0,
                     accepted ? fConnection[kXdndActionCopy] : xcb_atom_t{XCB_ATOM_NONE}});
}

void DropTarget::Finish(const xcb_client_message_event_t& event, bool accepted) const {
    SendDragMessage(fConnection, event.data.data32[0], event.data.data32[0], kXdndFinished,
                    {event.window, accepted ? kAccepted : 0,
                     accepted ? fConnection[kXdndActionCopy] : xcb_atom_t{XCB_ATOM_NONE}});
}

} // namespace host
