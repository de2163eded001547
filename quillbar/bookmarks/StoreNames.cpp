#include "quillbar/bookmarks/StoreNames.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "base/Utf8.h"
#include "kits/storage/Directory.h"
#include "kits/storage/Entry.h"
#include "kits/storage/Node.h"
#include "kits/storage/Path.h"

namespace {

constexpr int32 kLongestShownUrl = 50;
constexpr size_t kLongestName = 255 - 4; // of what disks keep, less "N - "
constexpr const char* kEllipsis = "....";

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

const char* NameIn(const char* path) {
    const char* slash = std::strrchr(path, '/');
    return slash ? slash + 1 : path;
}

} // namespace

int GetNumber(const char* path) {
    const char* name = NameIn(path);
    if (!std::strchr(name, '-') || !IsDigit(name[0]) || IsDigit(name[1]))
        return -1;
    return name[0] - '0';
}

int GetNumber(BString& path) {
    return GetNumber(path.String());
}

BString GetName(const char* path) {
    const char* hyphen = std::strchr(NameIn(path), '-');
    if (!hyphen)
        return BString();
    const char* name = hyphen + 1;
    return BString(*name == ' ' ? name + 1 : name);
}

BString GetName(BString& path) {
    return GetName(path.String());
}

BString NameOfTitle(const char* title) {
    std::string name = OneLineOf(title);
    std::replace(name.begin(), name.end(), '/', '-');
    return BString(std::string(CutUtf8(name, kLongestName)).c_str());
}

BString ParseURL(const char* url) {
    const int32 length = static_cast<int32>(std::strlen(url));
    if (length <= kLongestShownUrl)
        return BString(url);
    BString shortened(url, kLongestShownUrl - static_cast<int32>(std::strlen(kEllipsis)));
    shortened << kEllipsis;
    return shortened;
}

BString ParseURL(BString& url) {
    return ParseURL(url.String());
}

BString EmptyFolderName(int number) {
    BString name;
    name << static_cast<int32>(number - 1) << " -";
    return name;
}

status_t FindRoot(BEntry& root) {
    const status_t status = root.SetTo(kBookmarkRoot, false);
    if (status == B_OK && root.IsSymLink()) {
        BEntry target(kBookmarkRoot, true);
        if (target.IsDirectory())
            root = target;
    }
    return status;
}

bool HasBookmarkType(BNode& node) {
    BNodeInfo info(&node);
    char type[B_MIME_TYPE_LENGTH];
    return node.InitCheck() == B_OK && info.InitCheck() == B_OK && info.GetType(type) == B_OK &&
           BString(type).ICompare(kBookmarkType) == 0;
}

status_t Walk(const BEntry& directory, Links links,
              const std::function<bool(BEntry& entry, const char* path)>& visit) {
    BDirectory opened(&directory);
    if (opened.InitCheck() != B_OK)
        return opened.InitCheck();

    BEntry entry;
    while (opened.GetNextEntry(&entry, links == Links::Followed) == B_OK) {
        BPath path;
        if (entry.InitCheck() != B_OK || entry.GetPath(&path) != B_OK || path.InitCheck() != B_OK)
            continue;
        if (!visit(entry, path.Path()))
            break;
    }
    return B_OK;
}

bool IsPlaceholder(const char* path) {
    const int digit = GetNumber(path);
    if (digit < 0 || EmptyFolderName(digit + 1) != NameIn(path))
        return false;
    bool isEmpty = true;
    Walk(BEntry(path, false), Links::Left, [&](BEntry&, const char*) { return isEmpty = false; });
    return isEmpty;
}

status_t FindFolders(FolderPaths& folders) {
    BEntry root;
    const status_t status = FindRoot(root);
    if (status != B_OK)
        return status;
    return Walk(root, Links::Left, [&](BEntry& entry, const char* path) {
        const int digit = GetNumber(path);
        if (digit < 0 || !entry.IsDirectory())
            return true;
        BString& found = folders[static_cast<size_t>(digit)];
        if (found.IsEmpty() || IsPlaceholder(found.String()))
            found = path;
        return true;
    });
}

BString FindFolder(int number) {
    FolderPaths folders;
    FindFolders(folders);
    return folders[static_cast<size_t>(number - 1)];
}

BString FindItem(int folder, int slot) {
    BString found = FindFolder(folder);
    if (found.IsEmpty() || slot < 1)
        return found;

    BEntry directory(found.String());
    found = "";
    Walk(directory, Links::Left, [&](BEntry& entry, const char* path) {
        if (GetNumber(path) != slot - 1 || !entry.IsFile())
            return true;
        BNode node(&entry);
        if (!HasBookmarkType(node))
            return true;
        found = path;
        return false;
    });
    return found;
}
