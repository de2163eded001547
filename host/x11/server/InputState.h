#pragma once

#include "base/Types.h"

namespace host {

// The platform's modifiers, and its buttons, in the server's word of both.
uint32 ModifiersOf(uint16 state);
uint32 ButtonsOf(uint16 state);

} // namespace host
