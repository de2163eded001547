#include "quillbar/addbookmark/BookmarkWindow.h"

#include <algorithm>
#include <functional>

#include "kits/app/AppDefs.h"
#include "kits/app/Application.h"
#include "kits/app/Message.h"
#include "kits/app/MessageQueue.h"
#include "kits/interface/controls/StringView.h"
#include "kits/interface/menus/MenuBar.h"
#include "kits/interface/menus/MenuField.h"
#include "kits/interface/text/TextControl.h"
#include "kits/interface/window/Screen.h"
#include "kits/kernel/Locker.h"
#include "kits/support/String.h"
#include "quillbar/addbookmark/AddBookmarkView.h"
#include "quillbar/base/Commands.h"
#include "quillbar/store/Item.h"
#include "quillbar/store/Monitor.h"
#include "quillbar/store/Path.h"

SharedMessenger QBBookmarkWindow::fMsgWindow;

namespace {

constexpr float kWidth = 330;
constexpr float kHeight = 380;
constexpr float kMenuBarHeight = 19;

int32 NumberOrNone(long number) {
    return number >= 1 && number <= 10 ? static_cast<int32>(number) : 0;
}

BString NumberedLabel(int32 digit, const char* name) {
    BString label;
    label << digit << " - " << name;
    return label;
}

} // namespace

QBBookmarkWindow::QBBookmarkWindow(BRect frame, long folder, long slot, const QBBarAccess& bar)
    : BWindow(BRect(frame.left, frame.top, frame.left + kWidth, frame.top + kHeight),
              "Quillbar - Add Bookmark", B_TITLED_WINDOW_LOOK, B_NORMAL_WINDOW_FEEL,
              B_NOT_RESIZABLE | B_NOT_ZOOMABLE | B_NOT_MINIMIZABLE, B_CURRENT_WORKSPACE)
    , fBar(bar)
    , fFolder(NumberOrNone(folder))
    , fSlot(NumberOrNone(slot)) {
    InitWindow();
    const BRect screen = BScreen().Frame();
    MoveTo((screen.Width() - Frame().Width()) * 0.5f, (screen.Height() - Frame().Height()) * 0.5f);
    if (fSlot > 0)
        SlotItem(fSlot - 1)->SetMarked(true);
    if (fFolder > 0) {
        FolderItem(fFolder - 1)->SetMarked(true);
        UpdateAll();
    }
    fAddView->fEditInfo->fNameText->MakeFocus(true);
}

QBBookmarkWindow::~QBBookmarkWindow() {
    fMsgWindow.Clear();
    fBar.bar.Send(kQBAddBookmarkGone);
    // A link that was dropped too late is for the next window.
    while (BMessage* link = MessageQueue()->FindMessage(kQBTakeLink)) {
        fBar.bar.Send(*link);
        MessageQueue()->RemoveMessage(link);
        delete link;
    }
}

void QBBookmarkWindow::InitWindow() {
    fAddView = new QBAddBookmarkView(BRect(0, 20, kWidth, kHeight), "qb_abview", B_FOLLOW_NONE,
                                     B_WILL_DRAW);
    fAddView->InitView();
    AddChild(fAddView);
    AddMenu();
    UpdateFolderStrings();
    fMsgWindow.Set(BMessenger(this));
}

void QBBookmarkWindow::AddMenu() {
    BRect frame = Bounds();
    frame.bottom = frame.top + kMenuBarHeight;
    fMenuBar =
        new BMenuBar(frame, "main_menu", B_FOLLOW_LEFT_RIGHT | B_FOLLOW_TOP, B_ITEMS_IN_ROW, true);
    AddChild(fMenuBar);
    fFileMenu = new BMenu("File", B_ITEMS_IN_COLUMN);
    fMenuBar->AddItem(fFileMenu);
    const auto add = [this](const char* label, uint32 command, char shortcut,
                            const BMessenger& target) {
        auto* item = new BMenuItem(label, new BMessage(command), shortcut, B_COMMAND_KEY);
        item->SetTarget(target);
        fFileMenu->AddItem(item);
    };
    add("Show in tracker", kQBShowInTracker, 'T', BMessenger(fAddView));
    add("Cancel", kQBCancelAdd, 'C', BMessenger(fAddView));
    add("Add Bookmark", kQBAddIt, 'D', BMessenger(fAddView));
    add("About Quillbar", B_ABOUT_REQUESTED, 'A', be_app_messenger);
}

