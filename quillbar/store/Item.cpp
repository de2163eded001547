#include "quillbar/store/Item.h"

#include "kits/app/Message.h"
#include "kits/storage/Entry.h"
#include "kits/storage/Node.h"
#include "kits/storage/NodeMonitor.h"
#include "quillbar/bar/widgets/MenuItem.h"
#include "quillbar/base/Commands.h"
#include "quillbar/base/Settings.h"
#include "quillbar/base/Trace.h"
#include "quillbar/bookmarks/BookmarkFile.h"
#include "quillbar/bookmarks/StoreNames.h"

namespace {

constexpr uint32 kFileFlags = B_WATCH_NAME | B_WATCH_STAT | B_WATCH_ATTR;
constexpr const char* kEmptyLabel = "Add Bookmark Here";

} // namespace

QBItem::QBItem(BHandler* target, int number, int folder)
    : fNumber(number)
    , fFolder(folder)
    , fMessage(new BMessage(kQBAddBookmarkHere))
    , fMenuItem(new QBMenuItem(kEmptyLabel, fMessage)) {
    Trace(__PRETTY_FUNCTION__, "Number = %d, Folder = %d", number, folder);
    fMessage->AddInt32("folder", fFolder);
    fMessage->AddInt32("slot", fNumber);
    SetTarget(target);
}

QBItem::QBItem(const char* path, int number, int folder, BHandler* target)
    : QBItem(target, number, folder) {
    fMenuItem->SetLabel("");
    fMessage->what = QBFolder[fFolder - 1];
    SetFile(path);
}

bool QBItem::SetFile(const char* path) {
    return SetFile(BEntry(path, false), path);
}

bool QBItem::SetFile(const BEntry& entry, const char* path) {
    BNode node;
    if (fWatch.Start(entry, kFileFlags, fMessenger, node, fRaw) != B_OK)
        return false;
    fName = GetName(path);
    if (!ReadBookmark(node, fUrl, fKeywords))
        return false;
    fPath.SetTo(path);
    return true;
}

BString QBItem::FilledLabel() {
    BString label;
    label << fNumber - 1 << " - " << fName;
    if (gSettings->GetShowURL() && fUrl.Length() > 0)
        label << " [" << ParseURL(fUrl) << "]";
    return label;
}

void QBItem::SetValid(bool valid) {
    if (valid == fValid)
        return;
    fValid = valid;
    if (valid) {
        UpdateItem();
        return;
    }
    fMenuItem->SetLabel(kEmptyLabel);
    fMessage->what = kQBAddBookmarkHere;
    fUrl = "";
    fName = "";
    fKeywords = "";
}

void QBItem::UpdateItem() {
    if (!fValid)
        return;
    fMenuItem->SetLabel(FilledLabel().String());
    fMessage->what = QBFolder[fFolder - 1];
}

bool QBItem::Watch(BMessenger messenger) {
    return fWatch.Start(NodeRef(), kFileFlags, messenger) == B_OK;
}

void QBItem::StopWatching(BMessenger) {
    fWatch.Stop();
}

void QBItem::Forget() {
    fWatch.Stop();
    fRaw = raw_item();
}

void QBItem::SetTarget(BHandler* target) {
    fMenuItem->SetTarget(target, nullptr);
}

BMenuItem* QBItem::MenuItem() {
    return fMenuItem;
}
