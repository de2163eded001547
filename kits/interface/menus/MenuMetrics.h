#pragma once

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
