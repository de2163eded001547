// Files of bookmarks: what is read can be a file's name and attributes, and comes back when it is
// written and read again.

#include <cstdlib>
#include <vector>

#include "base/Utf8.h"
#include "quillbar/bookmarks/StoreNames.h"
#include "quillbarctl/Placement.h"
#include "quillbarctl/formats/BookmarkHtml.h"
#include "quillbarctl/formats/BookmarkJson.h"

namespace {

void Check(bool holds) {
    if (!holds)
        std::abort();
}

std::vector<std::string> UrlsOf(Collection& collection) {
    std::vector<std::string> urls;
    for (Group& group : collection) {
        std::erase_if(group.bookmarks, [](const CollectedBookmark& collected) {
            return RefusalOf(TextOf(collected.bookmark, kUrlAttribute)) != nullptr;
        });
        for (const CollectedBookmark& collected : group.bookmarks) {
            const std::string name = UsableName(collected.bookmark.name);
            Check(name.size() <= 251 && IsUtf8(name) && name == UsableName(name));
            urls.push_back(TextOf(collected.bookmark, kUrlAttribute));
        }
    }
    return urls;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    Collection collection, again;
    std::string error;
    ReadHtml(text, collection, error);
    Check(error.empty());
    const std::vector<std::string> urls = UrlsOf(collection);
    ReadHtml(WriteHtml(collection), again, error);
    Check(UrlsOf(again) == urls);
    Folders folders;
    Check(PlaceAll(collection, std::nullopt, folders).size() == urls.size());

    ReadJson(text, collection, error);
    if (!error.empty())
        return 0;
    const std::string json = WriteJson(collection);
    ReadJson(json, again, error);
    Check(error.empty() && WriteJson(again) == json);
    return 0;
}
