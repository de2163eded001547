#include "quillbar/store/Path.h"

#include "kits/app/Message.h"
#include "kits/interface/menus/MenuItem.h"
#include "kits/storage/Directory.h"
#include "kits/storage/Entry.h"
#include "kits/storage/Node.h"
#include "kits/storage/NodeMonitor.h"
#include "quillbar/bar/widgets/Menu.h"
#include "quillbar/bar/widgets/TitleItem.h"
#include "quillbar/base/Trace.h"
#include "quillbar/bookmarks/BookmarkFile.h"
#include "quillbar/bookmarks/StoreNames.h"

namespace {

constexpr uint32 kDirectoryFlags = B_WATCH_NAME | B_WATCH_DIRECTORY;

node_ref NodeOf(const BMessage& msg) {
    return {msg.GetInt32("device", -1), msg.GetInt64("node", -1)};
}

bool IsIn(const BPath& path, const BPath& directory) {
    BPath parent;
    return path.GetParent(&parent) == B_OK && BString(parent.Path()) == directory.Path();
}

} // namespace

QBPath::QBPath(int number, BHandler* target, BMessenger messenger)
    : fNumber(number)
    , fTarget(target)
    , fMessenger(messenger) {
    CreateMenu();
    FindYourSelf();
}

QBPath::QBPath(const char* path, int number, BHandler* target, BMessenger messenger)
    : fNumber(number)
    , fTarget(target)
    , fMessenger(messenger) {
    CreateMenu();
    SetPath(path);
}

QBPath::~QBPath() {
    for (QBItem* slot : fItems)
        delete slot;
    delete fMenu;
}

void QBPath::SetMessageTarget(BMessenger messenger) {
    fMessenger = messenger;
    for (QBItem* slot : fItems)
        slot->SetMessageTarget(messenger);
}

// The title shows until a directory is found.
void QBPath::CreateMenu() {
    fMenu = new QBMenu("", false, false, B_ITEMS_IN_COLUMN);
    fTitleItem = new QBTitleItem(EmptyFolderName(fNumber).String(), nullptr, 0, 0);
    fMenu->AddItem(fTitleItem);
    fMenu->AddSeparatorItem();
    for (int digit = 0; digit < 10; ++digit) {
        fItems[digit] = new QBItem(fTarget, digit + 1, fNumber);
        fMenu->AddItem(fItems[digit]->MenuItem());
    }
    SetMessageTarget(fMessenger);
}

bool QBPath::SetPath(const char* path) {
    fReadStatus = Read(path);
    if (fReadStatus != B_OK)
        EmptySlots();
    return fReadStatus == B_OK;
}

status_t QBPath::Read(const char* path) {
    BPath place(path);
    BEntry entry(path, false);
    status_t status = Follow(entry);
    if (status == B_ENTRY_NOT_FOUND && (status = FindSuccessor(place)) == B_OK) {
        entry.SetTo(place.Path(), false);
        status = Follow(entry);
    }
    if (status != B_OK)
        return status;
    fPath = place;
    fName = GetName(fPath.Path());
    fTitleItem->SetLabel(fPath.Leaf());
    return ReadSlots(entry);
}

// Watches the directory before it is read: what changes meanwhile would be missed otherwise. One
// that is gone again keeps its number: the message of its rename is on the way.
status_t QBPath::Follow(const BEntry& entry) {
    BNode directory;
    return fWatch.Start(entry, kDirectoryFlags, fMessenger, directory, fRaw);
}

// Replaces the path of a missing directory by that of the one that has the digit now, in case the
// folder was renamed and the message of it still waits, or else by that of a new one.
status_t QBPath::FindSuccessor(BPath& path) const {
    BPath parent;
    const status_t status = path.GetParent(&parent);
    path.SetTo(FindFolder(fNumber).String());
    if (status != B_OK || IsIn(path, parent))
        return status;
    path.SetTo(parent.Path(), EmptyFolderName(fNumber).String());
    return create_directory(path.Path(), kDirectoryMode);
}

// A file that stays in its slot stays watched throughout.
status_t QBPath::ReadSlots(const BEntry& directory) {
    bool found[10] = {};
    for (QBItem* slot : fItems)
        slot->SetValid(false);
    const auto fill = [&](int digit, const BEntry& file, const char* path) {
        found[digit] = true;
        fItems[digit]->SetFile(file, path);
    };
    const status_t status = FindSlotFiles(directory, fill);
    for (int digit = 0; digit < 10; ++digit) {
        if (found[digit])
            fItems[digit]->SetValid(true);
        else
            EmptySlot(fItems[digit]);
    }
    return status;
}

bool QBPath::FindYourSelf() {
    FolderPaths folders;
    fReadStatus = FindFolders(folders);
    return fReadStatus == B_OK && SetFound(folders[static_cast<size_t>(fNumber - 1)]);
}

