#pragma once

#include "kits/app/Message.h"

// The message that a dropped link becomes (see BWindow::AcceptLinks()). A `file`, unless it is
// empty, is read for the link that is meant. The window's thread.
BMessage LinkMessageOf(const char* url, const char* title, const char* file);
