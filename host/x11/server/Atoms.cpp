#include "host/x11/server/Atoms.h"

#include <string_view>

#include "host/x11/server/Reply.h"

namespace host {

namespace {

constexpr std::array<std::string_view, kAtomCount> kNames = {
#define ATOM(index, name) name,
    X11_ATOMS(ATOM)
#undef ATOM
};

} // namespace

void Atoms::Request(xcb_connection_t* connection) {
    for (std::size_t i = 0; i < kAtomCount; i++)
        fCookies[i] = xcb_intern_atom(connection, false, kNames[i].size(), kNames[i].data());
}

void Atoms::Read(xcb_connection_t* connection) {
    for (std::size_t i = 0; i < kAtomCount; i++) {
        Reply<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(connection, fCookies[i], nullptr));
        fAtoms[i] = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }
}

} // namespace host
