#include "host/x11/exchange/DropTarget.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "base/Errors.h"

namespace host {

namespace {

constexpr std::size_t kMaxBytes = 4096; // of a colour

constexpr std::string_view kBlanks(" \t\r\n\0", 5);

} // namespace

std::optional<rgb_color> ColorOfWords(std::string_view bytes) {
    uint16 words[4];
    if (bytes.size() != sizeof(words))
        return std::nullopt;
    std::memcpy(words, bytes.data(), sizeof(words));
    auto channel = [&](int index) { return static_cast<uint8>(words[index] >> 8); };
    return rgb_color{channel(0), channel(1), channel(2), 255};
}

std::optional<rgb_color> ColorOfText(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    text = text.substr(0, text.find_last_not_of(kBlanks) + 1);
    if (text.size() != 7 || text[0] != '#')
        return std::nullopt;
    uint32 value = 0;
    if (std::from_chars(text.data() + 1, text.data() + 7, value, 16).ptr != text.data() + 7)
        return std::nullopt;
    return rgb_color{static_cast<uint8>(value >> 16), static_cast<uint8>(value >> 8),
                     static_cast<uint8>(value), 255};
}

DropTarget::DropTarget(const Connection& connection, const WindowRegistry& windows,
                       ColorSink takeColor)
    : fConnection(connection)
    , fWindows(windows)
    , fTakeColor(std::move(takeColor))
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

// The offered type in which the colour is asked for, or None.
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
        Answer(kXdndStatus, event, false);
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
        Answer(kXdndFinished, event, false);
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

// Answers the other program if it waits, and delivers a colour that was dropped. Unlocks `lock`
// before calling back.
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
        Answer(kXdndStatus, event, isAccepted);
    if (!drag.isDropped)
        return;
    if (isAccepted)
        fTakeColor(drag.window, drag.screenX, drag.screenY, drag.color);
    Answer(kXdndFinished, event, isAccepted);
}

// The action stands last in the message: behind two words of a rectangle in a status.
void DropTarget::Answer(AtomIndex type, const xcb_client_message_event_t& event,
                        bool accepted) const {
    std::vector<uint32> words = {event.window, accepted ? kAccepted : 0};
    if (type == kXdndStatus)
        words.insert(words.end(), 2, 0);
    words.push_back(accepted ? fConnection[kXdndActionCopy] : xcb_atom_t{XCB_ATOM_NONE});
    fConnection.SendMessage(event.data.data32[0], event.data.data32[0], type, words);
}

} // namespace host
