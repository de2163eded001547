#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include <xcb/xcb.h>

#include "base/Types.h"
#include "host/x11/server/Atoms.h"
#include "host/x11/server/Reply.h"

namespace host {

// The connection to the X server and what stays the same as long as it lasts. Any thread.
class Connection {
public:
    // Null, and `problem` says why, if there is no server or its screen is none that pictures of
    // 0xRRGGBB words can be put on as they are. `name` null means the environment's display.
    static std::unique_ptr<Connection> Open(const char* name, std::string& problem);
    ~Connection();
    Connection(const Connection&) = delete;

    operator xcb_connection_t*() const { return fConnection; }
    const xcb_screen_t& Screen() const { return *fScreen; }
    xcb_window_t Root() const { return fScreen->root; }
    xcb_atom_t operator[](AtomIndex index) const { return fAtoms[index]; }
    bool IsLost() const { return xcb_connection_has_error(fConnection) != 0; }
    void Flush() const { xcb_flush(fConnection); }

    // The most bytes that a request may have without an extension.
    std::size_t MaxRequestBytes() const;

    // The first 32-bit values of a property; empty if there is none of that type and format.
    xcb_get_property_cookie_t AskForValues(xcb_window_t window, xcb_atom_t property,
                                           xcb_atom_t type) const;
    std::vector<uint32> ReadValues(xcb_get_property_cookie_t cookie) const;

    void SetValues(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                   const std::vector<uint32>& values) const;
    void SetText(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                 std::string_view text) const;

    // Asks the window manager for something about `window`.
    void SendToRoot(xcb_window_t window, xcb_atom_t type, const std::vector<uint32>& data) const;

    // A client message about `window` to another program's window. Either may be gone.
    void SendMessage(xcb_window_t receiver, xcb_window_t window, AtomIndex type,
                     const std::array<uint32, 5>& data) const;

    // An empty message to a window of the program: it wakes the display thread.
    void SendMessageTo(xcb_window_t window) const;

    // Asks the server: a window manager may come and go.
    bool HasWindowManager() const;

private:
    Connection() = default;
    std::string CheckScreen() const;

    xcb_connection_t* fConnection = nullptr;
    xcb_screen_t* fScreen = nullptr;
    Atoms fAtoms;
};

} // namespace host
