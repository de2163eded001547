#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "host/loop/ServiceLoop.h"
#include "host/x11/Display.h"
#include "host/x11/server/Connection.h"

namespace host {

// Reads selections of other programs. Each transfer has a window of its own, so that late answers
// to one that was given up reach no other. Any thread; the display thread passes the events in.
class SelectionReads {
public:
    // A text longer than `maxBytes` is refused.
    SelectionReads(const Connection& connection, std::size_t maxBytes);
    // Cancels all transfers.
    ~SelectionReads();

    // In any form of text.
    void Start(xcb_atom_t selection, SelectionAnswer answer);
    // In that form only: the bytes as they are, of values of 8 or 16 bits in this computer's order.
    void Start(xcb_atom_t selection, xcb_atom_t target, xcb_timestamp_t time,
               SelectionAnswer answer);
    // Asks the clipboard manager to take what the program offers; the answer has no text.
    void StartSaving(SelectionAnswer answer);
    // Answers all transfers with B_CANCELED.
    void Cancel();

    void HandleNotify(const xcb_selection_notify_event_t& event);
    // Whether the property is one of a transfer.
    bool HandleProperty(const xcb_property_notify_event_t& event);

private:
    struct Read {
        xcb_atom_t selection;
        std::vector<xcb_atom_t> targets; // to be tried, the next one first
        SelectionAnswer answer;
        xcb_timestamp_t time = XCB_CURRENT_TIME;
        bigtime_t start = 0;
        bool isIncremental = false;
        xcb_atom_t type = XCB_ATOM_NONE;
        std::string text{};
        bigtime_t lastProgress = 0;
        std::unique_ptr<Timer> timer{};
    };
    using Reads = std::map<xcb_window_t, Read>;
    using Lock = std::unique_lock<std::mutex>;

    void Begin(Read read);
    void Ask(xcb_window_t window, Read& read);
    void Take(Lock& lock, Reads::iterator at);
    void CheckProgress(xcb_window_t window);
    void Finish(Lock& lock, Reads::iterator at, status_t status);

    const Connection& fConnection;
    const std::size_t fMaxBytes;
    std::mutex fLock; // guards the next one; not held while an answer is given or a timer ended
    Reads fReads;
};

} // namespace host
