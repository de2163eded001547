#pragma once

#include <string>
#include <string_view>

#include "base/Types.h"

// The shortcuts of menu items.

// The character that a key stands for in shortcuts: letters are small ones; 0 for none. A key of
// the main row of digits stands for its digit, whatever it types in this keyboard layout or with
// Shift, and one that types no ASCII character for the letter at its place.
char ShortcutCharacter(int32 key, std::string_view bytes);

// Whether two characters are one key's: letters are the same in either case.
bool IsSameShortcut(char one, char other);

// How a menu shows a shortcut: "Alt+Shift+3".
std::string ShortcutLabel(char shortcut, uint32 modifiers);
