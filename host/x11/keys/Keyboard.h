#pragma once

#include <memory>

#include <xkbcommon/xkbcommon.h>

#include "host/x11/keys/Compose.h"
#include "host/x11/keys/KeyCodes.h"
#include "host/x11/server/Connection.h"

namespace host {

// Turns the server's key events into the platform's. The display thread only, but for construction.
class Keyboard {
public:
    // Asks for the notices of other layouts and that a held key's repetitions come without releases
    // between them.
    explicit Keyboard(const Connection& connection);

    KeyChanged Translate(const xcb_key_press_event_t& event, bool down);

    // Whether `event` tells of another layout; it is then read with the next key.
    bool HandleNotice(const xcb_generic_event_t& event);

    // Keys may be released without the program's seeing it from now on.
    void ForgetHeldKeys() {
        fHeld.reset();
        fCompose.Forget();
    }

private:
    struct Unref {
        void operator()(xkb_context* context) const { xkb_context_unref(context); }
        void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
        void operator()(xkb_state* state) const { xkb_state_unref(state); }
    };

    bool ReadLayout();
    std::string TextOf(const xcb_key_press_event_t& event, bool down);

    const Connection& fConnection;
    uint8 fFirstEvent = 0;
    bool fHasXkb = false;
    bool fIsLayoutCurrent = false;
    std::unique_ptr<xkb_context, Unref> fContext;
    std::unique_ptr<xkb_state, Unref> fState;
    Compose fCompose;
    HeldKeys fHeld;
};

} // namespace host
