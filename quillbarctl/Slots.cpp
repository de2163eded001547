#include "quillbarctl/Slots.h"

#include "base/Errors.h"
#include "kits/storage/Entry.h"
#include "kits/storage/Node.h"
#include "kits/storage/Path.h"
#include "quillbar/bookmarks/BookmarkFile.h"
#include "quillbar/bookmarks/StoreNames.h"
#include "quillbarctl/CommandLine.h"

namespace {

std::string StdOf(const BString& text) {
    return {text.String(), static_cast<size_t>(text.Length())};
}

Slot ReadSlot(const BEntry& file, const char* path) {
    BNode node(&file);
    BString url, keywords;
    Slot slot;
    slot.isFilled = true;
    slot.isBookmark = ReadBookmark(node, url, keywords);
    slot.path = path;
    slot.name = StdOf(GetName(path));
    slot.url = StdOf(url);
    slot.keywords = StdOf(keywords);
    return slot;
}

status_t ReadFolder(const char* path, Folder& folder) {
    folder.path = path;
    folder.name = StdOf(GetName(path));
    return FindSlotFiles(BEntry(path), [&](int digit, const BEntry& file, const char* place) {
        folder.slots[static_cast<size_t>(digit)] = ReadSlot(file, place);
    });
}

status_t Report(status_t status, const char* path) {
    if (status != B_OK)
        Warn("%s cannot be read: %s", BPath(path).SystemPath().c_str(), StatusText(status));
    return status;
}

} // namespace

status_t ReadFolders(Folders& folders) {
    FolderPaths paths;
    status_t status = FindFolders(paths);
    if (status == B_ENTRY_NOT_FOUND)
        return B_OK;
    if (status != B_OK)
        return Report(status, kBookmarkRoot);
    for (size_t digit = 0; digit < folders.size(); ++digit) {
        if (paths[digit].IsEmpty())
            continue;
        status = ReadFolder(paths[digit].String(), folders[digit]);
        if (status != B_OK)
            return Report(status, paths[digit].String());
    }
    return B_OK;
}

std::optional<size_t> FirstEmptySlot(const Folder& folder) {
    for (size_t digit = 0; digit < folder.slots.size(); ++digit) {
        if (!folder.slots[digit].isFilled)
            return digit;
    }
    return std::nullopt;
}
