// Colours that other programs drop.

#include <cstdlib>

#include "host/x11/exchange/DropTarget.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (host::ColorOfWords(bytes).has_value() != (size == 8))
        std::abort();
    if (host::ColorOfText(bytes) && bytes.find('#') == std::string_view::npos)
        std::abort();
    return 0;
}
