#pragma once

#include "kits/app/Messenger.h"
#include "kits/storage/Path.h"
#include "kits/support/String.h"
#include "quillbar/store/Item.h"
#include "quillbar/store/NodeWatch.h"

class BEntry;
class BHandler;
class BMessage;
class QBMenu;
class QBTitleItem;

// One of the ten folders: its directory, its ten slots and the menu that shows them, which always
// holds the title, a separator and the slots' items in order. Numbers count from one.
//
// The bar window's thread only, with the store locked.
class QBPath {
public:
    // Looks for its directory in the bookmark root, or makes one. If the root cannot be used, the
    // menu shows ten empty slots. Notifications go to `messenger`, if it has a target.
    QBPath(int number, BHandler* target, BMessenger messenger = BMessenger());

    // Bound to the directory at `path`.
    QBPath(const char* path, int number, BHandler* target, BMessenger messenger = BMessenger());

    // The watches end, and the menu and its items go with the folder.
    ~QBPath();

    QBPath(const QBPath&) = delete;

    // Makes the directory the folder's, watches it if there is a messenger, and reads it and its
    // files. In place of a directory that is missing the folder takes the one in the root that has
    // its digit, or else makes "N -" in the same parent. On failure all slots are empty.
    bool SetPath(const char* path);

    // Looks for the directory by its digit and makes it if there is none.
    bool FindYourSelf();
    // The same with the directory found already; the empty string if there is none.
    bool SetFound(const BString& path);

    // Whether the directory was there no more when it was to be read, as while it is renamed.
    bool HasJustGone() const { return fReadStatus == B_ENTRY_NOT_FOUND; }

    // Apply a notification of the node monitor. They tell whether this folder took it.
    bool ItemCreated(BMessage* msg); // an entry appeared in the directory
    bool ItemRemoved(BMessage* msg); // an entry left it
    bool ItemMoved(BMessage* msg);   // an entry was renamed in it
    bool ItemRenamed(BMessage* msg); // an attribute of a slot's file changed

    // Labels the slots again.
    void UpdateMenu();

    // Empties all slots and ends their watches.
    void EmptySlots();

    // Node monitoring of the filled slots and of the directory. False if one of them failed.
    bool Watch(bool folder, bool items);
    void StopWatching(bool items);
    // Of the directory, or of the first file whose watch failed.
    status_t WatchStatus() const;
    bool IsWatched() const { return fWatch.IsOn(fRaw.Node()); }

    // Reads the directory again if a change could have been missed: it could not be watched, or not
    // be read.
    void Refresh();

    // Whether the folder is bound to an empty directory that was made for want of another.
    bool HasPlaceholder() const;

    // Where notifications go from the next SetPath() on.
    void SetMessageTarget(BMessenger messenger);

    // Where the slots' menu items send.
    void SetTarget(BHandler* target);
    BHandler* Target() const { return fTarget; }

    QBMenu* Menu() { return fMenu; }
    QBItem** Items() { return fItems; }
    raw_item* RawItem() { return &fRaw; }
    const char* Path() const { return fPath.Path(); }
    const char* Leaf() const { return fPath.Leaf(); }
    const char* Name() const { return fName.String(); }

private:
    void CreateMenu();
    status_t Read(const char* path);
    status_t Follow(const BEntry& entry);
    status_t FindSuccessor(BPath& path) const;
    status_t ReadSlots(const BEntry& directory);
    void EmptySlot(QBItem* slot);
    bool FillSlot(QBItem* slot, int digit);
    bool IsFollowed() const;
    bool AdoptRenamed(const BMessage* msg);

    BString fName;
    raw_item fRaw;
    BPath fPath;
    int32 fNumber;
    NodeWatch fWatch;
    status_t fReadStatus = B_NO_INIT;
    BHandler* fTarget;
    BMessenger fMessenger;
    QBItem* fItems[10] = {};
    QBTitleItem* fTitleItem = nullptr;
    QBMenu* fMenu = nullptr;
};
