#include "kits/interface/window/DroppedLink.h"

#include <optional>
#include <string>

#include "base/links/Link.h"
#include "kits/app/AppDefs.h"
#include "kits/storage/File.h"
#include "kits/storage/Path.h"

namespace {

std::optional<Link> LinkIn(const BPath& path) {
    BFile file(path.Path(), B_READ_ONLY);
    std::string content(kMaxLinkFile, '\0');
    const ssize_t length = file.InitCheck() == B_OK ? file.Read(content.data(), content.size()) : 0;
    content.resize(length > 0 ? static_cast<size_t>(length) : 0);
    return LinkOfFile(path.Leaf(), content);
}

} // namespace

BMessage LinkMessageOf(const char* url, const char* title, const char* file) {
    std::optional<Link> link = Link{url, title};
    const BPath path(file);
    if (path.InitCheck() == B_OK)
        link = LinkIn(path);
    BMessage message(B_MIME_DATA);
    if (link)
        message.AddString("be:url", link->url.c_str());
    message.AddString("be:clip_name", link ? link->title.c_str() : path.Leaf());
    return message;
}
