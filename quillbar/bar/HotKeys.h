#pragma once

#include "quillbar/base/Commands.h"

// A key that can be part of the hot key: its bit in the setting, its item in the settings menu.
struct HotKey {
    const char* label;
    uint32 command;
    int32 bit;
};

inline constexpr int kHotKeyCount = 6;

// In the order of the menu.
inline constexpr HotKey kHotKeys[kHotKeyCount] = {
    {"Alt Key", kQBToggleAltKey, kQBAltKey},
    {"Shift Key", kQBToggleShiftKey, kQBShiftKey},
    {"Control Key", kQBToggleControlKey, kQBControlKey},
    {"\"Windows\" Key", kQBToggleWindowsKey, kQBWindowsKey},
    {"\"Menu\" Key", kQBToggleMenuKey, kQBMenuKey},
    {"Delete Key On Numeric Keypad", kQBToggleDeleteKey, kQBDeleteKey},
};
