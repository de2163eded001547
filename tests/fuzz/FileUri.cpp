// Where other programs want a file that was dragged to them, and the names offered for it.

#include <cstdlib>

#include "host/x11/exchange/DragOffer.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::string path;
    if (host::PathOfFileUri(text, "machine", &path) == B_OK &&
        (path[0] != '/' || path.back() == '/' || path.find('\0') != std::string::npos))
        std::abort();
    const std::string name = host::FileNameFor(text);
    if (name.size() > 200 || name.starts_with('.') || name.find('/') != std::string::npos)
        std::abort();
    return 0;
}
