#pragma once

#include "base/Types.h"

// The codes of the messages that the system itself sends.
enum : uint32 {
    B_ABOUT_REQUESTED = '_ABR',
    B_QUIT_REQUESTED = '_QRQ',
    B_READY_TO_RUN = '_RTR',
    B_REFS_RECEIVED = 'RREF',
    B_SILENT_RELAUNCH = 'AREL',

    B_WINDOW_ACTIVATED = '_ACT',
    B_MINIMIZE = '_WMN',
    B_WORKSPACES_CHANGED = '_WCG',

    B_KEY_DOWN = '_KYD',
    B_KEY_UP = '_KYU',
    B_UNMAPPED_KEY_DOWN = '_UKD',
    B_UNMAPPED_KEY_UP = '_UKU',
    B_MODIFIERS_CHANGED = '_MCH',
    B_MOUSE_DOWN = '_MDN',
    B_MOUSE_UP = '_MUP',
    B_MOUSE_MOVED = '_MMV',
    B_MOUSE_WHEEL_CHANGED = '_MWC',

    B_PASTE = 'PSTE',
    B_MIME_DATA = 'MIME',
    B_COPY_TARGET = 'DDCP',
    B_NODE_MONITOR = 'NDMN',
};
