#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "base/Color.h"
#include "base/links/Link.h"
#include "host/loop/ServiceLoop.h"
#include "host/x11/Display.h"
#include "host/x11/exchange/SelectionReads.h"
#include "host/x11/server/WindowRegistry.h"

namespace host {

// A colour chooser's four words: red, green, blue and an opacity, which does not count. Nothing if
// `bytes` has any other length.
std::optional<rgb_color> ColorOfWords(std::string_view bytes);

// "#rrggbb", with blanks around it.
std::optional<rgb_color> ColorOfText(std::string_view text);

// With places on the screen.
using DropEvent = std::variant<ColorDropped, LinkDragged, LinkDropped>;

// The receiving end of drags from other programs. A colour is taken, by some windows a link, and
// all else is refused. The data is read during the drag, so the source can show whether it will be
// accepted. One drag at a time, the newest. The display thread passes the events in.
class DropTarget {
public:
    // Gets what is for a window of the program, with the server's time of the drop. Display thread.
    using Sink =
        std::function<void(xcb_window_t window, xcb_timestamp_t time, const DropEvent& drop)>;

    DropTarget(const Connection& connection, const WindowRegistry& windows, Sink sink);

    // The window takes links from now on, or is no more. Any thread.
    void AcceptLinks(xcb_window_t window);
    void Forget(xcb_window_t window);

    // Whether the message is one of a drag. Any program can send one at any time.
    bool HandleMessage(const xcb_client_message_event_t& event);
    void HandleNotify(const xcb_selection_notify_event_t& event) { fReads.HandleNotify(event); }
    // Whether the property is one of a transfer.
    bool HandleProperty(const xcb_property_notify_event_t& event) {
        return fReads.HandleProperty(event);
    }

private:
    using Content = std::variant<std::monostate, rgb_color, Link>; // none: it is refused
    enum class Phase {
        Unread,
        Reading,
        Judged,
    };
    struct Drag {
        xcb_window_t source = XCB_WINDOW_NONE;
        xcb_window_t window = XCB_WINDOW_NONE; // the program's
        std::vector<xcb_atom_t> types{};       // to be tried, the next one first
        Phase phase = Phase::Judged;
        Content content{};
        int screenX = 0, screenY = 0;
        xcb_atom_t action = XCB_ATOM_NONE; // that the other program proposes
        bool isAwaited = false;            // the other program waits for the verdict
        bool isDropped = false;
        xcb_timestamp_t time = XCB_CURRENT_TIME; // of the drop
        std::shared_ptr<Timer> sourceCheck{};    // while the window shows that a link is over it

        bool Is(const xcb_client_message_event_t& event) const {
            return source == event.data.data32[0] && window == event.window;
        }
        bool IsAccepted() const { return content.index() != 0; }
    };
    using Lock = std::unique_lock<std::mutex>;

    void Enter(const xcb_client_message_event_t& event);
    void Move(const xcb_client_message_event_t& event);
    void Leave(const xcb_client_message_event_t& event);
    void Drop(const xcb_client_message_event_t& event);
    std::vector<xcb_atom_t> TypesOf(const xcb_client_message_event_t& event) const;
    bool TakesLinks(xcb_window_t window) const;
    void Read(Lock& lock, xcb_timestamp_t time);
    void TakeAnswer(uint32 drag, xcb_atom_t type, xcb_timestamp_t time, status_t status,
                    const std::string& bytes);
    Content ContentOf(xcb_atom_t type, const std::string& bytes, bool takesLinks) const;
    void Begin(const Drag& drag);
    void Judge(Lock& lock);
    void Deliver(const Drag& drag) const;
    void DeliverLeave(const Drag& drag) const;
    void CheckSource();
    void Answer(AtomIndex type, const xcb_client_message_event_t& event,
                xcb_atom_t action = XCB_ATOM_NONE) const;

    const Connection& fConnection;
    const WindowRegistry& fWindows;
    const Sink fSink;
    // For the next three; not held while others are called or a timer ends.
    mutable std::mutex fLock;
    std::set<xcb_window_t> fLinkTakers;
    Drag fDrag;
    uint32 fCount = 0; // of the drags so far
    SelectionReads fReads;
};

} // namespace host
