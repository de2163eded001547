#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>

#include "host/loop/ServiceLoop.h"
#include "host/x11/server/Connection.h"
#include "host/x11/server/WindowRegistry.h"

namespace host {

// The selections that the program holds, and their transfer to other programs; a long text goes in
// parts. Any thread; the display thread hands the events in.
class SelectionOffers {
public:
    using Text = std::shared_ptr<const std::string>;

    // `owner` is the window that holds the selections.
    SelectionOffers(const Connection& connection, xcb_window_t owner,
                    const WindowRegistry& windows);
    ~SelectionOffers();

    void Own(xcb_atom_t selection, xcb_timestamp_t time, std::string text);
    // Null for a selection that the program does not hold.
    Text TextOf(xcb_atom_t selection) const;

    void HandleClear(const xcb_selection_clear_event_t& event);
    void HandleRequest(const xcb_selection_request_event_t& event);
    // Whether the property is one of a transfer.
    bool HandleProperty(const xcb_property_notify_event_t& event);
    // The window of another program is gone.
    void HandleDestroy(xcb_window_t window);

private:
    struct Offer {
        Text text;
        xcb_timestamp_t since;
    };
    struct Send {
        xcb_atom_t type;
        Text text;
        std::size_t sent;
        bigtime_t lastProgress;
        std::unique_ptr<Timer> timer;
    };
    // The other program's window, and the property there.
    using Place = std::pair<xcb_window_t, xcb_atom_t>;
    using Sends = std::map<Place, Send>;
    using Lock = std::unique_lock<std::mutex>;

    bool MayHave(const xcb_selection_request_event_t& event) const;
    bool Answer(const Offer& offer, Place place, xcb_atom_t target);
    bool AnswerAll(const Offer& offer, Place place);
    bool SendText(Place place, xcb_atom_t type, const Text& text);
    void SendPart(Lock& lock, Sends::iterator at);
    void CheckProgress(Place place);
    void Finish(Lock& lock, Sends::iterator at);
    void Put(Place place, xcb_atom_t type, uint8 format, const void* data, std::size_t count) const;
    void Watch(xcb_window_t window, uint32 events) const;

    const Connection& fConnection;
    const xcb_window_t fOwner;
    const WindowRegistry& fWindows;
    const std::size_t fPartBytes;
    mutable std::mutex fLock; // for what follows; not held while a timer is ended
    std::map<xcb_atom_t, Offer> fOffers;
    Sends fSends;
};

} // namespace host
