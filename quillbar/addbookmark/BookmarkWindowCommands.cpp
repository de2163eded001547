#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/app/MessageQueue.h"
#include "kits/interface/controls/Alert.h"
#include "kits/interface/controls/Button.h"
#include "kits/interface/menus/MenuItem.h"
#include "kits/interface/text/TextControl.h"
#include "kits/kernel/Locker.h"
#include "kits/storage/Entry.h"
#include "quillbar/addbookmark/AddBookmarkView.h"
#include "quillbar/addbookmark/BookmarkWindow.h"
#include "quillbar/addbookmark/SaveBookmark.h"
#include "quillbar/bar/widgets/Menu.h"
#include "quillbar/base/Commands.h"
#include "quillbar/bookmarks/StoreNames.h"
#include "quillbar/store/Alerts.h"
#include "quillbar/store/Monitor.h"
#include "quillbar/store/Path.h"

namespace {

constexpr const char* kTrackerSignature = "application/x-vnd.Be-TRAK";

void Say(const BString& text, const char* button) {
    auto* alert =
        new BAlert("", text.String(), button, nullptr, nullptr, B_WIDTH_AS_USUAL, B_INFO_ALERT);
    alert->Go();
}

// What failed, and then why.
void Report(const QBSaveOutcome& outcome) {
    const auto report = [&](const char* text, const char* button) {
        BString whole(text);
        if (!outcome.reason.IsEmpty())
            whole << "\n\n" << outcome.reason;
        Say(whole, button);
    };
    switch (outcome.result) {
    case QBSaveResult::Saved:
        break;
    case QBSaveResult::NoFolder:
        return report("Could not find the specified folder! Could not add item!", "ARGH!");
    case QBSaveResult::NotCreated:
        return report("Could not create new item!", "ARGH!");
    case QBSaveResult::NotTyped:
        return report("Could not set the item's mime type!", "Ouch!");
    case QBSaveResult::NotRenamed:
        return report("Could not change the item's name!", "Ouch!");
    case QBSaveResult::Incomplete:
        return AlertWarning(outcome.reason.String());
    }
}

} // namespace

void QBBookmarkWindow::MessageReceived(BMessage* message) {
    if (HandleCode(message))
        return;
    switch (message->what) {
    case kQBAddBookmarkHere:
        Choose(message->GetInt32("folder", 0), message->GetInt32("slot", 0));
        break;
    case kQBTakeLink:
        TakeLink(*message);
        break;
    case kQBAddIt:
        AddBookmark();
        break;
    case kQBCancelAdd:
        Quit();
        break;
    case kQBShowInTracker:
        ShowInTracker();
        break;
    case B_NODE_MONITOR:
        StoreChanged();
        break;
    default:
        BWindow::MessageReceived(message);
    }
}

bool QBBookmarkWindow::HandleCode(BMessage* message) {
    for (int32 digit = 0; digit < 10; ++digit) {
        if (message->what == QBFolder[digit]) {
            HandleFolderCode(digit, message);
            return true;
        }
        if (message->what == QBSlot[digit]) {
            fSlot = digit + 1;
            if (fFolder > 0)
                UpdateAll();
            return true;
        }
    }
    return false;
}

void QBBookmarkWindow::HandleFolderCode(int32 digit, BMessage* message) {
    int32 slot = 0;
    if (message->HasPointer("button")) {
        BrowseFolder(digit);
    } else if (message->FindInt32("slot", &slot) == B_OK) {
        Choose(digit + 1, slot);
    } else {
        fFolder = digit + 1;
        UpdateAll();
    }
}

void QBBookmarkWindow::Choose(int32 folder, int32 slot) {
    if (folder < 1 || folder > 10 || slot < 1 || slot > 10)
        return;
    fFolder = folder;
    fSlot = slot;
    FolderItem(fFolder - 1)->SetMarked(true);
    SlotItem(fSlot - 1)->SetMarked(true);
    UpdateAll();
}

// Without a folder what is chosen stays chosen.
void QBBookmarkWindow::TakeLink(const BMessage& message) {
    Activate();
    if (!MayLoseTexts())
        return;
    if (const int32 folder = message.GetInt32("folder", 0); folder > 0) {
        if (fSlot > 0)
            SlotItem(fSlot - 1)->SetMarked(false);
        fFolder = folder;
        fSlot = message.GetInt32("slot", 0);
        FolderItem(fFolder - 1)->SetMarked(true);
    }
    fHoldsLink = true;
    FillIn(NameOfTitle(message.GetString("name", "")).String(), message.GetString("url", ""), "");
    if (fFolder > 0)
        UpdateAll();
    fAddView->fEditInfo->fNameText->MakeFocus(true);
}

// Asks if anything was typed.
bool QBBookmarkWindow::MayLoseTexts() const {
    QBBookmarkText now = Texts();
    now.folder = fFilledIn.folder;
    now.slot = fFilledIn.slot;
    if (now == fFilledIn)
        return true;
    auto* alert = new BAlert("",
                             "What you have typed has not been added yet. Shall the dropped link "
                             "replace it?",
                             "Replace", "Keep", nullptr, B_WIDTH_AS_USUAL, B_INFO_ALERT);
    return alert->Go() == 0;
}

// What is chosen comes here and not to the bar, which cannot see that: the store stays locked.
void QBBookmarkWindow::BrowseFolder(int32 digit) {
    fBar.lock.Lock();
    QBPath** folders = fBar.store.fPaths;
    BHandler* const before = folders[0]->Target();
    for (int i = 0; i < 10; ++i)
        folders[i]->SetTarget(this);
    const BButton* button = fAddView->fBrowse->fButtons[digit];
    const BPoint point = button->ConvertToScreen(button->Bounds().LeftBottom());
    folders[digit]->Refresh();
    folders[digit]->Menu()->Go(point, true, true, false);
    for (int i = 0; i < 10; ++i)
        folders[i]->SetTarget(before);
    fBar.lock.Unlock();
}

void QBBookmarkWindow::StoreChanged() {
    // Of a burst of changes the last one tells all.
    BMessageQueue* queue = MessageQueue();
    queue->Lock();
    const bool isLast = queue->FindMessage(B_NODE_MONITOR, 0) == nullptr;
    queue->Unlock();
    if (!isLast)
        return;
    UpdateFolderStrings();
    if (fFolder <= 0)
        return;
    UpdateSlotStrings();
    if (!fKeepsTexts)
        UpdateScreen();
}

void QBBookmarkWindow::ShowInTracker() {
    entry_ref ref;
    const BEntry root(kBookmarkRoot, false);
    if (root.InitCheck() != B_OK || root.GetRef(&ref) != B_OK)
        return;
    BMessage message(B_REFS_RECEIVED);
    message.AddRef("refs", &ref);
    BMessenger(kTrackerSignature).SendMessage(&message);
}

void QBBookmarkWindow::AddBookmark() {
    if (fFolder <= 0 || fSlot <= 0) {
        Say("Please select a slot to add to first!", "OK");
        return;
    }
    const QBSaveOutcome outcome = SaveBookmark(Texts());
    // A folder that is not watched is read again.
    fBar.bar.Send(B_NODE_MONITOR);
    if (outcome.result == QBSaveResult::Saved)
        return Quit();
    fKeepsTexts = true;
    Report(outcome);
}
