#include "quillbar/addbookmark/AddBookmarkView.h"

#include "kits/app/Message.h"
#include "kits/interface/controls/Button.h"
#include "kits/interface/controls/StringView.h"
#include "kits/interface/menus/MenuField.h"
#include "kits/interface/menus/MenuItem.h"
#include "kits/interface/menus/PopUpMenu.h"
#include "kits/interface/text/TextControl.h"
#include "kits/interface/text/TextField.h"
#include "kits/support/String.h"
#include "quillbar/base/Commands.h"

namespace {

constexpr uint32 kLeftTop = B_FOLLOW_LEFT | B_FOLLOW_TOP;
constexpr uint32 kControlFlags = B_WILL_DRAW | B_NAVIGABLE;
constexpr uint32 kBoxFlags = B_WILL_DRAW | B_FRAME_EVENTS | B_NAVIGABLE_JUMP;

constexpr float kButtonEdges = 12; // left and right of a button's label, together
constexpr float kLabelGap = 3;     // behind the label of a field

// A menu of ten digits; `codes` are their messages, the digits their shortcuts.
BPopUpMenu* NewDigitMenu(const char* title, const uint32 codes[10], uint32 modifiers) {
    auto* menu = new BPopUpMenu(title, true, true, B_ITEMS_IN_COLUMN);
    for (int32 digit = 0; digit < 10; ++digit) {
        BString label;
        label << digit;
        menu->AddItem(
            new BMenuItem(label.String(), new BMessage(codes[digit]), label[0], modifiers));
    }
    menu->SetFont(be_bold_font, B_FONT_ALL);
    return menu;
}

template <typename Box>
Box* AddBox(BView* parent, BRect frame, const char* name, const char* label) {
    auto* box = new Box(frame, name, kLeftTop, kBoxFlags, B_FANCY_BORDER);
    box->SetLabel(label);
    box->InitView();
    parent->AddChild(box);
    return box;
}

} // namespace

void QBEditInfoView::InitView() {
    fNameText = AddText(BRect(10, 20, 295, 40), "qb_editinfo_name", "Name");
    fUrlText = AddText(BRect(10, 50, 295, 70), "qb_editinfo_url", "URL");
    fKeywordsText = AddText(BRect(10, 80, 295, 100), "qb_editinfo_keywords", "Keywords");
}

BTextControl* QBEditInfoView::AddText(BRect frame, const char* name, const char* label) {
    auto* control = new BTextControl(frame, name, label, "", nullptr, kLeftTop, kControlFlags);
    AddChild(control);
    control->SetDivider(55);
    return control;
}

void QBBrowseView::MessageReceived(BMessage*) {}

void QBBrowseView::InitView() {
    for (int32 digit = 0; digit < 10; ++digit) {
        BString name("qb_browse_button");
        name << digit;
        BString label;
        label << digit;
        const float left = 34 + 20 * static_cast<float>(digit);
        auto* button = new BButton(BRect(left, 32, left + 20, 52), name.String(), label.String(),
                                   nullptr, kLeftTop, kControlFlags);
        AddChild(button);
        auto* message = new BMessage(QBFolder[digit]);
        message->AddPointer("button", button);
        button->SetMessage(message);
        button->SetFont(be_bold_font, B_FONT_ALL);
        fButtons[digit] = button;
    }
}

void QBLocationView::MessageReceived(BMessage*) {}

void QBLocationView::InitView() {
    fFolderField = AddField(BRect(10, 20, 150, 39), "qb_location_folder", "Choose Folder",
                            NewDigitMenu("Folder", QBFolder, B_COMMAND_KEY));
    fFolderField->SetDivider(75);
    fSlotField = AddField(BRect(155, 20, 300, 40), "qb_location_slot", "Choose Slot",
                          NewDigitMenu("Slot", QBSlot, B_SHIFT_KEY | B_COMMAND_KEY));
    fSlotField->SetDivider(70);
    fKeyword = new BTextControl(BRect(10, 50, 260, 70), "qb_location_keyword", "Folder Keyword", "",
                                nullptr, kLeftTop, kControlFlags);
    AddChild(fKeyword);
    fKeyword->SetDivider(80);
    fNote = new BStringView(BRect(10, 72, 300, 86), "qb_location_note", "", kLeftTop);
    AddChild(fNote);
}

BMenuField* QBLocationView::AddField(BRect frame, const char* name, const char* label,
                                     BPopUpMenu* menu) {
    auto* field = new BMenuField(frame, name, label, menu, true, kLeftTop, kControlFlags);
    AddChild(field);
    return field;
}

void QBAddBookmarkView::MessageReceived(BMessage* message) {
    BView::MessageReceived(message);
}

void QBAddBookmarkView::InitView() {
    fLocation = AddBox<QBLocationView>(this, BRect(10, 220, 320, 310), "qb_location",
                                       "3. Choose the location");
    fBrowse = AddBox<QBBrowseView>(this, BRect(10, 130, 320, 210), "qb_browse",
                                   "2. Browse for empty slot");
    fEditInfo =
        AddBox<QBEditInfoView>(this, BRect(10, 10, 320, 122), "qb_editinfo", "1. Edit Info");
    fShowInTracker = AddButton(BRect(10, 320, 105, 350), "qb_abview_showintracker",
                               "Show In Tracker", kQBShowInTracker);
    fCancel = AddButton(BRect(115, 320, 210, 350), "qb_abview_cancel", "Cancel", kQBCancelAdd);
    // With the room for the frame of a default button.
    fAdd = AddButton(BRect(217, 317, 318, 353), "qb_abview_add", "Add It!", kQBAddIt);
    fAdd->MakeDefault(true);

    SetViewColor(216, 216, 216, 255);
    FitLabels();
}

BButton* QBAddBookmarkView::AddButton(BRect frame, const char* name, const char* label,
                                      uint32 command) {
    auto* button = new BButton(frame, name, label, new BMessage(command), kLeftTop, kControlFlags);
    AddChild(button);
    return button;
}

// The rooms are the same whatever font the desktop has, so its size follows from the widest label.
// All labels have one size.
void QBAddBookmarkView::FitLabels() {
    BTextControl* const texts[] = {fEditInfo->fNameText, fEditInfo->fUrlText,
                                   fEditInfo->fKeywordsText, fLocation->fKeyword};
    BMenuField* const fields[] = {fLocation->fFolderField, fLocation->fSlotField};
    BButton* const buttons[] = {fShowInTracker, fCancel, fAdd};
    BFont font(be_plain_font);
    for (const BTextControl* text : texts)
        font = LabelFont(font, text->Label(), text->Divider() - kLabelGap);
    for (const BMenuField* field : fields)
        font = LabelFont(font, field->Label(), field->Divider() - kLabelGap);
    for (const BButton* button : buttons)
        font = LabelFont(font, button->Label(), button->Bounds().Width() - kButtonEdges);

    for (BTextControl* text : texts) {
        text->SetFont(&font);
        text->TextView()->SetFont(be_plain_font);
    }
    for (BMenuField* field : fields)
        field->SetFont(&font);
    for (BButton* button : buttons)
        button->SetFont(&font);
    fLocation->fNote->SetFont(&font);
}
