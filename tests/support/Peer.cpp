#include "tests/support/Peer.h"

#include <algorithm>
#include <cstring>

namespace test {

namespace {

constexpr uint32_t kDragVersion = 5;

std::string Bytes(const std::vector<uint32_t>& words) {
    return {reinterpret_cast<const char*>(words.data()), words.size() * sizeof(uint32_t)};
}

} // namespace

Peer::Peer(Desk& desktop, const Box& frame)
    : fDesktop(desktop)
    , fConnection(xcb_connect(desktop.Name().c_str(), nullptr))
    , fWindow(xcb_generate_id(fConnection)) {
    const uint32_t values[] = {0x8090a0, true, XCB_EVENT_MASK_PROPERTY_CHANGE};
    xcb_create_window(fConnection, XCB_COPY_FROM_PARENT, fWindow, desktop.Root(),
                      static_cast<int16_t>(frame.x), static_cast<int16_t>(frame.y),
                      static_cast<uint16_t>(std::max(frame.width, 1)),
                      static_cast<uint16_t>(std::max(frame.height, 1)), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    Put(fWindow, desktop.Atom("XdndAware"), XCB_ATOM_ATOM, Bytes({kDragVersion}), 32);
    if (frame.width > 0)
        xcb_map_window(fConnection, fWindow);
    Sync();
}

void Peer::Sync() const {
    test::Ask<xcb_get_input_focus, xcb_get_input_focus_reply>(fConnection);
}

void Peer::Send(xcb_window_t to, xcb_window_t about, const std::string& type,
                const std::vector<uint32_t>& data, uint32_t mask) {
    const auto event = fDesktop.Message(about, type, data);
    xcb_send_event(fConnection, false, to, mask, reinterpret_cast<const char*>(&event));
    xcb_flush(fConnection);
}

void Peer::Watch(xcb_window_t window, uint32_t events) {
    xcb_change_window_attributes(fConnection, window, XCB_CW_EVENT_MASK, &events);
    Sync();
}

std::optional<std::vector<uint32_t>> Peer::AwaitMessage(const std::string& type) {
    const auto found = Await<xcb_client_message_event_t>(
        XCB_CLIENT_MESSAGE,
        [atom = fDesktop.Atom(type)](const auto& message) { return message.type == atom; });
    if (!found)
        return std::nullopt;
    return std::vector<uint32_t>(found->data.data32, found->data.data32 + 5);
}

bool Peer::GrabKeyboard() {
    const auto reply = test::Ask<xcb_grab_keyboard, xcb_grab_keyboard_reply>(
        fConnection, false, fDesktop.Root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
        XCB_GRAB_MODE_ASYNC);
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

bool Peer::GrabPointer() {
    const auto reply = test::Ask<xcb_grab_pointer, xcb_grab_pointer_reply>(
        fConnection, false, fDesktop.Root(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE,
        XCB_NONE, XCB_CURRENT_TIME);
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

void Peer::Ungrab() {
    xcb_ungrab_keyboard(fConnection, XCB_CURRENT_TIME);
    xcb_ungrab_pointer(fConnection, XCB_CURRENT_TIME);
    Sync();
}

// Properties.

void Peer::Put(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, const std::string& bytes,
               uint8_t format) {
    xcb_change_property(fConnection, XCB_PROP_MODE_REPLACE, window, property, type, format,
                        static_cast<uint32_t>(bytes.size() / (format / 8)), bytes.data());
    xcb_flush(fConnection);
}

void Peer::SetAtoms(const std::string& property, const std::vector<std::string>& names,
                    const std::string& type) {
    std::vector<uint32_t> atoms;
    for (const std::string& name : names)
        atoms.push_back(fDesktop.Atom(name));
    Put(fWindow, fDesktop.Atom(property), fDesktop.Atom(type), Bytes(atoms), 32);
}

std::string Peer::Property(xcb_window_t window, const std::string& name, bool remove) {
    constexpr uint32_t kMostWords = 1 << 22;
    const auto reply = test::Ask<xcb_get_property, xcb_get_property_reply>(
        fConnection, remove, window, fDesktop.Atom(name), XCB_ATOM_ANY, 0, kMostWords);
    if (!reply)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<size_t>(xcb_get_property_value_length(reply.get()))};
}

// Selections.

void Peer::Own(const std::string& selection) {
    xcb_set_selection_owner(fConnection, fWindow, fDesktop.Atom(selection), XCB_CURRENT_TIME);
    Sync();
}

void Peer::Answer(const xcb_selection_request_event_t& request, const Data& data) {
    Put(request.requestor, request.property,
        data.type.empty() ? request.target : fDesktop.Atom(data.type), data.bytes, data.format);
    Notify(request, request.property);
}

void Peer::Notify(const xcb_selection_request_event_t& request, xcb_atom_t property) {
    xcb_selection_notify_event_t answer{};
    answer.response_type = XCB_SELECTION_NOTIFY;
    answer.time = request.time;
    answer.requestor = request.requestor;
    answer.selection = request.selection;
    answer.target = request.target;
    answer.property = property;
    xcb_send_event(fConnection, false, request.requestor, 0,
                   reinterpret_cast<const char*>(&answer));
    Sync(); // the server may drop what a client that dies has just sent
}

void Peer::BeginParts(const xcb_selection_request_event_t& request) {
    Watch(request.requestor, XCB_EVENT_MASK_PROPERTY_CHANGE);
    Answer(request, {Bytes({1}), 32, "INCR"}); // at least one byte
    AwaitRemoval();
}

bool Peer::AnswerPart(const xcb_selection_request_event_t& request, const std::string& part) {
    Put(request.requestor, request.property, fDesktop.Atom("UTF8_STRING"), part);
    return AwaitRemoval();
}

bool Peer::AwaitRemoval() {
    constexpr std::chrono::seconds kPatience(3);
    return Await<xcb_property_notify_event_t>(
               XCB_PROPERTY_NOTIFY,
               [](const auto& change) { return change.state == XCB_PROPERTY_DELETE; },
               kPatience) != nullptr;
}

std::optional<std::string> Peer::Ask(const std::string& selection, const std::string& type) {
    xcb_convert_selection(fConnection, fWindow, fDesktop.Atom(selection), fDesktop.Atom(type),
                          fDesktop.Atom("TAKEN"), XCB_CURRENT_TIME);
    xcb_flush(fConnection);
    const auto answer = Await<xcb_selection_notify_event_t>(XCB_SELECTION_NOTIFY);
    if (!answer || answer->property == XCB_NONE)
        return std::nullopt;
    return TakeProperty("TAKEN");
}

// Drags from here.

std::optional<bool> Peer::Drop(xcb_window_t target, int x, int y, std::vector<std::string> types) {
    if (types.empty())
        std::ranges::transform(offered, std::back_inserter(types),
                               [](const auto& entry) { return entry.first; });
    Own("XdndSelection");
    Enter(target, types);
    Move(target, x, y);
    const std::optional<bool> status = AwaitStatus();
    if (!status.value_or(false)) {
        Leave(target);
        return status;
    }
    LetGo(target);
    return AwaitFinish();
}

void Peer::Enter(xcb_window_t target, const std::vector<std::string>& types) {
    SetAtoms("XdndTypeList", types);
    std::vector<uint32_t> data = {fWindow, kDragVersion << 24 | (types.size() > 3)};
    for (size_t i = 0; i < std::min<size_t>(types.size(), 3); i++)
        data.push_back(fDesktop.Atom(types[i]));
    Send(target, target, "XdndEnter", data);
}

void Peer::Move(xcb_window_t target, int x, int y) {
    Send(target, target, "XdndPosition",
         {fWindow, 0, static_cast<uint32_t>(x << 16 | y), XCB_CURRENT_TIME,
          fDesktop.Atom(proposed)});
}

std::optional<bool> Peer::AwaitVerdict(const std::string& type, size_t action) {
    const auto answer = AwaitMessage(type);
    if (!answer)
        return std::nullopt;
    agreed = answer->at(action) == XCB_NONE ? "" : fDesktop.AtomNames({answer->at(action)})[0];
    return (answer->at(1) & 1) != 0;
}

// Events that need an answer, whatever the peer waits for.

void Peer::Handle(const xcb_generic_event_t& event) {
    const int type = event.response_type & 0x7f;
    if (type == XCB_CLIENT_MESSAGE)
        HandleMessage(reinterpret_cast<const xcb_client_message_event_t&>(event));
    else if (type == XCB_SELECTION_REQUEST)
        HandleRequest(reinterpret_cast<const xcb_selection_request_event_t&>(event));
}

void Peer::HandleMessage(const xcb_client_message_event_t& event) {
    const uint32_t* words = event.data.data32;
    if (event.type == fDesktop.Atom("XdndEnter")) {
        fSource = words[0];
        fTypes.assign(words + 2, words + 5);
        if (words[1] & 1) {
            const std::string list = Property(fSource, "XdndTypeList");
            fTypes.resize(list.size() / 4);
            std::memcpy(fTypes.data(), list.data(), fTypes.size() * 4);
        }
    } else if (event.type == fDesktop.Atom("XdndPosition") && answers) {
        Send(words[0], words[0], "XdndStatus",
             {fWindow, accepts, 0, 0, fDesktop.Atom("XdndActionCopy")});
    }
}

void Peer::HandleRequest(const xcb_selection_request_event_t& request) {
    requests++;
    if (offered.empty())
        return;
    const auto found = std::ranges::find_if(
        offered, [&](const auto& entry) { return IsFor(request, entry.first); });
    if (found == offered.end())
        Refuse(request);
    else if (found->second.format != 0)
        Answer(request, found->second);
}

} // namespace test
