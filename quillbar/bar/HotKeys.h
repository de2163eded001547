#pragma once

#include "quillbar/app/Commands.h"

// A key that can be part of the hot key: its bit in the setting, its item in the settings menu.
struct HotKey {
    const char* label;
    uint32 command;
    int32 bit;
};

inline constexpr int kHotKeyCount = 6;

// In the order of the menu.
inline constexpr HotKey kHotKeys[kHotKeyCount] = {
    {"Alt Key", kQBToggleAltKey, 1},
    {"Shift Key", kQBToggleShiftKey, 2},
    {"Control Key", kQBToggleControlKey, 4},
    {"\"Windows\" Key", kQBToggleWindowsKey, 8},
    {"\"Menu\" Key", kQBToggleMenuKey, 16},
    {"Delete Key On Numeric Keypad", kQBToggleDeleteKey, 32},
};
