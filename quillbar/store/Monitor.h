#pragma once

#include <memory>

#include "kits/app/Message.h"
#include "kits/app/MessageRunner.h"
#include "kits/app/Messenger.h"
#include "quillbar/store/NodeWatch.h"

class BEntry;
class BHandler;
class QBPath;

// The store of bookmarks: the ten folders, and what keeps them in step with the disk. Removals are
// not applied one by one: one second after the last, all folders are read again.
//
// While the root is no directory that can be read, the menus are empty and nothing is written; the
// user is warned once, and the root is tried again when its parent changes and every ten seconds.
//
// The bar window's thread only, with the store locked.
class QBMonitor {
public:
    // Makes the root and the folders that are missing, watches them and reads them. The slots' menu
    // items send to `target`, notifications go to `messenger`. When the root cannot be made or
    // read, tells the user and ends the program.
    QBMonitor(BHandler* target, BMessenger messenger);

    // The folders go, and with them the watches of their files; a rebuild that is due is dropped.
    virtual ~QBMonitor();

    QBMonitor(const QBMonitor&) = delete;

    // Applies a notification of the node monitor. A rebuild comes as one that the store sends to
    // itself; a message without "opcode" has the folders read again of which a change could have
    // been missed. Anything else is ignored. Always true.
    bool HandleNodeMessage(BMessage* msg);

    // Labels all slots again.
    void UpdateMenus();

    // Node monitoring of the root, the folders and the filled slots. False if one of them failed.
    bool Watch();
    void StopWatching(bool folders, bool items);

private:
    void FindRootOrEnd();
    void BindFolders(BHandler* target);
    void WarnWithoutAttributes() const;
    const char* LimitFile() const;
    void CheckLimit();
    void ForgetTwins();

    void Apply(int32 opcode, BMessage* msg);
    QBPath* FolderOfArrival(const BMessage& msg);
    void Arrived(QBPath* folder, BMessage* msg);
    void DropWaitingArrivals(const QBPath* folder);
    void EntryCreated(BMessage* msg);
    void EntryRemoved();
    void EntryMoved(BMessage* msg);
    void FolderMoved(int64 from, int64 to, QBPath* folder, const BMessage& msg);
    void BookmarkMoved(int64 from, int64 to, BMessage* msg);
    void AttributeChanged(BMessage* msg);

    void Rebuild();
    void RestartStore();
    bool WatchRoot();
    void ReadRoot();
    void WaitForRoot();
    bool IsOfParent(const BMessage& msg) const;
    bool Rebind(QBPath* folder);
    void RebindOrEnd(QBPath* folder);
    void ReplacePlaceholder(const BMessage& msg);
    void FollowRoot(const BEntry& root);
    QBPath* FolderOf(int64 directory);
    QBPath* FirstFolderOf(int64 directory, int64 other);

    raw_item fRaw;
    NodeWatch fWatch;

public:
    // By digit; all ten are there.
    QBPath* fPaths[10];

private:
    BMessenger fMessenger;
    std::unique_ptr<BMessageRunner> fRunner;
    std::unique_ptr<BMessage> fRunnerMsg;
    // There while the root cannot be used.
    std::unique_ptr<BMessageRunner> fRetry; // sends rebuilds; only they make a missing root
    NodeWatch fParentWatch;
    node_ref fParent;
    bool fHasWarnedOfLimit = false;
};
