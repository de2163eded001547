#pragma once

#include <string>
#include <vector>

#include "host/x11/Display.h"
#include "kits/app/Message.h"

// What is sent of a key, in this order: B_MODIFIERS_CHANGED if it is a modifier key, then the key's
// own message. A key of the session has no "bytes".
std::vector<BMessage> KeyMessages(const host::KeyChanged& key);
std::vector<BMessage> KeyMessages(const host::SessionKey& key);

// The press of no key in particular that types `text`.
BMessage TypedMessage(const std::string& text, bigtime_t when);

// The release of a key, for one who saw it pressed but will not see the real one.
BMessage ReleaseMessage(host::KeyChanged pressed);
