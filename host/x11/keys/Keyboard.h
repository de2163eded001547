#pragma once

#include <bitset>
#include <memory>
#include <optional>
#include <string>

#include <xkbcommon/xkbcommon-compose.h>
#include <xkbcommon/xkbcommon.h>

#include "host/x11/Display.h"
#include "host/x11/server/Connection.h"

namespace host {

// The platform's code of the key at the place that the server calls `key`, in any
// layout; 0 for a key that the platform's keyboards did not have.
uint32 RawKeyCode(xcb_keycode_t key);

// Converts the modifier and button bits of an X event's state mask.
uint32 ModifiersOf(uint16 state);
uint32 ButtonsOf(uint16 state);

// The keys that are held, by the server's numbers.
using HeldKeys = std::bitset<256>;
KeyStates StatesOf(const HeldKeys& held);

// The text of a key with this symbol, as KeyChanged::text has it.
std::string KeyText(xkb_keysym_t symbol);

struct UnrefKeys {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
    void operator()(xkb_state* state) const { xkb_state_unref(state); }
    void operator()(xkb_compose_table* table) const { xkb_compose_table_unref(table); }
    void operator()(xkb_compose_state* state) const { xkb_compose_state_unref(state); }
};

// Characters that are typed with several keys: accents on dead keys, and the compose key's. The
// sequences are those of the environment's locale and of the user's own file; they are read with
// the first key that can begin one. The display thread only.
class Compose {
public:
    // The text of a key with this symbol as a part of a sequence, empty while more is to come;
    // nothing if it belongs to none and types what it always does.
    std::optional<std::string> Type(xkb_keysym_t symbol);

    // The sequence that was begun is not.
    void Forget();

private:
    void Load();

    bool fHasTried = false;
    std::unique_ptr<xkb_compose_state, UnrefKeys> fState;
};

// Turns the server's key events into the platform's. The display thread only, but for construction.
class Keyboard {
public:
    // Asks for the notices of other layouts and that a held key's repetitions come without releases
    // between them.
    explicit Keyboard(const Connection& connection);

    KeyChanged Translate(const xcb_key_press_event_t& event, bool down);

    // Whether `event` announces another layout; it is then read with the next key.
    bool HandleNotice(const xcb_generic_event_t& event);

    // Keys may be released without the program's seeing it from now on.
    void ForgetHeldKeys() {
        fHeld.reset();
        fCompose.Forget();
    }

private:
    bool ReadLayout();
    std::string TextOf(const xcb_key_press_event_t& event, bool down);

    const Connection& fConnection;
    uint8 fFirstEvent = 0;
    bool fHasXkb = false;
    bool fIsLayoutCurrent = false;
    std::unique_ptr<xkb_context, UnrefKeys> fContext;
    std::unique_ptr<xkb_state, UnrefKeys> fState;
    Compose fCompose;
    HeldKeys fHeld;
};

} // namespace host
