#pragma once

#include "host/x11/exchange/SelectionOffers.h"
#include "host/x11/exchange/SelectionReads.h"

namespace host {

// The texts that this program and others hand to each other: what it holds and what it asks for.
// Any thread; the display thread hands the events in.
class Selections {
public:
    Selections(const Connection& connection, xcb_window_t owner, const WindowRegistry& windows);

    void Own(SelectionKind selection, xcb_timestamp_t time, std::string text);
    void Ask(SelectionKind selection, SelectionAnswer answer);
    void SaveClipboard(bigtime_t timeout);

    void Handle(const xcb_generic_event_t& event);
    bool HandleProperty(const xcb_property_notify_event_t& event);
    void HandleDestroy(xcb_window_t window) { fOffers.HandleDestroy(window); }

private:
    xcb_atom_t AtomOf(SelectionKind selection) const;

    const Connection& fConnection;
    SelectionOffers fOffers;
    SelectionReads fReads;
};

} // namespace host
