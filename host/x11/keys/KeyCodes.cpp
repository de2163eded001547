#include "host/x11/keys/KeyCodes.h"

#include <algorithm>
#include <array>
#include <span>

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

struct SpecialKey {
    xkb_keysym_t symbol;
    char byte;
};

constexpr SpecialKey kSpecialKeys[] = {
    {XKB_KEY_Home, 0x01},         {XKB_KEY_KP_Home, 0x01},    {XKB_KEY_End, 0x04},
    {XKB_KEY_KP_End, 0x04},       {XKB_KEY_Insert, 0x05},     {XKB_KEY_KP_Insert, 0x05},
    {XKB_KEY_BackSpace, 0x08},    {XKB_KEY_Tab, 0x09},        {XKB_KEY_KP_Tab, 0x09},
    {XKB_KEY_ISO_Left_Tab, 0x09}, {XKB_KEY_Return, 0x0a},     {XKB_KEY_KP_Enter, 0x0a},
    {XKB_KEY_Page_Up, 0x0b},      {XKB_KEY_KP_Page_Up, 0x0b}, {XKB_KEY_Page_Down, 0x0c},
    {XKB_KEY_KP_Page_Down, 0x0c}, {XKB_KEY_Print, 0x10},      {XKB_KEY_Sys_Req, 0x10},
    {XKB_KEY_Scroll_Lock, 0x10},  {XKB_KEY_Pause, 0x10},      {XKB_KEY_Break, 0x10},
    {XKB_KEY_Escape, 0x1b},       {XKB_KEY_Left, 0x1c},       {XKB_KEY_KP_Left, 0x1c},
    {XKB_KEY_Right, 0x1d},        {XKB_KEY_KP_Right, 0x1d},   {XKB_KEY_Up, 0x1e},
    {XKB_KEY_KP_Up, 0x1e},        {XKB_KEY_Down, 0x1f},       {XKB_KEY_KP_Down, 0x1f},
    {XKB_KEY_Delete, 0x7f},       {XKB_KEY_KP_Delete, 0x7f},
};

char SpecialKeyByte(xkb_keysym_t symbol) {
    if (symbol >= XKB_KEY_F1 && symbol <= XKB_KEY_F12)
        return 0x10;
    const auto* found = std::ranges::find(kSpecialKeys, symbol, &SpecialKey::symbol);
    return found != std::end(kSpecialKeys) ? found->byte : '\0';
}

struct StateBit {
    uint16 server;
    uint32 platform;
};

constexpr StateBit kModifiers[] = {
    {XCB_MOD_MASK_SHIFT, kShiftKey},     {XCB_MOD_MASK_LOCK, kCapsLock},
    {XCB_MOD_MASK_CONTROL, kControlKey}, {XCB_MOD_MASK_1, kCommandKey},
    {XCB_MOD_MASK_2, kNumLock},          {XCB_MOD_MASK_4, kOptionKey}};
constexpr StateBit kButtons[] = {{XCB_BUTTON_MASK_1, kPrimaryButton},
                                 {XCB_BUTTON_MASK_2, kTertiaryButton},
                                 {XCB_BUTTON_MASK_3, kSecondaryButton}};

uint32 BitsOf(uint16 state, std::span<const StateBit> bits) {
    uint32 converted = 0;
    for (const StateBit& bit : bits)
        converted |= state & bit.server ? bit.platform : 0;
    return converted;
}

} // namespace

uint32 RawKeyCode(xcb_keycode_t key) {
    int index = key - kFirstKey;
    return index >= 0 && index < static_cast<int>(kRawCodes.size()) ? kRawCodes[index] : 0;
}

uint32 ModifiersOf(uint16 state) {
    return BitsOf(state, kModifiers);
}

uint32 ButtonsOf(uint16 state) {
    return BitsOf(state, kButtons);
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
