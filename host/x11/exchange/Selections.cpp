#include "host/x11/exchange/Selections.h"

#include <chrono>
#include <future>

#include "base/Errors.h"

namespace host {

namespace {

constexpr std::size_t kMaxBytes = std::size_t{16} << 20;

} // namespace

Selections::Selections(const Connection& connection, xcb_window_t owner,
                       const WindowRegistry& windows)
    : fConnection(connection)
    , fOffers(connection, owner, windows)
    , fReads(connection, kMaxBytes) {}

xcb_atom_t Selections::AtomOf(SelectionKind selection) const {
    return selection == SelectionKind::Primary ? xcb_atom_t{XCB_ATOM_PRIMARY}
                                               : fConnection[kClipboard];
}

void Selections::Own(SelectionKind selection, xcb_timestamp_t time, std::string text) {
    fOffers.Own(AtomOf(selection), time, std::move(text));
}

void Selections::Ask(SelectionKind selection, SelectionAnswer answer) {
    if (SelectionOffers::Text own = fOffers.TextOf(AtomOf(selection)))
        answer(B_OK, *own);
    else
        fReads.Start(AtomOf(selection), std::move(answer));
}

void Selections::SaveClipboard(bigtime_t timeout) {
    if (!fOffers.TextOf(fConnection[kClipboard]) || fConnection.IsLost())
        return;
    auto saved = std::make_shared<std::promise<void>>();
    auto isSaved = saved->get_future();
    fReads.StartSaving([saved](status_t, const std::string&) { saved->set_value(); });
    isSaved.wait_for(std::chrono::microseconds(timeout));
}

void Selections::Handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7f) {
    case XCB_SELECTION_CLEAR:
        fOffers.HandleClear(reinterpret_cast<const xcb_selection_clear_event_t&>(event));
        break;
    case XCB_SELECTION_REQUEST:
        fOffers.HandleRequest(reinterpret_cast<const xcb_selection_request_event_t&>(event));
        break;
    case XCB_SELECTION_NOTIFY:
        fReads.HandleNotify(reinterpret_cast<const xcb_selection_notify_event_t&>(event));
        break;
    }
}

bool Selections::HandleProperty(const xcb_property_notify_event_t& event) {
    return fReads.HandleProperty(event) || fOffers.HandleProperty(event);
}

} // namespace host
