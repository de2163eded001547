#include "host/x11/exchange/SelectionReads.h"

#include <utility>

#include "base/Errors.h"
#include "base/Utf8.h"
#include "host/x11/server/Connection.h"

namespace host {

namespace {

constexpr bigtime_t kPatience = 2'000'000; // without progress
constexpr bigtime_t kLongest = 10'000'000;
constexpr bigtime_t kCheckInterval = 250'000;

} // namespace

SelectionReads::SelectionReads(const Connection& connection, std::size_t maxBytes)
    : fConnection(connection)
    , fMaxBytes(maxBytes) {}

SelectionReads::~SelectionReads() {
    Cancel();
}

void SelectionReads::Cancel() {
    Lock lock(fLock);
    while (!fReads.empty()) {
        Finish(lock, fReads.begin(), B_CANCELED);
        lock.lock();
    }
}

void SelectionReads::Start(xcb_atom_t selection, SelectionAnswer answer) {
    Begin({.selection = selection,
           .targets = {fConnection[kUtf8String], fConnection[kTextPlainUtf8], XCB_ATOM_STRING},
           .answer = std::move(answer)});
}

void SelectionReads::Start(xcb_atom_t selection, xcb_atom_t target, xcb_timestamp_t time,
                           SelectionAnswer answer) {
    Begin({.selection = selection, .targets = {target}, .answer = std::move(answer), .time = time});
}

void SelectionReads::StartSaving(SelectionAnswer answer) {
    Begin({.selection = fConnection[kClipboardManager],
           .targets = {fConnection[kSaveTargets]},
           .answer = std::move(answer)});
}

void SelectionReads::Begin(Read read) {
    xcb_window_t window = xcb_generate_id(fConnection);
    const uint32 events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(fConnection, 0, window, fConnection.Root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &events);
    std::lock_guard lock(fLock);
    Read& added = fReads.emplace(window, std::move(read)).first->second;
    added.start = Now();
    added.timer = std::make_unique<Timer>(kCheckInterval, kCheckInterval,
                                          [this, window] { CheckProgress(window); });
    Ask(window, added);
}

// At the present time unless the caller gave one: the owner may have taken the selection after the
// last key that this program has seen.
void SelectionReads::Ask(xcb_window_t window, Read& read) {
    read.lastProgress = Now();
    xcb_convert_selection(fConnection, window, read.selection, read.targets.front(),
                          fConnection[kSelectionData], read.time);
    read.targets.erase(read.targets.begin());
    fConnection.Flush();
}

void SelectionReads::HandleNotify(const xcb_selection_notify_event_t& event) {
    Lock lock(fLock);
    auto at = fReads.find(event.requestor);
    // Any program can send such an event.
    if (at == fReads.end() || at->second.isIncremental || event.selection != at->second.selection)
        return;
    if (event.property != XCB_ATOM_NONE)
        Take(lock, at);
    else if (!at->second.targets.empty())
        Ask(at->first, at->second);
    else
        Finish(lock, at, B_ENTRY_NOT_FOUND);
}

bool SelectionReads::HandleProperty(const xcb_property_notify_event_t& event) {
    Lock lock(fLock);
    auto at = fReads.find(event.window);
    if (at == fReads.end())
        return false;
    if (at->second.isIncremental && event.state == XCB_PROPERTY_NEW_VALUE &&
        event.atom == fConnection[kSelectionData])
        Take(lock, at);
    return true;
}

// Takes the property's data. Its removal asks the other program for the next part.
void SelectionReads::Take(Lock& lock, Reads::iterator at) {
    Read& read = at->second;
    const auto reply = fConnection.Ask<xcb_get_property, xcb_get_property_reply>(
        true, at->first, fConnection[kSelectionData], XCB_GET_PROPERTY_TYPE_ANY, 0, fMaxBytes / 4);
    if (!reply) {
        Finish(lock, at, B_ENTRY_NOT_FOUND);
        return;
    }
    read.lastProgress = Now();
    auto length = static_cast<std::size_t>(xcb_get_property_value_length(reply.get()));
    if (!read.isIncremental && reply->type == fConnection[kIncr]) {
        // The value is a lower bound of the whole length.
        bool isTooLong =
            length >= 4 && *static_cast<uint32*>(xcb_get_property_value(reply.get())) > fMaxBytes;
        if (isTooLong)
            Finish(lock, at, B_NO_MEMORY);
        else
            read.isIncremental = true;
        return;
    }
    if (reply->bytes_after > 0 || read.text.size() + length > fMaxBytes) {
        Finish(lock, at, B_NO_MEMORY);
        return;
    }
    if (reply->format == 8 || reply->format == 16) {
        read.type = reply->type;
        read.text.append(static_cast<const char*>(xcb_get_property_value(reply.get())), length);
    }
    if (!read.isIncremental || length == 0)
        Finish(lock, at, B_OK);
}

void SelectionReads::CheckProgress(xcb_window_t window) {
    Lock lock(fLock);
    auto at = fReads.find(window);
    if (at == fReads.end())
        return;
    bigtime_t now = Now();
    if (now - at->second.lastProgress > kPatience || now - at->second.start > kLongest)
        Finish(lock, at, B_TIMED_OUT);
}

// Unlocks `lock` before calling back.
void SelectionReads::Finish(Lock& lock, Reads::iterator at, status_t status) {
    Reads::node_type finished = fReads.extract(at);
    lock.unlock();
    xcb_destroy_window(fConnection, finished.key());
    fConnection.Flush();
    Read& read = finished.mapped();
    if (read.type == XCB_ATOM_STRING)
        read.text = Utf8FromLatin1(read.text);
    read.answer(status, status == B_OK ? std::move(read.text) : std::string());
}

} // namespace host
