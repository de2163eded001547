#include "tests/support/DragPartner.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "host/x11/server/Reply.h"
#include "tests/support/Wait.h"

namespace test {

using host::Reply;

DragPartner::DragPartner(PrivateDesktop& desktop, const Box& frame)
    : fDesktop(desktop)
    , fConnection(xcb_connect(desktop.Name().c_str(), nullptr))
    , fWindow(xcb_generate_id(fConnection)) {
    const uint32_t values[] = {0x8090a0, true};
    xcb_create_window(
        fConnection, XCB_COPY_FROM_PARENT, fWindow, desktop.Root(), static_cast<int16_t>(frame.x),
        static_cast<int16_t>(frame.y), static_cast<uint16_t>(std::max(frame.width, 1)),
        static_cast<uint16_t>(std::max(frame.height, 1)), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
        XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
    const uint32_t version = 5;
    xcb_change_property(fConnection, XCB_PROP_MODE_REPLACE, fWindow, desktop.Atom("XdndAware"),
                        XCB_ATOM_ATOM, 32, 1, &version);
    if (frame.width > 0)
        xcb_map_window(fConnection, fWindow);
    std::free(xcb_get_input_focus_reply(fConnection, xcb_get_input_focus(fConnection), nullptr));
}

DragPartner::~DragPartner() {
    xcb_disconnect(fConnection);
}

void DragPartner::Send(xcb_window_t to, xcb_window_t about, const std::string& type,
                       const std::vector<uint32_t>& data) {
    const xcb_client_message_event_t event = fDesktop.Message(about, type, data);
    xcb_send_event(fConnection, false, to, 0, reinterpret_cast<const char*>(&event));
    xcb_flush(fConnection);
}

void DragPartner::Take() {
    xcb_set_selection_owner(fConnection, fWindow, fDesktop.Atom("XdndSelection"), XCB_CURRENT_TIME);
    xcb_flush(fConnection);
}

void DragPartner::Enter(xcb_window_t target, const std::vector<std::string>& types) {
    std::vector<uint32_t> atoms;
    for (const std::string& type : types)
        atoms.push_back(fDesktop.Atom(type));
    xcb_change_property(fConnection, XCB_PROP_MODE_REPLACE, fWindow, fDesktop.Atom("XdndTypeList"),
                        XCB_ATOM_ATOM, 32, static_cast<uint32_t>(atoms.size()), atoms.data());
    const uint32_t hasList = atoms.size() > 3;
    atoms.resize(3);
    Send(target, target, "XdndEnter", {fWindow, 5u << 24 | hasList, atoms[0], atoms[1], atoms[2]});
}

void DragPartner::Move(xcb_window_t target, int x, int y) {
    fStatus.reset();
    Send(target, target, "XdndPosition",
         {fWindow, 0, static_cast<uint32_t>(x << 16 | y), XCB_CURRENT_TIME,
          fDesktop.Atom("XdndActionCopy")});
}

void DragPartner::Leave(xcb_window_t target) {
    Send(target, target, "XdndLeave", {fWindow});
}

void DragPartner::Drop(xcb_window_t target) {
    fFinish.reset();
    Send(target, target, "XdndDrop", {fWindow, 0, XCB_CURRENT_TIME});
}

template <typename Predicate>
bool DragPartner::Await(Predicate holds) {
    return WaitUntil([&] {
        while (Reply<xcb_generic_event_t> event{xcb_poll_for_event(fConnection)})
            Handle(*event);
        return holds();
    });
}

std::optional<bool> DragPartner::AwaitStatus() {
    Await([&] { return fStatus.has_value(); });
    return fStatus;
}

std::optional<bool> DragPartner::AwaitFinish() {
    Await([&] { return fFinish.has_value(); });
    return fFinish;
}

std::optional<bool> DragPartner::DragTo(xcb_window_t target, int x, int y,
                                        const std::vector<std::string>& types) {
    Take();
    Enter(target, types);
    Move(target, x, y);
    const std::optional<bool> status = AwaitStatus();
    if (!status.value_or(false)) {
        Leave(target);
        return status;
    }
    Drop(target);
    return AwaitFinish();
}

void DragPartner::Handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7f) {
    case XCB_CLIENT_MESSAGE:
        HandleMessage(reinterpret_cast<const xcb_client_message_event_t&>(event));
        break;
    case XCB_SELECTION_REQUEST:
        HandleRequest(reinterpret_cast<const xcb_selection_request_event_t&>(event));
        break;
    case XCB_SELECTION_NOTIFY:
        fAnswered = reinterpret_cast<const xcb_selection_notify_event_t&>(event).property;
        fIsNotified = true;
        break;
    }
}

