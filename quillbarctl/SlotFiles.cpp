#include "quillbarctl/SlotFiles.h"

#include <vector>

#include "base/Errors.h"
#include "kits/storage/Directory.h"
#include "kits/storage/Entry.h"
#include "kits/storage/File.h"
#include "kits/storage/Path.h"
#include "quillbar/bookmarks/BookmarkFile.h"
#include "quillbar/bookmarks/StoreNames.h"
#include "quillbarctl/CommandLine.h"
#include "quillbarctl/Trash.h"

namespace {

// Beside the bookmarks: a name without a digit stands for nothing.
constexpr const char* kNewFile = ".quillbarctl.new";

status_t Report(status_t status, const std::string& path, const char* what) {
    if (status != B_OK)
        Warn("%s %s: %s", BPath(path.c_str()).SystemPath().c_str(), what,
             SaveReason(status).String());
    return status;
}

// The new file, which goes with the object unless it got its place.
class NewFile {
public:
    explicit NewFile(const Folder& folder)
        : fPath(BPath(folder.path.c_str(), kNewFile).Path()) {
        BEntry(fPath.c_str()).Remove(); // a run that was killed has left it
        fStatus = fFile.SetTo(fPath.c_str(), B_READ_WRITE | B_CREATE_FILE | B_FAIL_IF_EXISTS);
    }
    ~NewFile() { BEntry(fPath.c_str()).Remove(); }
    NewFile(const NewFile&) = delete;

    status_t Write(const Bookmark& bookmark) {
        for (const auto& [name, bytes] : bookmark.attributes) {
            if (fStatus != B_OK)
                break;
            const ssize_t written =
                fFile.WriteAttr(name.c_str(), B_STRING_TYPE, 0, bytes.data(), bytes.size());
            fStatus = written < 0 ? static_cast<status_t>(written) : B_OK;
        }
        return fStatus;
    }

    status_t Take(const BString& name) {
        if (fStatus == B_OK)
            fStatus = BEntry(fPath.c_str()).Rename(name.String(), false);
        return fStatus;
    }

private:
    const std::string fPath;
    BFile fFile;
    status_t fStatus;
};

// The entries of the directory that stand for the slot: files, and links that lead to one.
std::vector<std::string> EntriesOfSlot(const Folder& folder, size_t digit) {
    std::vector<std::string> entries;
    Walk(BEntry(folder.path.c_str()), Links::Left, [&](const BEntry&, const char* path) {
        const BEntry target(path, true);
        BPath place;
        if (target.IsFile() && target.GetPath(&place) == B_OK &&
            GetNumber(place.Path()) == static_cast<int>(digit))
            entries.emplace_back(path);
        return true;
    });
    return entries;
}

std::string PathIn(const Folder& folder, const BString& name) {
    return folder.path + "/" + name.String();
}

} // namespace

StoreLock::StoreLock() {
    fStatus = create_directory(kBookmarkRoot, kDirectoryMode);
    BEntry root;
    if (fStatus == B_OK)
        fStatus = FindRoot(root);
    if (fStatus == B_OK)
        fStatus = fRoot.SetTo(&root);
    if (fStatus == B_OK)
        fStatus = fRoot.Lock();
    Report(fStatus, kBookmarkRoot, "cannot be used");
}

status_t ReadBookmark(const Slot& slot, Bookmark& bookmark) {
    bookmark = {slot.name, {}};
    BNode node(slot.path.c_str());
    char name[B_ATTR_NAME_LENGTH];
    status_t status = B_OK;
    while (status == B_OK && (status = node.GetNextAttrName(name)) == B_OK) {
        attr_info info;
        status = node.GetAttrInfo(name, &info);
        std::string bytes(static_cast<size_t>(info.size), '\0');
        const ssize_t read = node.ReadAttr(name, B_STRING_TYPE, 0, bytes.data(), bytes.size());
        if (read < 0)
            status = static_cast<status_t>(read);
        bytes.resize(static_cast<size_t>(std::max<ssize_t>(read, 0)));
        bookmark.attributes[name] = bytes;
    }
    if (status == B_ENTRY_NOT_FOUND)
        return B_OK;
    return Report(status, slot.path, "cannot be read");
}

status_t MakeFolder(Folder& folder, size_t digit, const std::string& name) {
    const int number = static_cast<int>(digit) + 1;
    if (folder.path.empty()) {
        const std::string path = BPath(kBookmarkRoot, EmptyFolderName(number).String()).Path();
        const status_t status = create_directory(path.c_str(), kDirectoryMode);
        if (status != B_OK)
            return Report(status, path, "cannot be made");
        folder.path = path;
    }
    if (name.empty() || !folder.name.empty())
        return B_OK;
    BEntry entry(folder.path.c_str());
    const status_t status = entry.Rename(EntryName(number, name.c_str()).String(), false);
    if (status != B_OK)
        return Report(status, folder.path, "cannot be renamed");
    folder.name = name;
    folder.path = BPath(&entry).Path();
    return B_OK;
}

status_t FillSlot(const Folder& folder, size_t digit, const Bookmark& bookmark) {
    const BString name = EntryName(static_cast<int>(digit) + 1, bookmark.name.c_str());
    NewFile file(folder);
    file.Write(bookmark);
    return Report(file.Take(name), PathIn(folder, name), "cannot be made");
}

status_t ReplaceSlot(const Folder& folder, size_t digit, const Bookmark& bookmark) {
    const BString name = EntryName(static_cast<int>(digit) + 1, bookmark.name.c_str());
    NewFile file(folder);
    status_t status = Report(file.Write(bookmark), PathIn(folder, name), "cannot be made");
    for (const std::string& old : EntriesOfSlot(folder, digit)) {
        if (status == B_OK)
            status = MoveToTrash(BPath(old.c_str()).SystemPath());
    }
    if (status == B_OK)
        status = Report(file.Take(name), PathIn(folder, name), "cannot be made");
    return status;
}
