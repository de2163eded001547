#pragma once

#include "base/Types.h"

// The bar's keyboard shortcuts, by the platform's raw key codes.
inline constexpr int32 kSettingsKey = 0x50; // "B"
inline constexpr int32 kKeypad5 = 0x49;

// "-" of the main row, "-" and "+" of the keypad.
bool IsAddBookmarkKey(int32 key);

// The digit of the folder whose menu the key opens, or -1: the digits of the main row and of the
// keypad.
int FolderOfKey(int32 key);
