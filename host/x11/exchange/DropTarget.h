#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "base/Color.h"
#include "host/x11/exchange/SelectionReads.h"
#include "host/x11/server/WindowRegistry.h"

namespace host {

// A colour chooser's four words: red, green, blue and an opacity, which does not count. Nothing if
// `bytes` has any other length.
std::optional<rgb_color> ColorOfWords(std::string_view bytes);

// "#rrggbb", with blanks around it.
std::optional<rgb_color> ColorOfText(std::string_view text);

// The receiving end of drags from other programs. A colour is taken, all else is refused. The data
// is read during the drag, so the source can show whether it will be accepted. One drag at a time,
// the newest. The display thread passes the events in.
class DropTarget {
public:
    // Gets the window of the program on which a colour was dropped, and the place on the screen.
    using ColorSink =
        std::function<void(xcb_window_t window, int screenX, int screenY, rgb_color color)>;

    DropTarget(const Connection& connection, const WindowRegistry& windows, ColorSink takeColor);

    // Whether the message is one of a drag. Any program can send one at any time.
    bool HandleMessage(const xcb_client_message_event_t& event);
    void HandleNotify(const xcb_selection_notify_event_t& event) { fReads.HandleNotify(event); }
    // Whether the property is one of a transfer.
    bool HandleProperty(const xcb_property_notify_event_t& event) {
        return fReads.HandleProperty(event);
    }

private:
    enum class Verdict {
        Unread,
        Reading,
        Color,
        Refused,
    };
    struct Drag {
        xcb_window_t source = XCB_WINDOW_NONE;
        xcb_window_t window = XCB_WINDOW_NONE; // the program's
        xcb_atom_t type = XCB_ATOM_NONE;       // in which the colour is asked for
        Verdict verdict = Verdict::Refused;
        rgb_color color{};
        int screenX = 0, screenY = 0;
        bool isAwaited = false; // the other program waits for the verdict
        bool isDropped = false;

        bool Is(const xcb_client_message_event_t& event) const {
            return source == event.data.data32[0] && window == event.window;
        }
    };

    void Enter(const xcb_client_message_event_t& event);
    void Move(const xcb_client_message_event_t& event);
    void Leave(const xcb_client_message_event_t& event);
    void Drop(const xcb_client_message_event_t& event);
    xcb_atom_t TypeOf(const xcb_client_message_event_t& event) const;
    void Read(xcb_timestamp_t time);
    void TakeAnswer(uint32 drag, status_t status, const std::string& bytes);
    void Begin(const Drag& drag);
    void Answer(AtomIndex type, const xcb_client_message_event_t& event, bool accepted) const;
    void Judge(std::unique_lock<std::mutex>& lock);

    const Connection& fConnection;
    const WindowRegistry& fWindows;
    const ColorSink fTakeColor;
    std::mutex fLock; // for the next two; not held while others are called
    Drag fDrag;
    uint32 fCount = 0; // of the drags so far
    SelectionReads fReads;
};

} // namespace host
