#include "host/x11/exchange/SelectionOffers.h"

#include <algorithm>

#include "base/Utf8.h"
#include "host/x11/exchange/SelectionAnswer.h"
#include "host/x11/server/Clock.h"

namespace host {

namespace {

constexpr std::size_t kMaxPart = 65536;
constexpr std::size_t kMaxSends = 64;
constexpr std::size_t kMaxTargets = 32;    // of one MULTIPLE request
constexpr bigtime_t kPatience = 5'000'000; // without progress
constexpr bigtime_t kCheckInterval = 1'000'000;

// Without a time the selection was taken before all there is.
bool IsBefore(xcb_timestamp_t time, xcb_timestamp_t since) {
    return since != XCB_CURRENT_TIME && static_cast<int32>(time - since) < 0;
}

} // namespace

SelectionOffers::SelectionOffers(const Connection& connection, xcb_window_t owner,
                                 const WindowRegistry& windows)
    : fConnection(connection)
    , fOwner(owner)
    , fWindows(windows)
    , fPartBytes(std::min(kMaxPart, connection.MaxRequestBytes() - 64)) {}

// A timer may be waiting for the lock.
SelectionOffers::~SelectionOffers() {
    Sends ended;
    std::lock_guard lock(fLock);
    ended.swap(fSends);
}

void SelectionOffers::Own(xcb_atom_t selection, xcb_timestamp_t time, std::string text) {
    auto held = std::make_shared<const std::string>(std::move(text));
    std::lock_guard lock(fLock);
    fOffers[selection] = {std::move(held), time};
    xcb_set_selection_owner(fConnection, fOwner, selection, time);
    // The server refuses it if another program took the selection later than that.
    Reply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        fConnection, xcb_get_selection_owner(fConnection, selection), nullptr));
    if (owner && owner->owner != fOwner)
        fOffers.erase(selection);
}

SelectionOffers::Text SelectionOffers::TextOf(xcb_atom_t selection) const {
    std::lock_guard lock(fLock);
    auto found = fOffers.find(selection);
    return found == fOffers.end() ? nullptr : found->second.text;
}

void SelectionOffers::HandleClear(const xcb_selection_clear_event_t& event) {
    std::lock_guard lock(fLock);
    auto found = fOffers.find(event.selection);
    // The program may have taken the selection back since.
    if (found != fOffers.end() && !IsBefore(event.time, found->second.since))
        fOffers.erase(found);
}

bool SelectionOffers::MayHave(const xcb_selection_request_event_t& event) const {
    auto found = fOffers.find(event.selection);
    if (found == fOffers.end() || event.requestor == fOwner || fWindows.Contains(event.requestor))
        return false;
    return event.time == XCB_CURRENT_TIME || !IsBefore(event.time, found->second.since);
}

void SelectionOffers::HandleRequest(const xcb_selection_request_event_t& event) {
    // Old programs leave the choice of the property to the owner.
    xcb_atom_t property = event.property != XCB_ATOM_NONE ? event.property : event.target;
    std::lock_guard lock(fLock);
    bool isAnswered = MayHave(event) && Answer(fOffers.at(event.selection),
                                               {event.requestor, property}, event.target);
    AnswerRequest(fConnection, event, isAnswered ? property : xcb_atom_t{XCB_ATOM_NONE});
}

bool SelectionOffers::Answer(const Offer& offer, Place place, xcb_atom_t target) {
    if (target == fConnection[kTargets]) {
        const xcb_atom_t targets[] = {target,
                                      fConnection[kMultiple],
                                      fConnection[kTimestamp],
                                      fConnection[kUtf8String],
                                      fConnection[kTextPlainUtf8],
                                      fConnection[kText],
                                      XCB_ATOM_STRING};
        Put(place, XCB_ATOM_ATOM, 32, targets, std::size(targets));
        return true;
    }
    if (target == fConnection[kTimestamp]) {
        Put(place, XCB_ATOM_INTEGER, 32, &offer.since, 1);
        return true;
    }
    if (target == fConnection[kMultiple])
        return AnswerAll(offer, place);
    if (target == fConnection[kUtf8String] || target == fConnection[kText])
        return SendText(place, fConnection[kUtf8String], offer.text);
    if (target == fConnection[kTextPlainUtf8])
        return SendText(place, target, offer.text);
    if (target == XCB_ATOM_STRING) {
        return SendText(place, target,
                        std::make_shared<const std::string>(Latin1FromUtf8(*offer.text)));
    }
    return false;
}

