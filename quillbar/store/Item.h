#pragma once

#include "kits/app/Messenger.h"
#include "kits/storage/Path.h"
#include "kits/support/String.h"
#include "quillbar/store/NodeWatch.h"

class BEntry;
class BHandler;
class BMenuItem;
class BMessage;
class QBMenuItem;

// One of the ten slots of a folder: what is known of the bookmark file that fills it, and its item
// in the folder's menu. Folders and slots count from one.
//
// The bar window's thread only, with the store locked.
class QBItem {
public:
    // An empty slot whose menu item sends to `target`.
    QBItem(BHandler* target, int number, int folder);

    // The same, with the file at `path` read into it; it stays empty until SetValid(true).
    QBItem(const char* path, int number, int folder, BHandler* target);

    // The menu item and its message are not the slot's: the menu owns them.
    ~QBItem() = default;

    QBItem(const QBItem&) = delete;

    // Reads the file, which is watched first if there is a messenger. True if it is a complete
    // bookmark; what was read before something was found missing stays. The label and what the menu
    // item sends do not change.
    bool SetFile(const char* path);
    // The same; `entry` is the place that `path` names.
    bool SetFile(const BEntry& entry, const char* path);

    // Fills or empties the slot. Does nothing if it is so already: to relabel a filled slot after
    // SetFile, empty it before.
    void SetValid(bool valid);

    // Labels a filled slot again, after the setting to show URLs has changed.
    void UpdateItem();

    // Where notifications go from the next SetFile() on.
    void SetMessageTarget(const BMessenger& messenger) { fMessenger = messenger; }

    // Node monitoring of the file, also of one that is not a complete bookmark yet.
    bool Watch(BMessenger messenger);
    void StopWatching(BMessenger messenger);
    bool IsWatched() const { return fWatch.IsOn(NodeRef()); }
    status_t WatchStatus() const { return fWatch.Status(); }

    // Gives up the identity of a file that fills another slot.
    void Forget();

    void SetTarget(BHandler* target);

    const char* Path() const { return fPath.Path(); }
    bool IsValid() const { return fValid; }
    BMenuItem* MenuItem();
    raw_item* RawItem() { return &fRaw; }
    node_ref NodeRef() const { return fRaw.Node(); }
    entry_ref Ref() const { return fRaw.ref; }
    const BString& Name() const { return fName; }
    const BString& Url() const { return fUrl; }
    const BString& Keywords() const { return fKeywords; }

    // These change neither label nor message.
    void SetName(const char* name) { fName = name; }
    void SetUrl(const char* url) { fUrl = url; }
    void SetKeywords(const char* keywords) { fKeywords = keywords; }
    void SetNumber(int number) { fNumber = number; }
    void SetFolder(int folder) { fFolder = folder; }

private:
    BString FilledLabel();

    BString fName;
    BString fUrl;
    BString fKeywords;
    int32 fNumber;
    int32 fFolder;
    bool fValid = false;
    BPath fPath;
    raw_item fRaw;
    NodeWatch fWatch;
    BMessenger fMessenger;
    BMessage* fMessage;
    QBMenuItem* fMenuItem;
};
