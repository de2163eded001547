#include "host/x11/exchange/DropTarget.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "base/Errors.h"
#include "host/x11/exchange/DragOffer.h"

namespace host {

namespace {

constexpr std::size_t kMaxBytes = std::size_t{64} << 10; // in one form
constexpr bigtime_t kSourceCheckInterval = 500'000;

constexpr std::string_view kBlanks(" \t\r\n\0", 5);

// The file that the URL names; empty if it names none of this machine.
std::string FileOf(std::string_view url) {
    std::string path;
    url = url.substr(0, url.find_first_of("?#"));
    return PathOfFileUri(url, HostName(), &path) == B_OK ? path : std::string();
}

bool IsFileUrl(std::string_view url) {
    constexpr std::string_view kScheme = "file:";
    return std::ranges::equal(url.substr(0, kScheme.size()), kScheme, [](char byte, char wanted) {
        return (byte | 0x20) == (wanted | 0x20);
    });
}

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

DropTarget::DropTarget(const Connection& connection, const WindowRegistry& windows, Sink sink)
    : fConnection(connection)
    , fWindows(windows)
    , fSink(std::move(sink))
    , fReads(connection, kMaxBytes) {}

void DropTarget::AcceptLinks(xcb_window_t window) {
    std::lock_guard lock(fLock);
    fLinkTakers.insert(window);
}

void DropTarget::Forget(xcb_window_t window) {
    Drag ended;
    std::lock_guard lock(fLock);
    fLinkTakers.erase(window);
    if (fDrag.window == window)
        std::swap(fDrag, ended);
}

bool DropTarget::TakesLinks(xcb_window_t window) const {
    std::lock_guard lock(fLock);
    return fLinkTakers.contains(window);
}

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
    Drag ended = drag;
    {
        std::lock_guard lock(fLock);
        std::swap(fDrag, ended);
        fCount++;
    }
    DeliverLeave(ended);
}

void DropTarget::Enter(const xcb_client_message_event_t& event) {
    Drag drag{.source = event.data.data32[0], .window = event.window};
    if (event.data.data32[1] >> 24 >= kLowestXdndVersion)
        drag.types = TypesOf(event);
    if (!drag.types.empty())
        drag.phase = Phase::Unread;
    Begin(drag);
}

// Those of the offered types that may hold what the window takes, the most telling first.
std::vector<xcb_atom_t> DropTarget::TypesOf(const xcb_client_message_event_t& event) const {
    const uint32* words = event.data.data32;
    std::vector<uint32> offered(words + 2, words + 5);
    if (words[1] & kHasTypeList) {
        offered = fConnection.ReadValues(
            fConnection.AskForValues(words[0], fConnection[kXdndTypeList], XCB_ATOM_ATOM));
    }
    std::vector<AtomIndex> wanted = {kApplicationColor};
    if (TakesLinks(event.window))
        wanted.insert(wanted.end(), {kTextMozUrl, kTextUriList, kTextHtml});
    wanted.insert(wanted.end(), {kUtf8String, kTextPlainUtf8, kTextPlain});
    std::vector<xcb_atom_t> types;
    for (AtomIndex index : wanted) {
        const xcb_atom_t type = fConnection[index];
        if (type != XCB_ATOM_NONE && std::ranges::find(offered, type) != offered.end())
            types.push_back(type);
    }
    return types;
}

void DropTarget::Move(const xcb_client_message_event_t& event) {
    Lock lock(fLock);
    if (!fDrag.Is(event) || fDrag.isDropped) {
        lock.unlock();
        Answer(kXdndStatus, event);
        return;
    }
    fDrag.screenX = static_cast<int16>(event.data.data32[2] >> 16);
    fDrag.screenY = static_cast<int16>(event.data.data32[2]);
    fDrag.action = event.data.data32[4];
    fDrag.isAwaited = true;
    if (fDrag.phase == Phase::Unread)
        Read(lock, event.data.data32[3]);
    else
        Judge(lock);
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
    Lock lock(fLock);
    if (!fDrag.Is(event) || fDrag.isDropped) {
        lock.unlock();
        Answer(kXdndFinished, event);
        return;
    }
    fDrag.isDropped = true;
    fDrag.time = event.data.data32[2];
    // Dropped at no place.
    if (fDrag.phase == Phase::Unread)
        fDrag.phase = Phase::Judged;
    Judge(lock);
}

// Asks for the next type, of which there is one. Unlocks `lock`.
void DropTarget::Read(Lock& lock, xcb_timestamp_t time) {
    const xcb_atom_t type = fDrag.types.front();
    fDrag.types.erase(fDrag.types.begin());
    fDrag.phase = Phase::Reading;
    const uint32 drag = fCount;
    lock.unlock();
    fReads.Start(fConnection[kXdndSelection], type, time,
                 [this, drag, type, time](status_t status, const std::string& bytes) {
                     TakeAnswer(drag, type, time, status, bytes);
                 });
}

// On the display thread unless the other program does not answer; then it is not asked again.
void DropTarget::TakeAnswer(uint32 drag, xcb_atom_t type, xcb_timestamp_t time, status_t status,
                            const std::string& bytes) {
    Lock lock(fLock);
    if (drag != fCount)
        return;
    if (status == B_OK)
        fDrag.content = ContentOf(type, bytes, fLinkTakers.contains(fDrag.window));
    const bool isAnswered = status == B_OK || status == B_ENTRY_NOT_FOUND || status == B_NO_MEMORY;
    if (isAnswered && !fDrag.IsAccepted() && !fDrag.types.empty()) {
        Read(lock, time);
        return;
    }
    fDrag.phase = Phase::Judged;
    Judge(lock);
}

DropTarget::Content DropTarget::ContentOf(xcb_atom_t type, const std::string& bytes,
                                          bool takesLinks) const {
    std::optional<rgb_color> color;
    std::optional<Link> link;
    if (type == fConnection[kApplicationColor])
        color = ColorOfWords(bytes);
    else if (type == fConnection[kTextMozUrl])
        link = LinkOfMozUrl(bytes);
    else if (type == fConnection[kTextUriList])
        link = LinkOfUriList(bytes);
    else if (type == fConnection[kTextHtml])
        link = LinkOfHtml(bytes);
    else if (!(color = ColorOfText(bytes)) && takesLinks)
        link = LinkOfText(bytes);
    if (color)
        return *color;
    if (!link || (IsFileUrl(link->url) && FileOf(link->url).empty()))
        return {};
    return *link;
}

// Answers the other program if it waits, and delivers what was dropped. Unlocks `lock` before
// calling back.
void DropTarget::Judge(Lock& lock) {
    if (fDrag.phase != Phase::Judged) {
        lock.unlock();
        return;
    }
    if (std::holds_alternative<Link>(fDrag.content) && !fDrag.isDropped && !fDrag.sourceCheck) {
        fDrag.sourceCheck = std::make_shared<Timer>(kSourceCheckInterval, kSourceCheckInterval,
                                                    [this] { CheckSource(); });
    }
    const Drag drag = fDrag;
    fDrag.isAwaited = false;
    if (drag.isDropped)
        fDrag = {};
    lock.unlock();
    Deliver(drag);
    xcb_atom_t action = XCB_ATOM_NONE;
    if (drag.IsAccepted()) {
        const bool isLink = drag.action == fConnection[kXdndActionLink];
        action = fConnection[isLink ? kXdndActionLink : kXdndActionCopy];
    }
    xcb_client_message_event_t event{};
    event.window = drag.window;
    event.data.data32[0] = drag.source;
    if (drag.isAwaited)
        Answer(kXdndStatus, event, action);
    if (drag.isDropped)
        Answer(kXdndFinished, event, action);
}

void DropTarget::Deliver(const Drag& drag) const {
    const Link* link = std::get_if<Link>(&drag.content);
    if (link && !drag.isDropped)
        fSink(drag.window, XCB_CURRENT_TIME, LinkDragged{drag.screenX, drag.screenY, true});
    if (!drag.isDropped)
        return;
    DeliverLeave(drag);
    if (link) {
        std::string file = IsFileUrl(link->url) ? FileOf(link->url) : std::string();
        if (!IsLinkFile(file))
            file.clear();
        fSink(drag.window, drag.time,
              LinkDropped{drag.screenX, drag.screenY, *link, std::move(file)});
    } else if (const auto* color = std::get_if<rgb_color>(&drag.content)) {
        fSink(drag.window, drag.time, ColorDropped{drag.screenX, drag.screenY, *color});
    }
}

void DropTarget::DeliverLeave(const Drag& drag) const {
    if (drag.sourceCheck)
        fSink(drag.window, XCB_CURRENT_TIME, LinkDragged{drag.screenX, drag.screenY, false});
}

// A program that dies does not say that it leaves; it is said in its place, to the display thread.
void DropTarget::CheckSource() {
    Lock lock(fLock);
    const xcb_window_t source = fDrag.source, window = fDrag.window;
    lock.unlock();
    if (window != XCB_WINDOW_NONE &&
        !fConnection.Ask<xcb_get_geometry, xcb_get_geometry_reply>(source))
        fConnection.SendMessage(window, window, kXdndLeave, {source});
}

// The action stands last in the message, behind two words of a rectangle in a status; without one
// it is a refusal.
void DropTarget::Answer(AtomIndex type, const xcb_client_message_event_t& event,
                        xcb_atom_t action) const {
    std::vector<uint32> words = {event.window, action != XCB_ATOM_NONE ? kAccepted : 0};
    if (type == kXdndStatus)
        words.insert(words.end(), 2, 0);
    words.push_back(action);
    fConnection.SendMessage(event.data.data32[0], event.data.data32[0], type, words);
}

} // namespace host