bool QBPath::SetFound(const BString& path) {
    BEntry root;
    BPath own(path.String());
    if (path.IsEmpty() && (FindRoot(root) != B_OK || root.GetPath(&own) != B_OK ||
                           own.Append(EmptyFolderName(fNumber).String()) != B_OK))
        return false;
    return SetPath(own.Path());
}

void QBPath::EmptySlots() {
    for (QBItem* slot : fItems)
        EmptySlot(slot);
}

void QBPath::EmptySlot(QBItem* slot) {
    slot->StopWatching(fMessenger);
    slot->SetValid(false);
}

bool QBPath::IsFollowed() const {
    if (fReadStatus != B_OK || !IsWatched())
        return false;
    for (const QBItem* slot : fItems) {
        if (slot->IsValid() && !slot->IsWatched())
            return false;
    }
    return true;
}

void QBPath::Refresh() {
    if (IsFollowed())
        return;
    if (!Path())
        FindYourSelf();
    else
        ItemCreated(nullptr);
    UpdateMenu();
}

bool QBPath::HasPlaceholder() const {
    return IsPlaceholder(fPath.Path());
}

bool QBPath::ItemCreated(BMessage*) {
    const BString path(Path());
    return SetPath(path.String());
}

bool QBPath::ItemRemoved(BMessage* msg) {
    int64 node = 0;
    if (msg->FindInt64("node", &node) != B_OK)
        return false;
    for (QBItem* slot : fItems) {
        if (slot->RawItem()->node == node) {
            EmptySlot(slot);
            return true;
        }
    }
    return false;
}

bool QBPath::ItemMoved(BMessage* msg) {
    const int64 to = msg->GetInt64("to directory", 0);
    if (msg->GetInt64("from directory", 0) != to)
        return ItemCreated(msg);

    const node_ref file = NodeOf(*msg);
    for (int digit = 0; digit < 10; ++digit) {
        QBItem* slot = fItems[digit];
        if (slot->NodeRef() != file || slot->RawItem()->ref.directory != to)
            continue;
        slot->SetValid(false);
        return FillSlot(slot, digit);
    }
    return AdoptRenamed(msg);
}

// Fills an empty slot with the first complete bookmark in the directory that carries its digit.
bool QBPath::FillSlot(QBItem* slot, int digit) {
    bool filled = false;
    Walk(BEntry(Path(), false), Links::Left, [&](BEntry& entry, const char* path) {
        filled = GetNumber(path) == digit && entry.IsFile() && slot->SetFile(entry, path);
        return !filled;
    });
    if (filled)
        slot->SetValid(true);
    else
        EmptySlot(slot);
    return filled;
}

// A file that filled no slot has been renamed: it fills an empty one if its new name says so.
bool QBPath::AdoptRenamed(const BMessage* msg) {
    Trace(__PRETTY_FUNCTION__, "Not an existing item");
    const entry_ref ref(msg->GetInt32("device", -1), msg->GetInt64("to directory", -1),
                        msg->GetString("name", ""));
    BEntry entry(&ref, false);
    BPath path;
    if (entry.InitCheck() != B_OK || entry.GetPath(&path) != B_OK)
        return false;
    const int digit = GetNumber(path.Path());
    if (digit < 0 || fItems[digit]->IsValid())
        return false;
    QBItem* slot = fItems[digit];
    slot->SetFile(entry, path.Path());
    slot->SetValid(true);
    return true;
}

bool QBPath::ItemRenamed(BMessage* msg) {
    const node_ref file = NodeOf(*msg);
    for (QBItem* slot : fItems) {
        if (slot->NodeRef() != file)
            continue;
        slot->SetValid(false);
        // The slot's own path is that of the last complete bookmark, not of one that becomes it
        // now.
        const entry_ref ref = slot->Ref();
        const BEntry entry(&ref);
        BPath path;
        if (entry.GetPath(&path) == B_OK && slot->SetFile(entry, path.Path()))
            slot->SetValid(true);
        return true;
    }
    return false;
}

void QBPath::UpdateMenu() {
    for (QBItem* slot : fItems)
        slot->UpdateItem();
}

// A file that is gone already must not keep the others unwatched.
bool QBPath::Watch(bool folder, bool items) {
    bool all = true;
    if (items) {
        for (QBItem* slot : fItems)
            all = (!slot->IsValid() || slot->Watch(fMessenger)) && all;
    }
    if (folder)
        all = fWatch.Start(fRaw.Node(), kDirectoryFlags, fMessenger) == B_OK && all;
    return all;
}

void QBPath::StopWatching(bool items) {
    fWatch.Stop();
    if (!items)
        return;
    for (QBItem* slot : fItems)
        slot->StopWatching(fMessenger);
}

status_t QBPath::WatchStatus() const {
    if (fWatch.Status() != B_OK)
        return fWatch.Status();
    for (const QBItem* slot : fItems) {
        if (slot->WatchStatus() != B_OK)
            return slot->WatchStatus();
    }
    return B_OK;
}

void QBPath::SetTarget(BHandler* target) {
    fTarget = target;
    for (QBItem* slot : fItems)
        slot->SetTarget(target);
}
