#pragma once

#include <string>

#include "base/Types.h"

class BMessage;

// Starts the desktop's program that stands for the signature with the entries of the field "refs"
// as its arguments: the programs of this desktop take what they are to open with their start, not
// by messages. B_NAME_NOT_FOUND without "refs", B_ENTRY_NOT_FOUND if a directory of one is gone,
// else as BRoster::Launch(). Any thread.
status_t OpenRefs(const std::string& signature, const BMessage& message);
