#pragma once

#include "base/Color.h"
#include "base/Point.h"
#include "base/Types.h"

// Mouse buttons, as bits of the field "buttons".
enum : uint32 {
    B_PRIMARY_MOUSE_BUTTON = 0x01,
    B_SECONDARY_MOUSE_BUTTON = 0x02,
    B_TERTIARY_MOUSE_BUTTON = 0x04,
};

// Modifier keys and locks, as bits of the field "modifiers".
enum : uint32 {
    B_SHIFT_KEY = 0x00000001,
    B_COMMAND_KEY = 0x00000002,
    B_CONTROL_KEY = 0x00000004,
    B_CAPS_LOCK = 0x00000008,
    B_SCROLL_LOCK = 0x00000010,
    B_NUM_LOCK = 0x00000020,
    B_OPTION_KEY = 0x00000040,
    B_MENU_KEY = 0x00000080,
};

// Where the pointer is on the screen, and which buttons are down; (0, 0) and none without a
// display. Any thread.
void get_mouse(BPoint* where, uint32* buttons);

// The first byte of the field "bytes" for special keys.
enum : char {
    B_HOME = 0x01,
    B_END = 0x04,
    B_INSERT = 0x05,
    B_BACKSPACE = 0x08,
    B_TAB = 0x09,
    B_ENTER = 0x0a,
    B_PAGE_UP = 0x0b,
    B_PAGE_DOWN = 0x0c,
    B_ESCAPE = 0x1b,
    B_LEFT_ARROW = 0x1c,
    B_RIGHT_ARROW = 0x1d,
    B_UP_ARROW = 0x1e,
    B_DOWN_ARROW = 0x1f,
    B_SPACE = 0x20,
    B_DELETE = 0x7f,
};

enum alignment {
    B_ALIGN_LEFT,
    B_ALIGN_RIGHT,
    B_ALIGN_CENTER,
};

enum button_width {
    B_WIDTH_AS_USUAL, // as wide as an everyday label, or wider where the label needs it
};

// The colours that the desktop's controls are drawn in.
enum color_which {
    B_PANEL_BACKGROUND_COLOR = 1,
    B_MENU_BACKGROUND_COLOR = 2,
    B_MENU_SELECTION_BACKGROUND_COLOR = 6,
    B_MENU_ITEM_TEXT_COLOR = 7,
    B_MENU_SELECTED_ITEM_TEXT_COLOR = 8,
};

// Any thread.
rgb_color ui_color(color_which which);
