#include "quillbar/store/Monitor.h"

#include "kits/app/AppDefs.h"
#include "kits/storage/Directory.h"
#include "kits/storage/Entry.h"
#include "kits/storage/NodeMonitor.h"
#include "kits/storage/Path.h"
#include "quillbar/base/Trace.h"
#include "quillbar/store/Alerts.h"
#include "quillbar/store/EndProgram.h"
#include "quillbar/store/Path.h"
#include "quillbar/store/StoreNames.h"
#include "quillbar/store/Walk.h"

namespace {

constexpr uint32 kOpcodeRebuild = 'qbRM';
constexpr bigtime_t kRebuildDelay = 1'000'000;
constexpr int32 kRebuildMessages = 2;

[[noreturn]] void EndWith(const char* error) {
    AlertError(error);
    EndProgram();
}

} // namespace

QBMonitor::QBMonitor(BHandler* target, BMessenger messenger)
    : fPaths{}
    , fMessenger(messenger) {
    FindRootOrEnd();
    WarnWithoutAttributes();
    BindFolders(target);
    fRunnerMsg = std::make_unique<BMessage>(static_cast<uint32>(B_NODE_MONITOR));
    fRunnerMsg->AddInt32("opcode", kOpcodeRebuild);
    Watch();
}

QBMonitor::~QBMonitor() {
    for (QBPath* folder : fPaths)
        delete folder;
}

void QBMonitor::FindRootOrEnd() {
    BEntry root;
    if (FindRoot(root) != B_OK)
        EndWith("QBMonitor failed to initialized because InitCheck() failed.");
    if (!root.Exists()) {
        if (create_directory(kBookmarkRoot, kDirectoryMode) != B_OK)
            EndWith("Could not create bookmark directory!");
        if (FindRoot(root) != B_OK)
            EndWith("Failed to find bookmar directory!");
    }
    SetRaw(root);
}

void QBMonitor::WarnWithoutAttributes() const {
    BEntry root;
    BVolume volume;
    if (FindRoot(root) != B_OK || root.GetVolume(&volume) != B_OK || volume.KnowsAttr())
        return;
    BString text;
    text << "The disk with the folder " << BPath(kBookmarkRoot).SystemPath().c_str()
         << " does not keep attributes, "
         << "so no bookmark can be stored there! Move the folder to a disk that keeps them (ext4, "
         << "XFS or Btrfs), put a symbolic link in its place and restart Quillbar.";
    AlertWarning(text.String());
}

void QBMonitor::BindFolders(BHandler* target) {
    BEntry root;
    FindRoot(root);
    Walk(root, Links::Left, [&](BEntry& entry, const char* path) {
        const int digit = GetNumber(path);
        if (digit < 0 || fPaths[digit] || !entry.IsDirectory())
            return true;
        fPaths[digit] = new QBPath(path, digit + 1, target);
        fPaths[digit]->SetMessageTarget(fMessenger);
        return true;
    });
    for (int digit = 0; digit < 10; ++digit) {
        if (fPaths[digit])
            continue;
        fPaths[digit] = new QBPath(digit + 1, target);
        fPaths[digit]->SetMessageTarget(fMessenger);
    }
}

void QBMonitor::SetRaw(const BEntry& root) {
    node_ref node;
    root.GetRef(&fRaw.ref);
    root.GetNodeRef(&node);
    fRaw.node = node.node;
}

bool QBMonitor::WatchRoot() {
    const node_ref root = fRaw.Node();
    return watch_node(&root, B_WATCH_NAME | B_WATCH_DIRECTORY, fMessenger) == B_OK;
}

bool QBMonitor::Watch() {
    bool all = WatchRoot();
    for (QBPath* folder : fPaths)
        all = folder->Watch(true, true) && all;
    return all;
}

void QBMonitor::StopWatching(bool folders, bool items) {
    const node_ref root = fRaw.Node();
    watch_node(&root, B_STOP_WATCHING, fMessenger);
    if (!folders)
        return;
    for (QBPath* folder : fPaths)
        folder->StopWatching(items);
}

void QBMonitor::UpdateMenus() {
    for (QBPath* folder : fPaths)
        folder->UpdateMenu();
}

bool QBMonitor::HandleNodeMessage(BMessage* msg) {
    int32 opcode = 0;
    if (msg->FindInt32("opcode", &opcode) != B_OK)
        return true;
    // A rebuild that is due covers whatever happens until then.
    const bool rebuildIsDue = fRunner != nullptr;
    switch (opcode) {
    case B_ENTRY_REMOVED:
        EntryRemoved();
        break;
    case kOpcodeRebuild:
        Rebuild();
        break;
    case B_ENTRY_CREATED:
        if (!rebuildIsDue)
            EntryCreated(msg);
        break;
    case B_ENTRY_MOVED:
        if (!rebuildIsDue)
            EntryMoved(msg);
        break;
    case B_ATTR_CHANGED:
        if (!rebuildIsDue)
            AttributeChanged(msg);
        break;
    default:
        break;
    }
    return true;
}

QBPath* QBMonitor::FolderOf(int64 directory) {
    for (QBPath* folder : fPaths) {
        if (folder->RawItem()->node == directory)
            return folder;
    }
    return nullptr;
}

