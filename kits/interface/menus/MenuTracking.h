#pragma once

// Closes every open menu as if it had been cancelled. Returns at once; the menu closes by itself,
// whoever is blocked. Any thread.
void close_all_menus();

// Whether menus may open from now on; while they may not, BPopUpMenu::Go() answers null at once.
// Open ones stay as they are. Any thread.
void allow_menus(bool allow);

// Closes what is open, waits until it is closed, and deletes the windows that are kept for the next
// menu. The caller must not hold the lock of a menu's window.
void delete_menu_windows();
