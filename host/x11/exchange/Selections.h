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

// A request of another program, whose window may be gone, for a selection of this one.
struct SelectionRequest : xcb_selection_request_event_t {
    explicit SelectionRequest(const xcb_selection_request_event_t& event)
        : xcb_selection_request_event_t(event) {
        // Old programs leave the choice of the property to the owner.
        if (property == XCB_ATOM_NONE)
            property = target;
    }

    // Writes the answer into the property.
    void Put(const Connection& connection, xcb_atom_t type, uint8 format, const void* data,
             std::size_t count) const;
    // Notifies the program that the answer is there, or that there is none.
    void Finish(const Connection& connection, bool isAnswered) const;
};

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

    xcb_atom_t AtomOf(SelectionKind selection) const;
    bool Holds(xcb_atom_t selection) const;
    void HandleClear(const xcb_selection_clear_event_t& event);
    void HandleRequest(const xcb_selection_request_event_t& event);
    bool MayHave(const xcb_selection_request_event_t& event) const;
    bool Answer(const Offer& offer, const SelectionRequest& request) const;
    bool AnswerAll(const Offer& offer, const SelectionRequest& request) const;
    bool AnswerText(const SelectionRequest& request, xcb_atom_t type,
                    const std::string& text) const;

    const Connection& fConnection;
    const xcb_window_t fOwner;
    const WindowRegistry& fWindows;
    mutable std::mutex fLock; // guards the next one
    std::map<xcb_atom_t, Offer> fOffers;
    SelectionReads fReads;
};

} // namespace host
