#include "quillbar/store/Monitor.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <set>
#include <span>
#include <utility>

#include "kits/app/AppDefs.h"
#include "kits/app/Looper.h"
#include "kits/app/MessageQueue.h"
#include "kits/storage/Directory.h"
#include "kits/storage/Entry.h"
#include "kits/storage/Node.h"
#include "kits/storage/NodeMonitor.h"
#include "kits/storage/Path.h"
#include "quillbar/base/Settings.h"
#include "quillbar/base/Trace.h"
#include "quillbar/bookmarks/StoreNames.h"
#include "quillbar/store/Alerts.h"
#include "quillbar/store/Item.h"
#include "quillbar/store/Path.h"

namespace {

constexpr uint32 kOpcodeRebuild = 'qbRM';
constexpr bigtime_t kRebuildDelay = 1'000'000;
constexpr int32 kRebuildMessages = 2;
constexpr bigtime_t kRetryInterval = 10'000'000;
constexpr uint32 kDirectoryFlags = B_WATCH_NAME | B_WATCH_DIRECTORY;

// Ends the program without asking the windows. Other threads run on until the process is gone, so
// nothing may be torn down under them.
[[noreturn]] void EndWith(const char* error) {
    AlertError(error);
    if (gSettings)
        gSettings->Save();
    std::fflush(stdout);
    std::_Exit(EXIT_FAILURE);
}

bool CanBeRead(const BEntry& root) {
    return BDirectory(&root).InitCheck() == B_OK;
}

} // namespace

