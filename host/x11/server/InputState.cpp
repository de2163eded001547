#include "host/x11/server/InputState.h"

#include <xcb/xcb.h>

#include "host/x11/Display.h"

namespace host {

uint32 ModifiersOf(uint16 state) {
    uint32 modifiers = 0;
    if (state & XCB_MOD_MASK_SHIFT)
        modifiers |= kShiftKey;
    if (state & XCB_MOD_MASK_LOCK)
        modifiers |= kCapsLock;
    if (state & XCB_MOD_MASK_CONTROL)
        modifiers |= kControlKey;
    if (state & XCB_MOD_MASK_1)
        modifiers |= kCommandKey;
    if (state & XCB_MOD_MASK_2)
        modifiers |= kNumLock;
    if (state & XCB_MOD_MASK_4)
        modifiers |= kOptionKey;
    return modifiers;
}

uint32 ButtonsOf(uint16 state) {
    uint32 buttons = 0;
    if (state & XCB_BUTTON_MASK_1)
        buttons |= kPrimaryButton;
    if (state & XCB_BUTTON_MASK_2)
        buttons |= kTertiaryButton;
    if (state & XCB_BUTTON_MASK_3)
        buttons |= kSecondaryButton;
    return buttons;
}

} // namespace host
