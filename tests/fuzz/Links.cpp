// Links that other programs drop, and the files that keep one.

#include <cstdlib>

#include "base/Utf8.h"
#include "base/links/Link.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    for (const auto& link :
         {LinkOfMozUrl(bytes), LinkOfUriList(bytes), LinkOfHtml(bytes), LinkOfText(bytes),
          LinkOfFile("a.desktop", bytes), LinkOfFile("a.url", bytes)}) {
        if (link &&
            (!IsBookmarkUrl(link->url) || link->title.empty() || link->title.size() > kMaxTitle ||
             !IsUtf8(link->title) || OneLineOf(link->title) != link->title))
            std::abort();
    }
    return 0;
}
