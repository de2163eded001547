#include "host/x11/exchange/DragOffer.h"

#include <glib.h>

#include "base/Utf8.h"

namespace host {

namespace {

constexpr bigtime_t kSavePatience = 5'000'000;
constexpr uint32 kMaxUriWords = 4096;
constexpr std::size_t kMaxUri = 16384;
constexpr std::size_t kMaxName = 200;

constexpr std::string_view kScheme = "file:";

struct FreeText {
    void operator()(char* text) const { g_free(text); }
};
using Text = std::unique_ptr<char, FreeText>;

bool IsControlByte(char byte) {
    return static_cast<uint8>(byte) < 0x20 || byte == 0x7f;
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

status_t PathOfFileUri(std::string_view uri, const std::string& machine, std::string* path) {
    // Some end it like a line, or like a string.
    while (!uri.empty() && (IsControlByte(uri.back()) || uri.back() == ' '))
        uri.remove_suffix(1);
    if (uri.size() > kMaxUri || uri.find(':') == std::string_view::npos ||
        uri.find('\0') != std::string_view::npos)
        return B_BAD_VALUE;
    const std::string text(uri);
    if (g_ascii_strncasecmp(text.c_str(), kScheme.data(), kScheme.size()) != 0)
        return B_UNSUPPORTED;
    char* host = nullptr;
    const Text decoded(g_filename_from_uri(text.c_str(), &host, nullptr));
    const Text ownHost(host);
    if (!decoded)
        return B_BAD_VALUE;
    if (host && g_ascii_strcasecmp(host, "localhost") != 0 &&
        g_ascii_strcasecmp(host, machine.c_str()) != 0)
        return B_UNSUPPORTED;
    const std::string_view whole = decoded.get();
    const std::string_view name = whole.substr(whole.rfind('/') + 1);
    if (name.empty() || name == "." || name == "..")
        return B_BAD_VALUE;
    *path = whole;
    return B_OK;
}

std::string FileNameFor(std::string_view text) {
    std::string name;
    for (char byte : text) {
        if (IsControlByte(byte))
            continue;
        if (!(name.empty() && (byte == '.' || byte == ' ')))
            name += byte == '/' ? '-' : byte;
    }
    name.resize(CutUtf8(name, kMaxName).size());
    return name;
}

// A request for saving that waits for its answer. It may outlive the drag.
struct DragOffer::Saving {
    Saving(const Connection& to, const SelectionRequest& what)
        : connection(&to)
        , request(what) {}

    void Answer(status_t status) {
        std::lock_guard guard(lock);
        if (!connection)
            return;
        char letter = LetterOf(status);
        request.Put(*connection, request.target, 8, &letter, 1);
        request.Finish(*connection, true);
        connection = nullptr;
    }

    std::mutex lock;
    const Connection* connection; // null when it has been answered
    const SelectionRequest request;
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

void DragOffer::HandleRequest(const SelectionRequest& request, bool isDropped) {
    bool isForSaving = fIsSavable && request.target == fConnection[kXdndDirectSave];
    if (isForSaving && isDropped && !fSaving)
        Save(request);
    else
        request.Finish(fConnection, !isForSaving && Give(request));
}

bool DragOffer::Give(const SelectionRequest& request) const {
    if (request.target == fConnection[kTargets]) {
        std::vector<xcb_atom_t> targets = fTypes;
        targets.push_back(request.target);
        request.Put(fConnection, XCB_ATOM_ATOM, 32, targets.data(), targets.size());
        return true;
    }
    for (std::size_t i = 0; i < fData.size(); i++) {
        if (request.target != fTypes[i + fIsSavable])
            continue;
        request.Put(fConnection, request.target, 8, fData[i].bytes.data(), fData[i].bytes.size());
        return true;
    }
    return false;
}

// The other program has put the place for the file on the drag's window.
std::string DragOffer::SaveUri() const {
    const auto reply = fConnection.Ask<xcb_get_property, xcb_get_property_reply>(
        false, fWindow, fConnection[kXdndDirectSave], XCB_GET_PROPERTY_TYPE_ANY, 0, kMaxUriWords);
    return std::string(reply && reply->bytes_after == 0 ? BytesOf(reply) : std::string_view());
}

void DragOffer::Save(const SelectionRequest& request) {
    fSaving = std::make_shared<Saving>(fConnection, request);
    std::string path;
    status_t status = PathOfFileUri(SaveUri(), HostName(), &path);
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
