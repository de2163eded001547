#pragma once

#include <string>
#include <vector>

#include "host/x11/Display.h"

class BMessage;

// What other programs can take of a message that is dragged, the form that says most first: the
// link in "be:url" (as a list only if no file is offered), and the text in "text/plain".
std::vector<host::DragData> DragDataOf(const BMessage& message);

// The name in "be:clip_name" of the file that the sender of the message will write where it is
// dropped. Empty if the message offers no such copy (B_COPY_TARGET in "be:actions").
std::string DragFileNameOf(const BMessage& message);
