#pragma once

#include <bitset>
#include <string>

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon.h>

#include "host/x11/Display.h"

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

} // namespace host