QBMonitor::QBMonitor(BHandler* target, BMessenger messenger)
    : fPaths{}
    , fMessenger(messenger) {
    fRunnerMsg = std::make_unique<BMessage>(static_cast<uint32>(B_NODE_MONITOR));
    fRunnerMsg->AddInt32("opcode", kOpcodeRebuild);
    FindRootOrEnd();
    WarnWithoutAttributes();
    BindFolders(target);
    CheckLimit();
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
    if (!CanBeRead(root))
        EndWith("QBMonitor failed to initialized because InitCheck() failed.");
    FollowRoot(root);
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

// The directories are watched before any file is: watches may be scarce.
void QBMonitor::BindFolders(BHandler* target) {
    FolderPaths paths;
    FindFolders(paths);
    NodeWatch early[10];
    for (int digit = 0; digit < 10; ++digit) {
        const BEntry entry(paths[static_cast<size_t>(digit)].String(), false);
        BNode node;
        raw_item raw;
        if (early[digit].Start(entry, kDirectoryFlags, fMessenger, node, raw) != B_OK)
            fPaths[digit] = new QBPath(digit + 1, target, fMessenger);
    }
    for (int digit = 0; digit < 10; ++digit) {
        const char* path = paths[static_cast<size_t>(digit)].String();
        if (!fPaths[digit])
            fPaths[digit] = new QBPath(path, digit + 1, target, fMessenger);
    }
}

// The file with the system's limit that a watch of the store has met; null if none has.
const char* QBMonitor::LimitFile() const {
    const char* file = watch_limit_file(fWatch.Status());
    for (const QBPath* folder : fPaths)
        file = file ? file : watch_limit_file(folder->WatchStatus());
    return file;
}

// Where watches are scarce the files give up theirs for a directory that got none.
void QBMonitor::CheckLimit() {
    const char* file = LimitFile();
    if (!file)
        return;
    const bool all = std::all_of(std::begin(fPaths), std::end(fPaths),
                                 [](const QBPath* folder) { return folder->IsWatched(); });
    if (!all || !fWatch.IsOn(fRaw.Node())) {
        StopWatching(true, true);
        WatchRoot();
        for (QBPath* folder : fPaths)
            folder->Watch(true, false);
    }
    if (std::exchange(fHasWarnedOfLimit, true))
        return;
    BString text;
    text
        << "The system does not let Quillbar watch all bookmarks, so a change that another program "
        << "makes may be shown only when its folder's menu is opened! Put a greater number into "
        << file << " and restart Quillbar.";
    AlertWarning(text.String());
}

// Its number is known even if it cannot be watched.
void QBMonitor::FollowRoot(const BEntry& root) {
    BNode node;
    fWatch.Start(root, kDirectoryFlags, fMessenger, node, fRaw);
}

bool QBMonitor::WatchRoot() {
    return fWatch.Start(fRaw.Node(), kDirectoryFlags, fMessenger) == B_OK;
}

bool QBMonitor::Watch() {
    bool all = WatchRoot();
    for (QBPath* folder : fPaths)
        all = folder->Watch(true, true) && all;
    return all;
}

void QBMonitor::StopWatching(bool folders, bool items) {
    fWatch.Stop();
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
    if (fRetry && IsOfParent(*msg))
        ReadRoot();
    else if (msg->FindInt32("opcode", &opcode) == B_OK)
        Apply(opcode, msg);
    else if (!fRetry)
        for (QBPath* folder : fPaths)
            folder->Refresh();
    ForgetTwins();
    CheckLimit();
    return true;
}

void QBMonitor::Apply(int32 opcode, BMessage* msg) {
    if (opcode == B_ENTRY_REMOVED)
        EntryRemoved();
    else if (opcode == kOpcodeRebuild)
        Rebuild();
    else if (fRunner || fRetry)
        return; // The rebuild that is due covers whatever happens until then.
    else if (opcode == B_ENTRY_CREATED)
        EntryCreated(msg);
    else if (opcode == B_ENTRY_MOVED)
        EntryMoved(msg);
    else if (opcode == B_ATTR_CHANGED)
        AttributeChanged(msg);
}

// An empty slot keeps the identity of its last file, to know it again. Once that file fills another
// slot, its changes are for that one.
void QBMonitor::ForgetTwins() {
    std::set<node_ref> filled;
    for (const bool isFilled : {true, false}) {
        for (QBPath* folder : fPaths) {
            for (QBItem* slot : std::span(folder->Items(), 10)) {
                if (slot->IsValid() && isFilled)
                    filled.insert(slot->NodeRef());
                else if (!slot->IsValid() && !isFilled && filled.contains(slot->NodeRef()))
                    slot->Forget();
            }
        }
    }
}

QBPath* QBMonitor::FolderOf(int64 directory) {
    return FirstFolderOf(directory, directory);
}

QBPath* QBMonitor::FirstFolderOf(int64 directory, int64 other) {
    const auto found = std::find_if(std::begin(fPaths), std::end(fPaths), [&](QBPath* folder) {
        const int64 node = folder->RawItem()->node;
        return node == directory || node == other;
    });
    return found == std::end(fPaths) ? nullptr : *found;
}

// The folder that a message has read, because an entry came into it; null for any other message.
QBPath* QBMonitor::FolderOfArrival(const BMessage& msg) {
    const int32 opcode = msg.GetInt32("opcode", 0);
    if (opcode == B_ENTRY_CREATED)
        return FolderOf(msg.GetInt64("directory", -1));
    const int64 from = msg.GetInt64("from directory", -1);
    const int64 to = msg.GetInt64("to directory", -1);
    if (opcode != B_ENTRY_MOVED || from == to || from == fRaw.node)
        return nullptr;
    // Of the two folders of a move the first one takes the message.
    QBPath* const first = FirstFolderOf(to, from);
    return first && first->RawItem()->node == to ? first : nullptr;
}

// One scan covers all arrivals in the folder that wait in the queue: each by itself would cost the
// square of their number.
void QBMonitor::Arrived(QBPath* folder, BMessage* msg) {
    DropWaitingArrivals(folder);
    folder->ItemCreated(msg);
    folder->UpdateMenu();
}

void QBMonitor::DropWaitingArrivals(const QBPath* folder) {
    BLooper* looper = nullptr;
    fMessenger.Target(&looper);
    BMessageQueue* queue = looper ? looper->MessageQueue() : nullptr;
    if (!queue || !queue->Lock())
        return;
    for (int32 index = 0; BMessage* waiting = queue->FindMessage(index);) {
        if (waiting->what == B_NODE_MONITOR && FolderOfArrival(*waiting) == folder &&
            queue->RemoveMessage(waiting))
            delete waiting;
        else
            ++index;
    }
    queue->Unlock();
}

void QBMonitor::EntryCreated(BMessage* msg) {
    Trace(__PRETTY_FUNCTION__, "An entry was created");
    if (QBPath* folder = FolderOfArrival(*msg))
        Arrived(folder, msg);
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
    fRunner = nullptr;
    BEntry root;
    FindRoot(root);
    if (!root.Exists()) {
        const status_t status = create_directory(kBookmarkRoot, kDirectoryMode);
        if (status != B_OK && !root.Exists())
            EndWith("Could not create bookmark directory!!!");
        if (FindRoot(root) != B_OK)
            EndWith("BEntry::SetTo() failed! Could not find bookmark directory!");
    }
    ReadRoot();
}

// The renamed or moved root is left alone.
void QBMonitor::RestartStore() {
    Trace(__PRETTY_FUNCTION__, "Restarting the store");
    create_directory(kBookmarkRoot, kDirectoryMode);
    ReadRoot();
}

// Everything anew, each directory watched before it is read.
void QBMonitor::ReadRoot() {
    BEntry root;
    FindRoot(root);
    if (!CanBeRead(root))
        return WaitForRoot();
    fRetry = nullptr;
    fParentWatch.Stop();
    FollowRoot(root);
    FolderPaths found;
    FindFolders(found);
    for (size_t digit = 0; digit < found.size(); ++digit) {
        fPaths[digit]->SetFound(found[digit]);
        fPaths[digit]->UpdateMenu();
    }
}

void QBMonitor::WaitForRoot() {
    StopWatching(true, true);
    for (QBPath* folder : fPaths)
        folder->EmptySlots();
    BPath parent;
    if (BPath(kBookmarkRoot).GetParent(&parent) == B_OK &&
        BEntry(parent.Path()).GetNodeRef(&fParent) == B_OK)
        fParentWatch.Start(fParent, kDirectoryFlags, fMessenger);
    if (fRetry)
        return;
    fRetry = std::make_unique<BMessageRunner>(fMessenger, fRunnerMsg.get(), kRetryInterval);
    BString text;
    text << BPath(kBookmarkRoot).SystemPath().c_str()
         << " is not a folder that can be read, so there are no bookmarks! Quillbar shows them "
            "again "
         << "as soon as it is one.";
    AlertWarning(text.String());
}

bool QBMonitor::IsOfParent(const BMessage& msg) const {
    for (const char* field : {"directory", "from directory", "to directory"}) {
        if (msg.GetInt64(field, -1) == fParent.node)
            return true;
    }
    return false;
}

// Has a folder look for its directory; whichever it finds is watched from now on.
bool QBMonitor::Rebind(QBPath* folder) {
    const bool found = folder->FindYourSelf();
    folder->UpdateMenu();
    return found;
}

void QBMonitor::RebindOrEnd(QBPath* folder) {
    BEntry root;
    // The message of another rename is on its way.
    if (Rebind(folder) || folder->HasJustGone())
        return;
    if (FindRoot(root) == B_OK && CanBeRead(root))
        EndWith("Ah! Folder couldn't find itself! This shouldn't happen! Fatal error!");
    WaitForRoot();
}

// The directory that was made for want of another does not hide one that comes back, or that gets
// its digit.
void QBMonitor::ReplacePlaceholder(const BMessage& msg) {
    const int digit = GetNumber(msg.GetString("name", ""));
    if (digit >= 0 && fPaths[digit]->HasPlaceholder())
        Rebind(fPaths[digit]);
}

void QBMonitor::EntryMoved(BMessage* msg) {
    const int64 from = msg->GetInt64("from directory", 0);
    const int64 to = msg->GetInt64("to directory", 0);
    const int64 node = msg->GetInt64("node", 0);
    if (from == to ? from == fRaw.ref.directory : node == fRaw.node) {
        Trace(__PRETTY_FUNCTION__, from == to ? "The root was renamed" : "The root was moved");
        RestartStore();
    } else if (from == fRaw.node || to == fRaw.node) {
        FolderMoved(from, to, FolderOf(node), *msg);
    } else {
        BookmarkMoved(from, to, msg);
    }
}

void QBMonitor::FolderMoved(int64 from, int64 to, QBPath* folder, const BMessage& msg) {
    if (from == to) {
        Trace(__PRETTY_FUNCTION__, "A folder was renamed");
        if (folder)
            RebindOrEnd(folder);
    } else if (from == fRaw.node) {
        Trace(__PRETTY_FUNCTION__, "An entry left the root");
        if (folder)
            Rebind(folder);
        return;
    } else {
        Trace(__PRETTY_FUNCTION__, "An entry came into the root");
    }
    ReplacePlaceholder(msg);
}

void QBMonitor::BookmarkMoved(int64 from, int64 to, BMessage* msg) {
    Trace(__PRETTY_FUNCTION__, from == to ? "A bookmark was renamed" : "A bookmark was moved");
    if (QBPath* folder = FolderOfArrival(*msg)) {
        Arrived(folder, msg);
    } else if (QBPath* left = FolderOf(from)) {
        if (from == to)
            left->ItemMoved(msg);
        else
            left->ItemRemoved(msg);
        left->UpdateMenu();
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
