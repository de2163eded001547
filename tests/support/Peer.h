#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/Desk.h"
#include "tests/support/Wait.h"

namespace test {

// Another program: an X client with one window, at the other end of a selection, a drag or a grab.
// It handles its events while it waits for something; those that nobody waits for are dropped. One
// thread.
class Peer {
public:
    // The window is above all others and accepts drags. It is shown unless `frame` is empty.
    explicit Peer(Desk& desktop, const Box& frame = {});
    ~Peer() { xcb_disconnect(fConnection); } // without a word to anybody
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    xcb_window_t Window() const { return fWindow; }
    void Send(xcb_window_t to, xcb_window_t about, const std::string& type,
              const std::vector<uint32_t>& data, uint32_t mask = 0);

    // Own: takes a selection. Requests are answered with what is offered, and refused for other
    // types. While nothing is offered they wait for AwaitRequest.
    void Own(const std::string& selection);
    struct Data {
        std::string bytes;
        uint8_t format = 8; // 0: the request gets no answer
        std::string type{}; // empty: the type that was asked for
    };
    std::map<std::string, Data> offered; // by type
    size_t requests = 0;

    // Answer: what was asked of a selection of this peer.
    using Request = XReply<xcb_selection_request_event_t>;
    Request AwaitRequest() { return Await<xcb_selection_request_event_t>(XCB_SELECTION_REQUEST); }
    bool IsFor(const xcb_selection_request_event_t& request, const std::string& type) const {
        return request.target == fDesktop.Atom(type);
    }
    void Answer(const xcb_selection_request_event_t& request, const Data& data);
    void Refuse(const xcb_selection_request_event_t& request) { Notify(request, XCB_NONE); }
    // Announces parts (INCR), and waits until they are wanted.
    void BeginParts(const xcb_selection_request_event_t& request);
    // False if nobody takes it.
    bool AnswerPart(const xcb_selection_request_event_t& request, const std::string& part);
    void Notify(const xcb_selection_request_event_t& request, xcb_atom_t property);

    // Ask: the selection's data as that type; nothing if it is refused.
    std::optional<std::string> Ask(const std::string& selection, const std::string& type);
    void SetAtoms(const std::string& property, const std::vector<std::string>& names,
                  const std::string& type = "ATOM");
    std::string TakeProperty(const std::string& property) {
        return Property(fWindow, property, true);
    }

    // Grab: all input of the session. False if it is refused.
    bool GrabKeyboard();
    bool GrabPointer();
    void Ungrab();

    // Drop: what the target answers to a drop at that place of the screen; nothing if it does not
    // answer in time. Without types these are what is offered. And its steps.
    std::optional<bool> Drop(xcb_window_t target, int x, int y,
                             std::vector<std::string> types = {});
    void Enter(xcb_window_t target, const std::vector<std::string>& types);
    void Move(xcb_window_t target, int x, int y);
    void LetGo(xcb_window_t target) {
        Send(target, target, "XdndDrop", {fWindow, 0, XCB_CURRENT_TIME});
    }
    void Leave(xcb_window_t target) { Send(target, target, "XdndLeave", {fWindow}); }
    std::optional<bool> AwaitStatus() { return AwaitVerdict("XdndStatus", 4); }
    std::optional<bool> AwaitFinish() { return AwaitVerdict("XdndFinished", 2); }
    std::string proposed = "XdndActionCopy";
    std::string agreed; // in the last status or finish

    // Drop, on this peer's window.
    bool answers = true; // positions
    bool accepts = true;
    bool AwaitOver() { return AwaitMessage("XdndPosition").has_value(); }
    bool AwaitDrop() { return AwaitMessage("XdndDrop").has_value(); }
    bool AwaitLeave() { return AwaitMessage("XdndLeave").has_value(); }
    std::vector<std::string> OfferedTypes() { return fDesktop.AtomNames(fTypes); }
    std::optional<std::string> Get(const std::string& type) { return Ask("XdndSelection", type); }
    std::string SaveName() { return Property(fSource, "XdndDirectSave0"); }
    void SetSaveUri(const std::string& uri) {
        Put(fSource, fDesktop.Atom("XdndDirectSave0"), fDesktop.Atom("text/plain"), uri);
    }
    void Finish() {
        Send(fSource, fSource, "XdndFinished", {fWindow, 1, fDesktop.Atom("XdndActionCopy")});
    }

    // Watch: asks for events of another window.
    void Watch(xcb_window_t window, uint32_t events);
    using Event = XReply<xcb_generic_event_t>;
    // The next event of the type for which `holds`; null after `deadline`.
    template <typename T>
    XReply<T> Await(
        uint8_t type, const std::function<bool(const T&)>& holds = [](const T&) { return true; },
        std::chrono::milliseconds deadline = kDeadline) {
        Event found;
        WaitUntil(
            [&] {
                while (Event event{found ? nullptr : xcb_poll_for_event(fConnection)}) {
                    Handle(*event);
                    if ((event->response_type & 0x7f) == type &&
                        holds(reinterpret_cast<const T&>(*event)))
                        found = std::move(event);
                }
                return found != nullptr;
            },
            deadline);
        return XReply<T>(reinterpret_cast<T*>(found.release()));
    }
    // The words of the next client message of that type.
    std::optional<std::vector<uint32_t>> AwaitMessage(const std::string& type);

private:
    void Handle(const xcb_generic_event_t& event);
    void HandleMessage(const xcb_client_message_event_t& event);
    void HandleRequest(const xcb_selection_request_event_t& request);
    bool AwaitRemoval();
    // On a position or a drop; the action's word is given.
    std::optional<bool> AwaitVerdict(const std::string& type, size_t action);
    void Sync() const;
    void Put(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, const std::string& bytes,
             uint8_t format = 8);
    std::string Property(xcb_window_t window, const std::string& name, bool remove = false);

    Desk& fDesktop;
    xcb_connection_t* const fConnection;
    const xcb_window_t fWindow;
    xcb_window_t fSource = XCB_NONE;
    std::vector<uint32_t> fTypes;
};

} // namespace test
