#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "host/x11/Display.h"
#include "host/x11/exchange/SelectionReads.h"
#include "host/x11/server/Connection.h"
#include "host/x11/server/WindowRegistry.h"

namespace host {

// Writes the answer to a request for a selection into a property of the other program's window,
// which may be gone.
void PutAnswer(const Connection& connection, xcb_window_t requestor, xcb_atom_t property,
               xcb_atom_t type, uint8 format, const void* data, std::size_t count);

// Notifies the program that asked for a selection: the answer is in `property` of its window, or
// the request is refused (XCB_ATOM_NONE).
void AnswerRequest(const Connection& connection, const xcb_selection_request_event_t& request,
                   xcb_atom_t property);

// The texts that this program and others exchange: those it holds and those it asks for. A text
// that does not fit into one request, a quarter of a megabyte, is refused to others. Any thread;
// the display thread passes the events in.
class Selections {
public:
    // `owner` is the window that holds the selections.
    Selections(const Connection& connection, xcb_window_t owner, const WindowRegistry& windows);

    void Own(SelectionKind selection, xcb_timestamp_t time, std::string text);
    void Ask(SelectionKind selection, SelectionAnswer answer);
    void SaveClipboard(bigtime_t timeout);

    void Handle(const xcb_generic_event_t& event);
    // Whether the property is one of a transfer.
    bool HandleProperty(const xcb_property_notify_event_t& event) {
        return fReads.HandleProperty(event);
    }

private:
    struct Offer {
        std::string text;
        xcb_timestamp_t since;
    };
    // The other program's window, and the property there.
    using Place = std::pair<xcb_window_t, xcb_atom_t>;

    xcb_atom_t AtomOf(SelectionKind selection) const;
    bool Holds(xcb_atom_t selection) const;
    void HandleClear(const xcb_selection_clear_event_t& event);
    void HandleRequest(const xcb_selection_request_event_t& event);
    bool MayHave(const xcb_selection_request_event_t& event) const;
    bool Answer(const Offer& offer, Place place, xcb_atom_t target) const;
    bool AnswerAll(const Offer& offer, Place place) const;
    bool AnswerText(Place place, xcb_atom_t type, const std::string& text) const;
    void Put(Place place, xcb_atom_t type, uint8 format, const void* data,
             std::size_t count) const {
        PutAnswer(fConnection, place.first, place.second, type, format, data, count);
    }

    const Connection& fConnection;
    const xcb_window_t fOwner;
    const WindowRegistry& fWindows;
    mutable std::mutex fLock; // guards the next one
    std::map<xcb_atom_t, Offer> fOffers;
    SelectionReads fReads;
};

} // namespace host
