#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/PrivateDesktop.h"

namespace test {

// Another program at the other end of a drag (XDND): it drags something over windows, or has a
// window that something is dropped on. It handles its events while it waits for something.
class DragPartner {
public:
    // Shows a window above all others, if `frame` is not empty.
    explicit DragPartner(PrivateDesktop& desktop, const Box& frame = {});
    ~DragPartner();
    DragPartner(const DragPartner&) = delete;
    DragPartner& operator=(const DragPartner&) = delete;

    xcb_window_t Window() const { return fWindow; }

    // As the source.
    struct Data {
        std::string bytes;
        uint8_t format = 8; // 0: asked for, nothing is answered
        std::string type{}; // empty: the one that it is asked for in
    };
    std::map<std::string, Data> offered; // by type
    void Take();                         // the selection
    void Enter(xcb_window_t target, const std::vector<std::string>& types);
    void Move(xcb_window_t target, int x, int y);
    void Leave(xcb_window_t target);
    void Drop(xcb_window_t target);
    // Whether the target takes it; nothing if it does not answer in time.
    std::optional<bool> AwaitStatus();
    std::optional<bool> AwaitFinish();
    // All of it: what the target says about a drop at that place of the screen.
    std::optional<bool> DragTo(xcb_window_t target, int x, int y,
                               const std::vector<std::string>& types);
    size_t requests = 0; // for data

    // As the target.
    bool answers = true; // positions
    bool accepts = true;
    // Each once: something is over the window and was answered, was dropped, has left.
    bool AwaitOver();
    bool AwaitDrop();
    bool AwaitLeave();
    std::vector<std::string> OfferedTypes();
    // What is dragged, in that form; nothing if that is refused.
    std::optional<std::string> Get(const std::string& type);
    // Where XdndDirectSave0 is to put it.
    std::string SaveName() const;
    void SetSaveUri(const std::string& uri);
    void Finish();

    void Send(xcb_window_t to, xcb_window_t about, const std::string& type,
              const std::vector<uint32_t>& data);

private:
    void Handle(const xcb_generic_event_t& event);
    void HandleMessage(const xcb_client_message_event_t& event);
    void HandleRequest(const xcb_selection_request_event_t& event);
    template <typename Predicate>
    bool Await(Predicate holds);
    std::string Property(xcb_window_t window, const std::string& name) const;

    PrivateDesktop& fDesktop;
    xcb_connection_t* const fConnection;
    const xcb_window_t fWindow;
    std::optional<bool> fStatus, fFinish;
    xcb_window_t fSource = XCB_NONE;
    bool fIsOver = false, fIsDropped = false, fHasLeft = false, fIsNotified = false;
    std::vector<uint32_t> fTypes;
    xcb_atom_t fAnswered = XCB_NONE;
};

} // namespace test
