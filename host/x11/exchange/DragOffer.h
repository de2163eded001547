#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/x11/Display.h"
#include "host/x11/exchange/Selections.h"
#include "host/x11/server/Connection.h"

namespace host {

// The path in a "file:" URI of this machine, which is called `machine`: absolute, and with a name
// behind its last slash. B_UNSUPPORTED for any other scheme or machine, B_BAD_VALUE for a malformed
// URI or one that names no file. `path` is changed only with B_OK.
status_t PathOfFileUri(std::string_view uri, const std::string& machine, std::string* path);

// `text` as a file name: no slashes or control characters, no dot first, at most 200 bytes. Empty
// if nothing is left.
std::string FileNameFor(std::string_view text);

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
    void HandleRequest(const SelectionRequest& request, bool isDropped);
    // Gives up a saving that takes too long.
    void CheckSaving();

private:
    struct Saving;

    bool Give(const SelectionRequest& request) const;
    void Save(const SelectionRequest& request);
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