// The property holds pairs of a target and the property for it; what cannot be had gets None there.
bool SelectionOffers::AnswerAll(const Offer& offer, Place place) {
    auto pairs = fConnection.ReadValues(
        fConnection.AskForValues(place.first, place.second, fConnection[kAtomPair]));
    if (pairs.empty() || pairs.size() > 2 * kMaxTargets)
        return false;
    for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) {
        bool isNested = pairs[i] == fConnection[kMultiple];
        if (isNested || pairs[i + 1] == XCB_ATOM_NONE ||
            !Answer(offer, {place.first, pairs[i + 1]}, pairs[i]))
            pairs[i + 1] = XCB_ATOM_NONE;
    }
    Put(place, fConnection[kAtomPair], 32, pairs.data(), pairs.size());
    return true;
}

bool SelectionOffers::SendText(Place place, xcb_atom_t type, const Text& text) {
    if (text->size() <= fPartBytes) {
        Put(place, type, 8, text->data(), text->size());
        return true;
    }
    if (fSends.contains(place) || fSends.size() >= kMaxSends)
        return false;
    Watch(place.first, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    auto size = static_cast<uint32>(text->size());
    Put(place, fConnection[kIncr], 32, &size, 1);
    auto timer = std::make_unique<Timer>(kCheckInterval, kCheckInterval,
                                         [this, place] { CheckProgress(place); });
    fSends.emplace(place, Send{type, text, 0, Now(), std::move(timer)});
    return true;
}

bool SelectionOffers::HandleProperty(const xcb_property_notify_event_t& event) {
    Lock lock(fLock);
    auto at = fSends.find({event.window, event.atom});
    if (at == fSends.end())
        return false;
    if (event.state == XCB_PROPERTY_DELETE)
        SendPart(lock, at);
    return true;
}

// An empty part tells that it was the last one.
void SelectionOffers::SendPart(Lock& lock, Sends::iterator at) {
    Send& send = at->second;
    std::size_t length = std::min(fPartBytes, send.text->size() - send.sent);
    Put(at->first, send.type, 8, send.text->data() + send.sent, length);
    fConnection.Flush();
    send.sent += length;
    send.lastProgress = Now();
    if (length == 0)
        Finish(lock, at);
}

void SelectionOffers::HandleDestroy(xcb_window_t window) {
    Lock lock(fLock);
    auto isThere = [window](const auto& send) { return send.first.first == window; };
    for (auto at = fSends.begin(); (at = std::ranges::find_if(fSends, isThere)) != fSends.end();) {
        Finish(lock, at);
        lock.lock();
    }
}

void SelectionOffers::CheckProgress(Place place) {
    Lock lock(fLock);
    auto at = fSends.find(place);
    if (at != fSends.end() && Now() - at->second.lastProgress > kPatience)
        Finish(lock, at);
}

// Leaves `lock` open.
void SelectionOffers::Finish(Lock& lock, Sends::iterator at) {
    Sends::node_type finished = fSends.extract(at);
    xcb_window_t window = finished.key().first;
    if (std::ranges::none_of(fSends, [&](const auto& send) { return send.first.first == window; }))
        Watch(window, XCB_EVENT_MASK_NO_EVENT);
    fConnection.Flush();
    lock.unlock();
}

// The other program's window may be gone at any time, which is no error worth a line.
void SelectionOffers::Put(Place place, xcb_atom_t type, uint8 format, const void* data,
                          std::size_t count) const {
    auto cookie =
        xcb_change_property_checked(fConnection, XCB_PROP_MODE_REPLACE, place.first, place.second,
                                    type, format, static_cast<uint32>(count), data);
    xcb_discard_reply(fConnection, cookie.sequence);
}

void SelectionOffers::Watch(xcb_window_t window, uint32 events) const {
    auto cookie =
        xcb_change_window_attributes_checked(fConnection, window, XCB_CW_EVENT_MASK, &events);
    xcb_discard_reply(fConnection, cookie.sequence);
}

} // namespace host
