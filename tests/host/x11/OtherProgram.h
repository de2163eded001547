#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "host/x11/server/Reply.h"
#include "tests/support/PrivateDesktop.h"
#include "tests/support/Wait.h"

namespace host {

// Another program of the desktop, with a window that holds selections and asks for them.
class OtherProgram {
public:
    explicit OtherProgram(const test::PrivateDesktop& desktop)
        : fDesktop(desktop)
        , fConnection(xcb_connect(desktop.Name().c_str(), nullptr))
        , fWindow(xcb_generate_id(fConnection)) {
        const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(fConnection, XCB_COPY_FROM_PARENT, fWindow, desktop.Root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                          &events);
        Sync();
    }
    ~OtherProgram() { xcb_disconnect(fConnection); }
    OtherProgram(const OtherProgram&) = delete;

    void Take(const std::string& selection) {
        xcb_set_selection_owner(fConnection, fWindow, fDesktop.Atom(selection), XCB_CURRENT_TIME);
        Sync();
    }
    void Convert(const std::string& selection, const std::string& target) {
        xcb_convert_selection(fConnection, fWindow, fDesktop.Atom(selection), fDesktop.Atom(target),
                              fDesktop.Atom("TAKEN"), XCB_CURRENT_TIME);
        Sync();
    }
    // The answer's property; empty if it was refused.
    std::string Converted(const std::string& selection, const std::string& target) {
        Convert(selection, target);
        auto answer = Await<xcb_selection_notify_event_t>(XCB_SELECTION_NOTIFY);
        return answer && answer->property != XCB_NONE ? TakeProperty("TAKEN") : std::string();
    }
    void SetAtoms(const std::string& property, const std::vector<std::string>& names) {
        std::vector<xcb_atom_t> atoms;
        for (const std::string& name : names)
            atoms.push_back(fDesktop.Atom(name));
        xcb_change_property(fConnection, XCB_PROP_MODE_REPLACE, fWindow, fDesktop.Atom(property),
                            fDesktop.Atom("ATOM_PAIR"), 32, static_cast<uint32_t>(atoms.size()),
                            atoms.data());
        Sync();
    }
    std::string TakeProperty(const std::string& property) {
        Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            fConnection,
            xcb_get_property(fConnection, true, fWindow, fDesktop.Atom(property), 0, 0, 1 << 22),
            nullptr));
        lastType = reply->type;
        return {static_cast<const char*>(xcb_get_property_value(reply.get())),
                static_cast<size_t>(xcb_get_property_value_length(reply.get()))};
    }
    // After an answer of the type INCR: all parts.
    std::string TakeParts() {
        std::string all;
        while (true) {
            auto change = Await<xcb_property_notify_event_t>(XCB_PROPERTY_NOTIFY);
            if (!change)
                return "nothing came";
            if (change->state != XCB_PROPERTY_NEW_VALUE)
                continue;
            std::string part = TakeProperty("TAKEN");
            if (part.empty())
                return all;
            all += part;
        }
    }

    // The next request for a selection of this program; null after a while.
    Reply<xcb_selection_request_event_t> AwaitRequest() {
        return Await<xcb_selection_request_event_t>(XCB_SELECTION_REQUEST);
    }
    bool Asks(const xcb_selection_request_event_t& request, const std::string& target) const {
        return request.target == fDesktop.Atom(target);
    }
    void Give(const xcb_selection_request_event_t& request, const std::string& type,
              const std::string& data) {
        Put(request, type, 8, data.data(), data.size());
        Notify(request, request.property);
    }
    // Says that parts follow, and waits until they are wanted.
    void BeginParts(const xcb_selection_request_event_t& request) {
        const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(fConnection, request.requestor, XCB_CW_EVENT_MASK, &events);
        const uint32_t size = 1;
        Put(request, "INCR", 32, &size, 1);
        Notify(request, request.property);
        AwaitRemoval();
    }
    // False if nobody takes it.
    bool GivePart(const xcb_selection_request_event_t& request, const std::string& part) {
        Put(request, "UTF8_STRING", 8, part.data(), part.size());
        Sync();
        return AwaitRemoval();
    }
    void Notify(const xcb_selection_request_event_t& request, xcb_atom_t property) {
        xcb_selection_notify_event_t answer{};
        answer.response_type = XCB_SELECTION_NOTIFY;
        answer.time = request.time;
        answer.requestor = request.requestor;
        answer.selection = request.selection;
        answer.target = request.target;
        answer.property = property;
        xcb_send_event(fConnection, false, request.requestor, 0,
                       reinterpret_cast<const char*>(&answer));
        Sync();
    }

    template <typename T>
    Reply<T> Await(uint8_t type, std::chrono::milliseconds deadline = test::kDeadline) {
        Reply<xcb_generic_event_t> found;
        test::WaitUntil(
            [&] {
                Reply<xcb_generic_event_t> event(xcb_poll_for_event(fConnection));
                if (event && (event->response_type & 0x7f) == type)
                    found = std::move(event);
                return found != nullptr;
            },
            deadline);
        return Reply<T>(reinterpret_cast<T*>(found.release()));
    }

    xcb_atom_t lastType = XCB_NONE; // of the property that was taken

private:
    void Sync() {
        std::free(
            xcb_get_input_focus_reply(fConnection, xcb_get_input_focus(fConnection), nullptr));
    }
    void Put(const xcb_selection_request_event_t& request, const std::string& type, uint8_t format,
             const void* data, size_t count) {
        xcb_change_property(fConnection, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                            fDesktop.Atom(type), format, static_cast<uint32_t>(count), data);
    }
    bool AwaitRemoval() {
        while (auto change = Await<xcb_property_notify_event_t>(XCB_PROPERTY_NOTIFY,
                                                                std::chrono::milliseconds(3000))) {
            if (change->state == XCB_PROPERTY_DELETE)
                return true;
        }
        return false;
    }

    const test::PrivateDesktop& fDesktop;
    xcb_connection_t* const fConnection;
    const xcb_window_t fWindow;
};

} // namespace host
