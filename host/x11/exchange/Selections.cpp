#include "host/x11/exchange/Selections.h"

#include <chrono>
#include <future>

#include "base/Errors.h"
#include "base/Utf8.h"

namespace host {

namespace {

constexpr std::size_t kMaxBytes = std::size_t{16} << 20; // of another program's text
constexpr std::size_t kMaxTargets = 32;                  // of one MULTIPLE request

// Without a time the selection was taken before all other times.
bool IsBefore(xcb_timestamp_t time, xcb_timestamp_t since) {
    return since != XCB_CURRENT_TIME && static_cast<int32>(time - since) < 0;
}

} // namespace

void SelectionRequest::Put(const Connection& connection, xcb_atom_t type, uint8 format,
                           const void* data, std::size_t count) const {
    auto cookie =
        xcb_change_property_checked(connection, XCB_PROP_MODE_REPLACE, requestor, property, type,
                                    format, static_cast<uint32>(count), data);
    xcb_discard_reply(connection, cookie.sequence);
}

void SelectionRequest::Finish(const Connection& connection, bool isAnswered) const {
    xcb_selection_notify_event_t answer{};
    answer.response_type = XCB_SELECTION_NOTIFY;
    answer.time = time;
    answer.requestor = requestor;
    answer.selection = selection;
    answer.target = target;
    answer.property = isAnswered ? property : xcb_atom_t{XCB_ATOM_NONE};
    auto cookie = xcb_send_event_checked(connection, false, requestor, XCB_EVENT_MASK_NO_EVENT,
                                         reinterpret_cast<const char*>(&answer));
    xcb_discard_reply(connection, cookie.sequence);
    connection.Flush();
}

Selections::Selections(const Connection& connection, xcb_window_t owner,
                       const WindowRegistry& windows)
    : fConnection(connection)
    , fOwner(owner)
    , fWindows(windows)
    , fReads(connection, kMaxBytes) {}

xcb_atom_t Selections::AtomOf(SelectionKind selection) const {
    return selection == SelectionKind::Primary ? xcb_atom_t{XCB_ATOM_PRIMARY}
                                               : fConnection[kClipboard];
}

bool Selections::Holds(xcb_atom_t selection) const {
    std::lock_guard lock(fLock);
    return fOffers.contains(selection);
}

void Selections::Own(SelectionKind kind, xcb_timestamp_t time, std::string text) {
    xcb_atom_t selection = AtomOf(kind);
    std::lock_guard lock(fLock);
    fOffers[selection] = {std::move(text), time};
    xcb_set_selection_owner(fConnection, fOwner, selection, time);
    // The server refuses it if another program took the selection later than that.
    if (fConnection.OwnerOf(selection) != fOwner)
        fOffers.erase(selection);
}

void Selections::Ask(SelectionKind kind, SelectionAnswer answer) {
    std::unique_lock lock(fLock);
    auto own = fOffers.find(AtomOf(kind));
    if (own == fOffers.end()) {
        lock.unlock();
        fReads.Start(AtomOf(kind), std::move(answer));
        return;
    }
    std::string text = own->second.text;
    lock.unlock();
    answer(B_OK, std::move(text));
}

void Selections::SaveClipboard(bigtime_t timeout) {
    if (!Holds(fConnection[kClipboard]) || fConnection.IsLost())
        return;
    auto saved = std::make_shared<std::promise<void>>();
    auto isSaved = saved->get_future();
    fReads.StartSaving([saved](status_t, const std::string&) { saved->set_value(); });
    isSaved.wait_for(std::chrono::microseconds(timeout));
}

void Selections::Handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7f) {
    case XCB_SELECTION_CLEAR:
        HandleClear(reinterpret_cast<const xcb_selection_clear_event_t&>(event));
        break;
    case XCB_SELECTION_REQUEST:
        HandleRequest(reinterpret_cast<const xcb_selection_request_event_t&>(event));
        break;
    case XCB_SELECTION_NOTIFY:
        fReads.HandleNotify(reinterpret_cast<const xcb_selection_notify_event_t&>(event));
        break;
    }
}

void Selections::HandleClear(const xcb_selection_clear_event_t& event) {
    std::lock_guard lock(fLock);
    auto found = fOffers.find(event.selection);
    // The program may have taken the selection back since.
    if (found != fOffers.end() && !IsBefore(event.time, found->second.since))
        fOffers.erase(found);
}

bool Selections::MayHave(const xcb_selection_request_event_t& event) const {
    auto found = fOffers.find(event.selection);
    if (found == fOffers.end() || event.requestor == fOwner || fWindows.Contains(event.requestor))
        return false;
    return event.time == XCB_CURRENT_TIME || !IsBefore(event.time, found->second.since);
}

void Selections::HandleRequest(const xcb_selection_request_event_t& event) {
    const SelectionRequest request(event);
    std::lock_guard lock(fLock);
    request.Finish(fConnection, MayHave(event) && Answer(fOffers.at(event.selection), request));
}

bool Selections::Answer(const Offer& offer, const SelectionRequest& request) const {
    const xcb_atom_t target = request.target;
    if (target == fConnection[kTargets]) {
        const xcb_atom_t targets[] = {target,
                                      fConnection[kMultiple],
                                      fConnection[kTimestamp],
                                      fConnection[kUtf8String],
                                      fConnection[kTextPlainUtf8],
                                      fConnection[kText],
                                      XCB_ATOM_STRING};
        request.Put(fConnection, XCB_ATOM_ATOM, 32, targets, std::size(targets));
        return true;
    }
    if (target == fConnection[kTimestamp]) {
        request.Put(fConnection, XCB_ATOM_INTEGER, 32, &offer.since, 1);
        return true;
    }
    if (target == fConnection[kMultiple])
        return AnswerAll(offer, request);
    if (target == fConnection[kUtf8String] || target == fConnection[kText])
        return AnswerText(request, fConnection[kUtf8String], offer.text);
    if (target == fConnection[kTextPlainUtf8])
        return AnswerText(request, target, offer.text);
    return target == XCB_ATOM_STRING && AnswerText(request, target, Latin1FromUtf8(offer.text));
}

// The property holds pairs of a target and the property for it; a refused one gets None there.
bool Selections::AnswerAll(const Offer& offer, const SelectionRequest& request) const {
    auto pairs = fConnection.ReadValues(
        fConnection.AskForValues(request.requestor, request.property, fConnection[kAtomPair]));
    if (pairs.empty() || pairs.size() > 2 * kMaxTargets)
        return false;
    SelectionRequest part = request;
    for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) {
        part.target = pairs[i];
        part.property = pairs[i + 1];
        bool isNested = part.target == fConnection[kMultiple];
        if (isNested || part.property == XCB_ATOM_NONE || !Answer(offer, part))
            pairs[i + 1] = XCB_ATOM_NONE;
    }
    request.Put(fConnection, fConnection[kAtomPair], 32, pairs.data(), pairs.size());
    return true;
}

bool Selections::AnswerText(const SelectionRequest& request, xcb_atom_t type,
                            const std::string& text) const {
    if (text.size() > fConnection.MaxRequestBytes() - sizeof(xcb_change_property_request_t))
        return false;
    request.Put(fConnection, type, 8, text.data(), text.size());
    return true;
}

} // namespace host
