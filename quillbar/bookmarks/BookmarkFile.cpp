#include "quillbar/bookmarks/BookmarkFile.h"

#include <vector>

#include "base/Errors.h"
#include "kits/storage/Entry.h"
#include "kits/storage/Node.h"
#include "quillbar/bookmarks/StoreNames.h"

namespace {

// Nearly all are shorter, which saves asking for the size.
constexpr size_t kUsualSize = 512;

// False if the node has no such attribute. One that cannot be read is the empty string.
bool ReadText(BNode& node, const char* name, BString& text) {
    std::vector<char> buffer(kUsualSize);
    ssize_t read = node.ReadAttr(name, B_STRING_TYPE, 0, buffer.data(), buffer.size());
    attr_info info;
    if (read == static_cast<ssize_t>(buffer.size()) && node.GetAttrInfo(name, &info) == B_OK) {
        buffer.resize(static_cast<size_t>(info.size));
        read = node.ReadAttr(name, B_STRING_TYPE, 0, buffer.data(), buffer.size());
    }
    if (read < 0 && node.GetAttrInfo(name, &info) != B_OK)
        return false;
    buffer.resize(read > 0 ? static_cast<size_t>(read) : 0);
    buffer.push_back('\0');
    text = buffer.data();
    return true;
}

} // namespace

BString EntryName(int number, const BString& name) {
    BString leaf;
    leaf << static_cast<int32>(number - 1) << " - " << name;
    return leaf;
}

status_t
FindSlotFiles(const BEntry& folder,
              const std::function<void(int digit, BEntry& file, const char* path)>& visit) {
    bool found[10] = {};
    int count = 0;
    return Walk(folder, Links::Followed, [&](BEntry& entry, const char* path) {
        const int digit = GetNumber(path);
        if (digit < 0 || found[digit] || !entry.IsFile())
            return true;
        found[digit] = true;
        visit(digit, entry, path);
        return ++count < 10;
    });
}

bool ReadBookmark(BNode& node, BString& url, BString& keywords) {
    return HasBookmarkType(node) && ReadText(node, kUrlAttribute, url) &&
           ReadText(node, kKeywordsAttribute, keywords);
}

status_t WriteText(BNode& node, const char* attribute, const BString& text) {
    const ssize_t written = node.WriteAttr(attribute, B_STRING_TYPE, 0, text.String(),
                                           static_cast<size_t>(text.Length()) + 1);
    return written < 0 ? static_cast<status_t>(written) : B_OK;
}

BString SaveReason(status_t status) {
    if (status == B_DEVICE_FULL || status == B_BAD_DATA)
        return "It is longer than the disk keeps with a file, or the disk is full.";
    if (status == B_UNSUPPORTED)
        return "The disk does not keep attributes.";
    if (status == B_BAD_VALUE)
        return "A name cannot have a \"/\".";
    return StatusText(status);
}
