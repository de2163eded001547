#pragma once

#include "base/Types.h"

// The codes of the messages that the parts of the program send to each other. The fields "folder"
// and "slot" are int32, or int8 in kQBLaunch, and count from one.
enum : uint32 {
    kQBAddBookmark = 'qbAs',       // open the Add Bookmark window
    kQBAddBookmarkHere = 'qbAh',   // the same, preset to "folder" and "slot"
    kQBTakeLink = 'qbTl',          // open it, or bring it to the front, with "url" and "name"; with
                                   // "folder", 0 for none, and "slot", 0 in a full folder
    kQBAddBookmarkGone = 'qbAg',   // the Add Bookmark window has closed
    kQBAlignHorizontally = 'qbHa', // lay the bar out in a row
    kQBAlignVertically = 'qbVa',   // lay the bar out in a column
    kQBUseOpera = 'qbUo',          // "source": the menu item
    kQBUseNetPositive = 'qbUn',    // "source": the menu item
    kQBShowURLYes = 'qbSy',
    kQBShowURLNo = 'qbSn',
    kQBToggleAltKey = 'qbUa',
    kQBToggleShiftKey = 'qbUs',
    kQBToggleControlKey = 'qbUc',
    kQBToggleWindowsKey = 'qbUw',
    kQBToggleMenuKey = 'qbUm',
    kQBToggleDeleteKey = 'qbUd',
    kQBToggleOnTop = 'qbAt',
    kQBShowSettings = 'qbSw',   // pop up the settings menu at the bar's corner
    kQBLaunch = 'qbLi',         // launch the bookmark of "folder" and "slot", if there is one
    kQBWindowActive = 'qbWa',   // to the application: the bar became the active window
    kQBWindowInactive = 'qbWn', // to the application: it no longer is
    kQBPointAt = 'qbPa',        // inside the bar window: the pointer came to the button of "code"
    kQBPrepareMenus = 'qbPm',   // inside the bar window: it is painted, get the menus ready
    kQBLayOutMenus = 'qbLm',    // inside the bar window: it is on the screen, lay the menus out
    kQBAddIt = 'QbAi',          // inside the Add Bookmark window: create the bookmark
    kQBCancelAdd = 'QbCa',      // inside the Add Bookmark window: close without creating
    kQBShowInTracker = 'QbSt',  // inside the Add Bookmark window: open the bookmark root
};

// The code of a folder, by its digit. Without "slot": pop up the folder's menu. With it: launch
// that bookmark.
inline constexpr uint32 QBFolder[10] = {'qbf0', 'qbf1', 'qbf2', 'qbf3', 'qbf4',
                                        'qbf5', 'qbf6', 'qbf7', 'qbf8', 'qbf9'};

// The code that chooses a slot for a new bookmark, by its digit.
inline constexpr uint32 QBSlot[10] = {'qbs0', 'qbs1', 'qbs2', 'qbs3', 'qbs4',
                                      'qbs5', 'qbs6', 'qbs7', 'qbs8', 'qbs9'};

// How the bar is laid out. Every value but 0 is laid out as vertical.
enum QBAlign : int32 {
    kQBAlignHorizontal = 0,
    kQBAlignVertical = 1,
};

// The keys that the hot key is made of, as bits of the setting.
enum QBHotKey : int32 {
    kQBAltKey = 0x01,
    kQBShiftKey = 0x02,
    kQBControlKey = 0x04,
    kQBWindowsKey = 0x08,
    kQBMenuKey = 0x10,
    kQBDeleteKey = 0x20, // on the numeric keypad
};

// The browser that bookmarks are launched in.
enum QBBrowser : int32 {
    kQBOpera = 0,
    kQBNetPositive = 1,
};
