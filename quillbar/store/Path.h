#pragma once

#include "kits/app/Messenger.h"
#include "kits/storage/Path.h"
#include "kits/support/String.h"
#include "quillbar/store/Item.h"
#include "quillbar/store/RawItem.h"

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
    // menu shows ten empty slots.
    QBPath(int number, BHandler* target);

    // Bound to the directory at `path`.
    QBPath(const char* path, int number, BHandler* target);

    // Ends the watches of the filled slots; the menu and its items go with the folder.
    ~QBPath();

    QBPath(const QBPath&) = delete;

    // Makes the directory the folder's and reads it. A directory that is missing is made, as "N -"
    // in the same parent. It is watched if the folder's directory was; its files are not. On
    // failure all slots are empty.
    bool SetPath(const char* path);

    // Looks for the directory by its digit and makes it if there is none.
    bool FindYourSelf();

    // Apply a notification of the node monitor. They tell whether this folder took it.
    bool ItemCreated(BMessage* msg); // an entry appeared in the directory
    bool ItemRemoved(BMessage* msg); // an entry left it
    bool ItemMoved(BMessage* msg);   // an entry was renamed in it
    bool ItemRenamed(BMessage* msg); // an attribute of a slot's file changed

    // Labels the slots again.
    void UpdateMenu();

    // Empties all slots. Ends no watch.
    void EmptySlots();

    // Node monitoring of the filled slots and of the directory, whichever it is until
    // StopWatching(). False if one of them failed.
    bool Watch(bool folder, bool items);
    void StopWatching(bool items);

    // Where notifications go; the watches that run were started with the same one.
    void SetMessageTarget(BMessenger messenger) { fMessenger = messenger; }

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
    void AssembleMenu();
    bool BindTo(BEntry& entry, const char* path);
    void ReadSlots(const BEntry& directory);
    void EmptySlot(QBItem* slot);
    bool FillSlot(QBItem* slot, int digit);
    bool AdoptRenamed(const BMessage* msg);

    BString fName;
    raw_item fRaw;
    BPath fPath;
    int32 fNumber;
    bool fIsWatching = false; // the directory
    BHandler* fTarget;
    BMessenger fMessenger;
    QBItem* fItems[10];
    QBTitleItem* fTitleItem;
    QBMenu* fMenu;
};
