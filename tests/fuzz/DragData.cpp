// What other programs can take of any message that is dragged.

#include <cstdlib>

#include "base/Utf8.h"
#include "kits/app/Message.h"
#include "kits/interface/window/DraggedFile.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    BMessage message;
    message.AddString("be:url", text.c_str());
    message.AddString("be:clip_name", text.c_str());
    message.AddData("text/plain", B_MIME_TYPE, data, static_cast<ssize_t>(size));
    for (const host::DragData& form : DragDataOf(message)) {
        if (form.bytes.empty())
            std::abort();
    }
    if (Utf16Of(text).size() > 2 * size)
        std::abort();
    return 0;
}