void QBMonitor::EntryCreated(BMessage* msg) {
    Trace(__PRETTY_FUNCTION__, "An entry was created");
    int64 directory = 0;
    if (msg->FindInt64("directory", &directory) != B_OK || directory == fRaw.node)
        return;
    if (QBPath* folder = FolderOf(directory)) {
        folder->ItemCreated(msg);
        folder->UpdateMenu();
    }
}

void QBMonitor::EntryRemoved() {
    Trace(__PRETTY_FUNCTION__, "An entry was removed");
    fRunner = std::make_unique<BMessageRunner>(fMessenger, fRunnerMsg.get(), kRebuildDelay,
                                               kRebuildMessages);
    if (fRunner->InitCheck() == B_OK)
        return;
    fRunner = nullptr;
    AlertWarning("I couldn't create the BMessageRunner to handle the removal of the bookmark "
                 "directory! Restart Quillbar to rebuild the menus.");
}

void QBMonitor::Rebuild() {
    Trace(__PRETTY_FUNCTION__, "Rebuilding the store");
    StopWatching(true, true);
    BEntry root;
    FindRoot(root);
    if (!root.Exists()) {
        if (create_directory(kBookmarkRoot, kDirectoryMode) != B_OK)
            EndWith("Could not create bookmark directory!!!");
        if (FindRoot(root) != B_OK)
            EndWith("BEntry::SetTo() failed! Could not find bookmark directory!");
    }
    SetRaw(root);
    WatchRoot();
    RereadFolders();
    fRunner = nullptr;
}

// The renamed or moved root is left alone.
void QBMonitor::RestartStore() {
    Trace(__PRETTY_FUNCTION__, "Restarting the store");
    StopWatching(true, true);
    if (create_directory(kBookmarkRoot, kDirectoryMode) != B_OK)
        return;
    BEntry root;
    FindRoot(root);
    SetRaw(root);
    WatchRoot();
    RereadFolders();
}

void QBMonitor::RereadFolders() {
    for (QBPath* folder : fPaths) {
        folder->EmptySlots();
        folder->Watch(true, false);
        Rebind(folder);
    }
}

// Has a folder look for its directory. Whichever it finds is watched from now on, and the old one
// no longer, unless its number is that of another folder's new directory: file systems use them
// again.
bool QBMonitor::Rebind(QBPath* folder) {
    const node_ref before = folder->RawItem()->Node();
    const bool found = folder->FindYourSelf();
    if (!FolderOf(before.node))
        watch_node(&before, B_STOP_WATCHING, fMessenger);
    folder->Watch(false, true);
    folder->UpdateMenu();
    return found;
}

void QBMonitor::EntryMoved(BMessage* msg) {
    int64 from = 0;
    int64 to = 0;
    int64 node = 0;
    msg->FindInt64("from directory", &from);
    msg->FindInt64("to directory", &to);
    msg->FindInt64("node", &node);
    if (from == to)
        EntryRenamedIn(from, node, msg);
    else
        EntryMovedBetween(from, to, node, msg);
}

void QBMonitor::EntryRenamedIn(int64 directory, int64 node, BMessage* msg) {
    if (directory == fRaw.ref.directory) {
        Trace(__PRETTY_FUNCTION__, "The root was renamed");
        RestartStore();
    } else if (directory == fRaw.node) {
        Trace(__PRETTY_FUNCTION__, "A folder was renamed");
        QBPath* folder = FolderOf(node);
        if (!folder)
            return;
        if (!Rebind(folder))
            EndWith("Ah! Folder couldn't find itself! This shouldn't happen! Fatal error!");
    } else if (QBPath* folder = FolderOf(directory)) {
        Trace(__PRETTY_FUNCTION__, "A bookmark was renamed");
        folder->ItemMoved(msg);
        folder->UpdateMenu();
    }
}

void QBMonitor::EntryMovedBetween(int64 from, int64 to, int64 node, BMessage* msg) {
    if (node == fRaw.node) {
        Trace(__PRETTY_FUNCTION__, "The root was moved");
        RestartStore();
        return;
    }
    if (from == fRaw.node) {
        Trace(__PRETTY_FUNCTION__, "An entry left the root");
        if (QBPath* folder = FolderOf(node))
            Rebind(folder);
        return;
    }
    if (to == fRaw.node) {
        Trace(__PRETTY_FUNCTION__, "An entry came into the root");
        return;
    }
    Trace(__PRETTY_FUNCTION__, "A bookmark was moved");
    for (QBPath* folder : fPaths) {
        const int64 directory = folder->RawItem()->node;
        if (directory != to && directory != from)
            continue;
        if (directory == to)
            folder->ItemCreated(msg);
        else
            folder->ItemRemoved(msg);
        folder->UpdateMenu();
        return;
    }
}

void QBMonitor::AttributeChanged(BMessage* msg) {
    Trace(__PRETTY_FUNCTION__, "An attribute changed");
    for (QBPath* folder : fPaths) {
        if (folder->ItemRenamed(msg)) {
            folder->UpdateMenu();
            return;
        }
    }
}
