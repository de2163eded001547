#pragma once

#include "base/Types.h"

namespace host {

// Converts the modifier and button bits of an X event's state mask.
uint32 ModifiersOf(uint16 state);
uint32 ButtonsOf(uint16 state);

} // namespace host
