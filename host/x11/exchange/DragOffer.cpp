#include "host/x11/exchange/DragOffer.h"

#include <unistd.h>

#include "host/x11/exchange/FileUri.h"
#include "host/x11/exchange/Selections.h"
#include "host/x11/server/Connection.h"

namespace host {

namespace {

constexpr bigtime_t kSavePatience = 5'000'000;
constexpr uint32 kMaxUriWords = 4096;

std::string MachineName() {
    char name[256] = {};
    gethostname(name, sizeof(name) - 1);
    return name;
}

// The protocol's letter for how a saving ended.
char LetterOf(status_t status) {
    switch (status) {
    case B_OK:
        return 'S';
    case B_UNSUPPORTED: // another machine's
    case B_BAD_VALUE:
    case B_ENTRY_NOT_FOUND:
    case B_NOT_A_DIRECTORY:
        return 'F'; // the other program may try another way
    default:
        return 'E';
    }
}

} // namespace

// A request for saving that waits for its answer. It may outlive the drag.
struct DragOffer::Saving {
    Saving(const Connection& to, const xcb_selection_request_event_t& what)
        : connection(&to)
        , request(what) {}

    void Answer(status_t status) {
        std::lock_guard guard(lock);
        if (!connection)
            return;
        char letter = LetterOf(status);
        PutAnswer(*connection, request.requestor, request.property, request.target, 8, &letter, 1);
        AnswerRequest(*connection, request, request.property);
        connection = nullptr;
    }

    std::mutex lock;
    const Connection* connection; // null when it has been answered
    const xcb_selection_request_event_t request;
    const bigtime_t start = Now();
};

DragOffer::DragOffer(const Connection& connection, const DragSpec& spec,
                     std::shared_ptr<DragSink> sink, xcb_timestamp_t time)
    : fConnection(connection)
    , fData(spec.data)
    , fIsSavable(!FileNameFor(spec.fileName).empty())
    , fSink(std::move(sink))
    , fWindow(xcb_generate_id(connection)) {
    xcb_create_window(connection, 0, fWindow, connection.Root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    if (fIsSavable) {
        fTypes.push_back(connection[kXdndDirectSave]);
        connection.SetText(fWindow, connection[kXdndDirectSave], connection[kTextPlain],
                           FileNameFor(spec.fileName));
    }
    for (const DragData& data : fData)
        fTypes.push_back(connection.Intern(data.type));
    connection.SetValues(fWindow, connection[kXdndTypeList], XCB_ATOM_ATOM, fTypes);
    xcb_set_selection_owner(connection, fWindow, connection[kXdndSelection], time);
    connection.Flush();
}

DragOffer::~DragOffer() {
    if (fSaving)
        fSaving->Answer(B_CANCELED);
    xcb_destroy_window(fConnection, fWindow);
    fConnection.Flush();
}

void DragOffer::Refuse(const Connection& connection, const xcb_selection_request_event_t& request) {
    AnswerRequest(connection, request, XCB_ATOM_NONE);
}

void DragOffer::HandleRequest(const xcb_selection_request_event_t& asked, bool isDropped) {
    xcb_selection_request_event_t request = asked;
    // Old programs leave the choice of the property to the owner.
    if (request.property == XCB_ATOM_NONE)
        request.property = request.target;
    if (fIsSavable && request.target == fConnection[kXdndDirectSave]) {
        if (isDropped && !fSaving)
            Save(request);
        else
            Refuse(fConnection, request);
        return;
    }
    if (request.target == fConnection[kTargets]) {
        std::vector<xcb_atom_t> targets = fTypes;
        targets.push_back(request.target);
        Give(request, XCB_ATOM_ATOM, 32, targets.data(), targets.size());
        return;
    }
    for (std::size_t i = 0; i < fData.size(); i++) {
        if (request.target != fTypes[i + fIsSavable])
            continue;
        Give(request, request.target, 8, fData[i].bytes.data(), fData[i].bytes.size());
        return;
    }
    Refuse(fConnection, request);
}

void DragOffer::Give(const xcb_selection_request_event_t& request, xcb_atom_t type, uint8 format,
                     const void* data, std::size_t count) const {
    PutAnswer(fConnection, request.requestor, request.property, type, format, data, count);
    AnswerRequest(fConnection, request, request.property);
}

// The other program has put the place for the file on the drag's window.
std::string DragOffer::SaveUri() const {
    const auto reply = fConnection.Ask<xcb_get_property, xcb_get_property_reply>(
        false, fWindow, fConnection[kXdndDirectSave], XCB_GET_PROPERTY_TYPE_ANY, 0, kMaxUriWords);
    if (!reply || reply->format != 8 || reply->bytes_after > 0)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

void DragOffer::Save(const xcb_selection_request_event_t& request) {
    fSaving = std::make_shared<Saving>(fConnection, request);
    std::string path;
    status_t status = PathOfFileUri(SaveUri(), MachineName(), &path);
    if (status != B_OK)
        fSaving->Answer(status);
    else
        fSink->SaveRequested(path, [saving = fSaving](status_t result) { saving->Answer(result); });
}

void DragOffer::CheckSaving() {
    if (fSaving && Now() - fSaving->start > kSavePatience)
        fSaving->Answer(B_TIMED_OUT);
}

} // namespace host
