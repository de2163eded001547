#pragma once

#include "base/Rect.h"

// Lengths of the menus' look, in logical pixels.
inline constexpr float kMenuInset = 2;     // the dark border and the bevel inside it
inline constexpr float kItemLeft = 20;     // room for the mark
inline constexpr float kItemRight = 20;    // room for a sub-menu's arrow
inline constexpr float kShortcutGap = 24;  // between the longest label and the shortcuts
inline constexpr float kShortcutRight = 8; // behind a shortcut
inline constexpr float kItemTop = 2;
inline constexpr float kItemBottom = 4;
inline constexpr float kSeparatorHeight = 8;
inline constexpr float kScrollArrowHeight = 14;

// Where menus lie. Everything is in logical pixels of the screen; `width` and `height` count
// pixels, as a rectangle's do not.

// With its left-top corner at `where`, or as near to it as a menu of that size can be inside
// `monitor`. A larger one is cut to the monitor.
BRect PlaceMenu(BPoint where, float width, float height, BRect monitor);

// Beside `menu`, level with `item`: on the right, or else on the left, or else where it covers
// least.
BRect PlaceSubmenu(BRect menu, BRect item, float width, float height, BRect monitor);

// Whether a pointer that was at `apex` and is at `where` now is under way to `submenu`, which
// opened beside the menu: inside the triangle between `apex` and the near side of `submenu`.
bool HeadsForSubmenu(BPoint apex, BPoint where, BRect submenu);
