#include "host/x11/keys/KeyCodes.h"

#include <array>

#include <xkbcommon/xkbcommon-keysyms.h>

namespace host {

namespace {

// The server's numbers are the kernel's plus 8.
constexpr int kFirstKey = 8;

// By the kernel's numbers, from 0 on.
constexpr std::array<uint8, 128> kRawCodes = {
    // none, Escape, 1 to 0, -, =, Backspace
    0x00, 0x01, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18, 0x19, 0x1a, 0x1b, 0x1c, 0x1d, 0x1e,
    // Tab, Q to P, [, ], Enter
    0x26, 0x27, 0x28, 0x29, 0x2a, 0x2b, 0x2c, 0x2d, 0x2e, 0x2f, 0x30, 0x31, 0x32, 0x47,
    // left Control, A to L, ;, ', `
    0x5c, 0x3c, 0x3d, 0x3e, 0x3f, 0x40, 0x41, 0x42, 0x43, 0x44, 0x45, 0x46, 0x11,
    // left Shift, \, Z to M, comma, full stop, /, right Shift
    0x4b, 0x33, 0x4c, 0x4d, 0x4e, 0x4f, 0x50, 0x51, 0x52, 0x53, 0x54, 0x55, 0x56,
    // keypad *, left Alt, Space, Caps Lock
    0x24, 0x5d, 0x5e, 0x3b,
    // F1 to F10, Num Lock, Scroll Lock
    0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0a, 0x0b, 0x22, 0x0f,
    // keypad 7 8 9 - 4 5 6 + 1 2 3 0 and point
    0x37, 0x38, 0x39, 0x25, 0x48, 0x49, 0x4a, 0x3a, 0x58, 0x59, 0x5a, 0x64, 0x65,
    // two unused, the key between left Shift and Z, F11, F12
    0x00, 0x00, 0x69, 0x0c, 0x0d,
    // seven keys of Japanese keyboards
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
    // keypad Enter, right Control, keypad /, Print Screen, right Alt, unused
    0x5b, 0x60, 0x23, 0x0e, 0x5f, 0x00,
    // Home, Up, Page Up, Left, Right, End, Down, Page Down, Insert, Delete
    0x20, 0x57, 0x21, 0x61, 0x63, 0x35, 0x62, 0x36, 0x1f, 0x34,
    // seven unused, Pause
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10,
    // five unused, left and right "Windows" key, Menu
    0x00, 0x00, 0x00, 0x00, 0x00, 0x66, 0x67, 0x68};

char SpecialKeyByte(xkb_keysym_t symbol) {
    switch (symbol) {
    case XKB_KEY_Home:
    case XKB_KEY_KP_Home:
        return 0x01;
    case XKB_KEY_End:
    case XKB_KEY_KP_End:
        return 0x04;
    case XKB_KEY_Insert:
    case XKB_KEY_KP_Insert:
        return 0x05;
    case XKB_KEY_BackSpace:
        return 0x08;
    case XKB_KEY_Tab:
    case XKB_KEY_KP_Tab:
    case XKB_KEY_ISO_Left_Tab:
        return 0x09;
    case XKB_KEY_Return:
    case XKB_KEY_KP_Enter:
        return 0x0a;
    case XKB_KEY_Page_Up:
    case XKB_KEY_KP_Page_Up:
        return 0x0b;
    case XKB_KEY_Page_Down:
    case XKB_KEY_KP_Page_Down:
        return 0x0c;
    case XKB_KEY_Print:
    case XKB_KEY_Sys_Req:
    case XKB_KEY_Scroll_Lock:
    case XKB_KEY_Pause:
    case XKB_KEY_Break:
        return 0x10;
    case XKB_KEY_Escape:
        return 0x1b;
    case XKB_KEY_Left:
    case XKB_KEY_KP_Left:
        return 0x1c;
    case XKB_KEY_Right:
    case XKB_KEY_KP_Right:
        return 0x1d;
    case XKB_KEY_Up:
    case XKB_KEY_KP_Up:
        return 0x1e;
    case XKB_KEY_Down:
    case XKB_KEY_KP_Down:
        return 0x1f;
    case XKB_KEY_Delete:
    case XKB_KEY_KP_Delete:
        return 0x7f;
    default:
        return symbol >= XKB_KEY_F1 && symbol <= XKB_KEY_F12 ? 0x10 : 0;
    }
}

} // namespace

uint32 RawKeyCode(xcb_keycode_t key) {
    int index = key - kFirstKey;
    return index >= 0 && index < static_cast<int>(kRawCodes.size()) ? kRawCodes[index] : 0;
}

KeyStates StatesOf(const HeldKeys& held) {
    KeyStates states{};
    for (std::size_t i = 0; i < kRawCodes.size(); i++) {
        uint8 code = kRawCodes[i];
        if (code != 0 && held[i + kFirstKey])
            states[code / 8] |= 0x80 >> code % 8;
    }
    return states;
}

std::string KeyText(xkb_keysym_t symbol) {
    if (char special = SpecialKeyByte(symbol))
        return std::string(1, special);
    char text[8] = {};
    if (xkb_keysym_to_utf8(symbol, text, sizeof(text)) <= 0)
        return {};
    auto first = static_cast<uint8>(text[0]);
    return first < 0x20 || first == 0x7f ? std::string() : std::string(text);
}

} // namespace host
