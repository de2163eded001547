#include "quillbar/addbookmark/SaveBookmark.h"

#include "kits/storage/Entry.h"
#include "kits/storage/File.h"
#include "kits/storage/Node.h"
#include "kits/storage/Path.h"
#include "quillbar/base/Trace.h"
#include "quillbar/store/StoreNames.h"

namespace {

// The name of the entry with this number, which counts from one.
BString LeafOf(int number, const BString& name) {
    BString leaf;
    leaf << static_cast<int32>(number - 1) << " - " << name;
    return leaf;
}

bool IsLeaf(const BString& name) {
    return name.FindFirst('/') < 0;
}

// In its directory, over nothing. `path` follows.
status_t Rename(BString& path, const BString& leaf) {
    BEntry entry(path.String(), false);
    status_t status = entry.InitCheck();
    if (status == B_OK)
        status = IsLeaf(leaf) ? entry.Rename(leaf.String(), false) : B_BAD_VALUE;
    BPath renamed;
    if (status == B_OK && entry.GetPath(&renamed) == B_OK)
        path = renamed.Path();
    return status;
}

// An empty file in the place of one that was there. What is there may also be a link, and must not
// lead elsewhere.
status_t CreateFile(const char* path) {
    constexpr uint32 kMode = B_READ_WRITE | B_CREATE_FILE;
    BFile file;
    const status_t status = file.SetTo(path, kMode | B_FAIL_IF_EXISTS);
    if (status == B_FILE_EXISTS && BEntry(path, false).IsFile())
        return file.SetTo(path, kMode | B_ERASE_FILE);
    return status;
}

// The texts that could not be written.
class Unsaved {
public:
    void Note(const char* what, status_t status) {
        if (status >= B_OK)
            return;
        fList << "\n" << what << ": " << ReasonOf(status);
    }
    BString Warning(const BString& path) const {
        BString warning;
        if (!fList.IsEmpty())
            warning << "Not everything of the bookmark "
                    << BPath(path.String()).SystemPath().c_str() << " could be saved!\n"
                    << fList;
        return warning;
    }

private:
    static const char* ReasonOf(status_t status) {
        if (status == B_DEVICE_FULL || status == B_BAD_DATA)
            return "it is longer than the disk keeps with a file, or the disk is full.";
        if (status == B_UNSUPPORTED)
            return "the disk does not keep attributes.";
        return StatusText(status);
    }

    BString fList;
};

QBSaveResult Create(const QBBookmarkText& bookmark, BString& path, Unsaved& unsaved) {
    BPath file(FindItem(bookmark.folder, 0).String());
    const BString leaf = LeafOf(bookmark.slot, bookmark.name);
    if (file.InitCheck() != B_OK || !IsLeaf(leaf) || file.Append(leaf.String()) != B_OK ||
        CreateFile(file.Path()) != B_OK)
        return QBSaveResult::NotCreated;
    BNode node(file.Path());
    BNodeInfo info(&node);
    if (node.InitCheck() != B_OK || info.InitCheck() != B_OK)
        return QBSaveResult::NotTyped;
    unsaved.Note("Type", info.SetType(kBookmarkType));
    path = file.Path();
    return QBSaveResult::Saved;
}

void WriteTexts(const QBBookmarkText& bookmark, const BString& path, Unsaved& unsaved) {
    struct Text {
        const char* label;
        const char* attribute;
        const BString& value;
    };
    const Text texts[] = {{"URL", kUrlAttribute, bookmark.url},
                          {"Keywords", kKeywordsAttribute, bookmark.keywords},
                          {"Name", kTitleAttribute, bookmark.name}};
    BNode node(path.String());
    for (const Text& text : texts) {
        const auto size = static_cast<size_t>(text.value.Length()) + 1;
        const status_t status = node.InitCheck();
        unsaved.Note(text.label,
                     status != B_OK
                         ? status
                         : static_cast<status_t>(node.WriteAttr(text.attribute, B_STRING_TYPE, 0,
                                                                text.value.String(), size)));
    }
}

} // namespace

QBSaveResult SaveBookmark(const QBBookmarkText& bookmark, BString* unsaved) {
    BString folder = FindItem(bookmark.folder, 0);
    Trace(__PRETTY_FUNCTION__, "Item Path = %s", folder.String());
    if (folder.IsEmpty())
        return QBSaveResult::NoFolder;
    if (GetName(folder) != bookmark.folderName) {
        Trace(__PRETTY_FUNCTION__, "Item needs rename");
        Rename(folder, LeafOf(bookmark.folder, bookmark.folderName));
    }

    Unsaved failures;
    BString path = FindItem(bookmark.folder, bookmark.slot);
    if (path.IsEmpty()) {
        const QBSaveResult result = Create(bookmark, path, failures);
        if (result != QBSaveResult::Saved)
            return result;
    } else if (GetName(path) != bookmark.name &&
               Rename(path, LeafOf(bookmark.slot, bookmark.name)) != B_OK) {
        return QBSaveResult::NotRenamed;
    }
    WriteTexts(bookmark, path, failures);
    *unsaved = failures.Warning(path);
    return QBSaveResult::Saved;
}