BMenuItem* QBBookmarkWindow::FolderItem(int32 digit) const {
    return fAddView->fLocation->fFolderField->Menu()->ItemAt(digit);
}

BMenuItem* QBBookmarkWindow::SlotItem(int32 digit) const {
    return fAddView->fLocation->fSlotField->Menu()->ItemAt(digit);
}

void QBBookmarkWindow::UpdateFolderStrings() {
    fBar.lock.Lock();
    for (int32 digit = 0; digit < 10; ++digit) {
        const QBPath* folder = fBar.store.fPaths[digit];
        FolderItem(digit)->SetLabel(NumberedLabel(digit, folder->Name()).String());
    }
    fBar.lock.Unlock();
}

void QBBookmarkWindow::UpdateSlotStrings() {
    if (fFolder <= 0)
        return;
    fBar.lock.Lock();
    QBItem** slots = fBar.store.fPaths[fFolder - 1]->Items();
    for (int32 digit = 0; digit < 10; ++digit)
        SlotItem(digit)->SetLabel(NumberedLabel(digit, slots[digit]->Name().String()).String());
    fBar.lock.Unlock();
    if (fSlot > 0)
        SlotItem(fSlot - 1)->SetMarked(true);
    UpdateNote();
}

// About a dropped link.
void QBBookmarkWindow::UpdateNote() {
    const char* note = "";
    fBar.lock.Lock();
    QBItem** slots = fBar.store.fPaths[fFolder - 1]->Items();
    if (fHoldsLink && fSlot > 0 && slots[fSlot - 1]->IsValid())
        note = "What is in this slot will be replaced.";
    else if (fHoldsLink && fSlot <= 0 &&
             std::all_of(slots, slots + 10, std::mem_fn(&QBItem::IsValid)))
        note = "This folder is full. Choose a slot to replace.";
    fBar.lock.Unlock();
    fAddView->fLocation->fNote->SetText(note);
}

void QBBookmarkWindow::UpdateScreen() {
    BString name;
    BString url;
    BString keywords;
    fBar.lock.Lock();
    QBPath* folder = fBar.store.fPaths[fFolder - 1];
    const BString folderName = folder->Name();
    if (fSlot > 0) {
        const QBItem* slot = folder->Items()[fSlot - 1];
        name = slot->Name();
        url = slot->Url();
        keywords = slot->Keywords();
    }
    fBar.lock.Unlock();

    fAddView->fLocation->fKeyword->SetText(folderName.String());
    fFilledIn.folderName = Texts().folderName;
    if (fSlot > 0 && !fHoldsLink)
        FillIn(name.String(), url.String(), keywords.String());
}

void QBBookmarkWindow::FillIn(const char* name, const char* url, const char* keywords) {
    fAddView->fEditInfo->fNameText->SetText(name);
    fAddView->fEditInfo->fUrlText->SetText(url);
    fAddView->fEditInfo->fKeywordsText->SetText(keywords);
    fFilledIn = Texts();
}

QBBookmarkText QBBookmarkWindow::Texts() const {
    const QBEditInfoView& texts = *fAddView->fEditInfo;
    return {fFolder,
            fSlot,
            fAddView->fLocation->fKeyword->Text(),
            texts.fNameText->Text(),
            texts.fUrlText->Text(),
            texts.fKeywordsText->Text()};
}

void QBBookmarkWindow::UpdateAll() {
    fKeepsTexts = false;
    UpdateScreen();
    UpdateSlotStrings();
}

void QBBookmarkWindow::CloseNow() {
    const BMessenger target = fMsgWindow.Get();
    BLooper* window = nullptr;
    if (!target.LockTarget())
        return;
    target.Target(&window);
    window->Quit();
}
