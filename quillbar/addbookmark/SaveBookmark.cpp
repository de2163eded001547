#include "quillbar/addbookmark/SaveBookmark.h"

#include "kits/storage/Entry.h"
#include "kits/storage/File.h"
#include "kits/storage/Node.h"
#include "kits/storage/Path.h"
#include "quillbar/base/Trace.h"
#include "quillbar/bookmarks/BookmarkFile.h"
#include "quillbar/bookmarks/StoreNames.h"

namespace {

bool IsLeaf(const BString& name) {
    return name.FindFirst('/') < 0;
}

QBSaveOutcome Failure(QBSaveResult result, status_t status) {
    return {result, SaveReason(status)};
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

QBSaveOutcome Create(const QBBookmarkText& bookmark, BString& path) {
    BPath file(FindItem(bookmark.folder, 0).String());
    const BString leaf = EntryName(bookmark.slot, bookmark.name);
    status_t status = file.InitCheck();
    if (status == B_OK)
        status = IsLeaf(leaf) ? file.Append(leaf.String()) : B_BAD_VALUE;
    if (status == B_OK)
        status = CreateFile(file.Path());
    if (status != B_OK)
        return Failure(QBSaveResult::NotCreated, status);
    path = file.Path();
    return {QBSaveResult::Saved, ""};
}

// The file that fills the slot through a link in the folder, as the folder is read; the empty
// string if there is none.
BString FindLinked(const QBBookmarkText& bookmark) {
    const BString folder = FindItem(bookmark.folder, 0);
    BString found;
    Walk(BEntry(folder.String(), false), Links::Followed, [&](BEntry& entry, const char* path) {
        if (GetNumber(path) != bookmark.slot - 1 || !entry.IsFile())
            return true;
        BPath parent;
        if (entry.GetPath(&parent) == B_OK && parent.GetParent(&parent) == B_OK &&
            folder != parent.Path())
            found = path;
        return false;
    });
    return found;
}

// Makes the file's type that of a bookmark and writes the texts.
QBSaveOutcome Write(const QBBookmarkText& bookmark, const BString& path) {
    BNode node(path.String());
    BNodeInfo info(&node);
    if (node.InitCheck() != B_OK || info.InitCheck() != B_OK)
        return Failure(QBSaveResult::NotTyped, node.InitCheck());

    BString unsaved;
    const auto note = [&](const char* text, status_t status) {
        if (status != B_OK)
            unsaved << "\n" << text << ": " << SaveReason(status);
    };
    if (!HasBookmarkType(node))
        note("Type", info.SetType(kBookmarkType));
    note("URL", WriteText(node, kUrlAttribute, bookmark.url));
    note("Keywords", WriteText(node, kKeywordsAttribute, bookmark.keywords));
    note("Name", WriteText(node, kTitleAttribute, bookmark.name));
    if (unsaved.IsEmpty())
        return {QBSaveResult::Saved, ""};
    BString warning;
    warning << "Not everything of the bookmark " << BPath(path.String()).SystemPath().c_str()
            << " could be saved!\n"
            << unsaved;
    return {QBSaveResult::Incomplete, warning};
}

} // namespace

QBSaveOutcome SaveBookmark(const QBBookmarkText& bookmark) {
    BString folder = FindItem(bookmark.folder, 0);
    Trace(__PRETTY_FUNCTION__, "Item Path = %s", folder.String());
    if (folder.IsEmpty())
        return {QBSaveResult::NoFolder, ""};
    if (GetName(folder) != bookmark.folderName) {
        Trace(__PRETTY_FUNCTION__, "Item needs rename");
        Rename(folder, EntryName(bookmark.folder, bookmark.folderName));
    }

    BString path = FindItem(bookmark.folder, bookmark.slot);
    const BString linked = path.IsEmpty() ? FindLinked(bookmark) : BString();
    if (!linked.IsEmpty()) {
        if (GetName(linked.String()) == bookmark.name)
            return Write(bookmark, linked);
        BString reason("It is a link to ");
        reason << BPath(linked.String()).SystemPath().c_str() << ", which keeps its name.";
        return {QBSaveResult::NotRenamed, reason};
    }
    if (path.IsEmpty()) {
        QBSaveOutcome created = Create(bookmark, path);
        if (created.result != QBSaveResult::Saved)
            return created;
    } else if (GetName(path) != bookmark.name) {
        const status_t status = Rename(path, EntryName(bookmark.slot, bookmark.name));
        if (status != B_OK)
            return Failure(QBSaveResult::NotRenamed, status);
    }
    return Write(bookmark, path);
}