void DragPartner::HandleMessage(const xcb_client_message_event_t& event) {
    const uint32_t* words = event.data.data32;
    if (event.type == fDesktop.Atom("XdndStatus")) {
        fStatus = (words[1] & 1) != 0;
    } else if (event.type == fDesktop.Atom("XdndFinished")) {
        fFinish = (words[1] & 1) != 0;
    } else if (event.type == fDesktop.Atom("XdndEnter")) {
        fSource = words[0];
        fTypes.assign(words + 2, words + 5);
        if (words[1] & 1) {
            const std::string list = Property(fSource, "XdndTypeList");
            fTypes.resize(list.size() / 4);
            std::memcpy(fTypes.data(), list.data(), fTypes.size() * 4);
        }
        fHasLeft = fIsOver = fIsDropped = false;
    } else if (event.type == fDesktop.Atom("XdndPosition")) {
        if (answers) {
            Send(words[0], words[0], "XdndStatus",
                 {fWindow, accepts, 0, 0, fDesktop.Atom("XdndActionCopy")});
        }
        fIsOver = true;
    } else if (event.type == fDesktop.Atom("XdndLeave")) {
        fHasLeft = true;
        fIsOver = false;
    } else if (event.type == fDesktop.Atom("XdndDrop")) {
        fIsDropped = true;
        fIsOver = false;
    }
}

void DragPartner::HandleRequest(const xcb_selection_request_event_t& request) {
    requests++;
    xcb_selection_notify_event_t answer{};
    answer.response_type = XCB_SELECTION_NOTIFY;
    answer.requestor = request.requestor;
    answer.selection = request.selection;
    answer.target = request.target;
    for (const auto& [type, data] : offered) {
        if (request.target != fDesktop.Atom(type))
            continue;
        if (data.format == 0)
            return;
        const xcb_atom_t given = data.type.empty() ? request.target : fDesktop.Atom(data.type);
        xcb_change_property(fConnection, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                            given, data.format,
                            static_cast<uint32_t>(data.bytes.size() / (data.format / 8)),
                            data.bytes.data());
        answer.property = request.property;
    }
    xcb_send_event(fConnection, false, request.requestor, 0,
                   reinterpret_cast<const char*>(&answer));
    xcb_flush(fConnection);
}

bool DragPartner::AwaitOver() {
    return Await([&] { return std::exchange(fIsOver, false); });
}

bool DragPartner::AwaitDrop() {
    return Await([&] { return std::exchange(fIsDropped, false); });
}

bool DragPartner::AwaitLeave() {
    return Await([&] { return std::exchange(fHasLeft, false); });
}

std::vector<std::string> DragPartner::OfferedTypes() {
    std::vector<std::string> names;
    for (const uint32_t type : fTypes) {
        Reply<xcb_get_atom_name_reply_t> reply(
            xcb_get_atom_name_reply(fConnection, xcb_get_atom_name(fConnection, type), nullptr));
        if (reply)
            names.emplace_back(xcb_get_atom_name_name(reply.get()),
                               static_cast<size_t>(xcb_get_atom_name_name_length(reply.get())));
    }
    return names;
}

std::optional<std::string> DragPartner::Get(const std::string& type) {
    fIsNotified = false;
    xcb_convert_selection(fConnection, fWindow, fDesktop.Atom("XdndSelection"), fDesktop.Atom(type),
                          fDesktop.Atom("TAKEN"), XCB_CURRENT_TIME);
    xcb_flush(fConnection);
    if (!Await([&] { return fIsNotified; }) || fAnswered == XCB_NONE)
        return std::nullopt;
    return Property(fWindow, "TAKEN");
}

std::string DragPartner::Property(xcb_window_t window, const std::string& name) const {
    Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        fConnection, xcb_get_property(fConnection, false, window, fDesktop.Atom(name), 0, 0, 65536),
        nullptr));
    if (!reply)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<size_t>(xcb_get_property_value_length(reply.get()))};
}

std::string DragPartner::SaveName() const {
    return Property(fSource, "XdndDirectSave0");
}

void DragPartner::SetSaveUri(const std::string& uri) {
    xcb_change_property(fConnection, XCB_PROP_MODE_REPLACE, fSource,
                        fDesktop.Atom("XdndDirectSave0"), fDesktop.Atom("text/plain"), 8,
                        static_cast<uint32_t>(uri.size()), uri.data());
    xcb_flush(fConnection);
}

void DragPartner::Finish() {
    Send(fSource, fSource, "XdndFinished", {fWindow, 1, fDesktop.Atom("XdndActionCopy")});
}

} // namespace test
