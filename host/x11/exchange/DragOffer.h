#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/x11/Display.h"
#include "host/x11/server/Connection.h"

namespace host {

// The data of one drag: it owns the protocol's selection by a window of its own and answers the
// requests for it. One thread at a time, except for the answer to a request for saving.
class DragOffer {
public:
    DragOffer(const Connection& connection, const DragSpec& spec, std::shared_ptr<DragSink> sink,
              xcb_timestamp_t time);
    // Answers a request for saving that still waits as failed.
    ~DragOffer();
    DragOffer(const DragOffer&) = delete;

    xcb_window_t Window() const { return fWindow; }
    const std::vector<xcb_atom_t>& Types() const { return fTypes; }

    // Nothing is saved before the drop, and only once after it.
    void HandleRequest(const xcb_selection_request_event_t& request, bool isDropped);
    // Gives up a saving that takes too long.
    void CheckSaving();

    // The answer when there is no drag.
    static void Refuse(const Connection& connection, const xcb_selection_request_event_t& request);

private:
    struct Saving;

    void Give(const xcb_selection_request_event_t& request, xcb_atom_t type, uint8 format,
              const void* data, std::size_t count) const;
    void Save(const xcb_selection_request_event_t& request);
    std::string SaveUri() const;

    const Connection& fConnection;
    const std::vector<DragData> fData;
    const bool fIsSavable;
    const std::shared_ptr<DragSink> fSink;
    const xcb_window_t fWindow;
    std::vector<xcb_atom_t> fTypes; // the one for saving first, then those of the data
    std::shared_ptr<Saving> fSaving;
};

} // namespace host
