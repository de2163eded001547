// Settings files and the instance's socket: what is read back is written the same.

#include <cstdlib>

#include "kits/app/Message.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    BMessage message;
    if (message.Unflatten(data, size) != B_OK)
        return 0;
    std::string first, second;
    if (message.Flatten(&first) != B_OK)
        return 0; // written out it may be longer than a message can be
    BMessage again;
    if (again.Unflatten(first.data(), first.size()) != B_OK || again.Flatten(&second) != B_OK ||
        first != second)
        std::abort();
    return 0;
}
