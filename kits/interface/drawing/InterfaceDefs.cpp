#include "kits/interface/drawing/InterfaceDefs.h"

#include "host/x11/Display.h"

static_assert(uint32{B_PRIMARY_MOUSE_BUTTON} == uint32{host::kPrimaryButton});
static_assert(uint32{B_SECONDARY_MOUSE_BUTTON} == uint32{host::kSecondaryButton});
static_assert(uint32{B_TERTIARY_MOUSE_BUTTON} == uint32{host::kTertiaryButton});
static_assert(uint32{B_SHIFT_KEY} == uint32{host::kShiftKey});
static_assert(uint32{B_COMMAND_KEY} == uint32{host::kCommandKey});
static_assert(uint32{B_CONTROL_KEY} == uint32{host::kControlKey});
static_assert(uint32{B_OPTION_KEY} == uint32{host::kOptionKey});
static_assert(uint32{B_MENU_KEY} == uint32{host::kMenuKey});

void get_mouse(BPoint* where, uint32* buttons) {
    host::Display* display = host::Display::Shared();
    const host::Pointer pointer = display ? display->GetPointer() : host::Pointer{};
    const double scale = display ? display->Scale() : 1;
    *where = {static_cast<float>(pointer.screenX / scale),
              static_cast<float>(pointer.screenY / scale)};
    *buttons = pointer.buttons;
}

rgb_color ui_color(color_which which) {
    switch (which) {
    case B_MENU_SELECTION_BACKGROUND_COLOR:
        return tint_color(ui_color(B_MENU_BACKGROUND_COLOR), B_DARKEN_2_TINT);
    case B_MENU_SELECTED_ITEM_TEXT_COLOR:
    case B_MENU_ITEM_TEXT_COLOR:
        return {0, 0, 0, 255};
    case B_PANEL_BACKGROUND_COLOR:
    case B_MENU_BACKGROUND_COLOR:
        break;
    }
    return {216, 216, 216, 255};
}
