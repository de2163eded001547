#include "quillbar/addbookmark/LocationView.h"

#include "kits/app/Message.h"
#include "kits/interface/menus/MenuField.h"
#include "kits/interface/menus/MenuItem.h"
#include "kits/interface/menus/PopUpMenu.h"
#include "kits/interface/text/TextControl.h"
#include "kits/support/String.h"
#include "quillbar/base/Commands.h"

namespace {

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

} // namespace

QBLocationView::QBLocationView(BRect frame, const char* name, uint32 resizingMode, uint32 flags,
                               border_style border)
    : BBox(frame, name, resizingMode, flags, border)
    , fFolderField(nullptr)
    , fSlotField(nullptr)
    , fKeyword(nullptr) {}

QBLocationView::~QBLocationView() = default;

void QBLocationView::MessageReceived(BMessage*) {}

void QBLocationView::InitView() {
    fFolderField = AddField(BRect(10, 20, 150, 39), "qb_location_folder", "Choose Folder",
                            NewDigitMenu("Folder", QBFolder, B_COMMAND_KEY));
    fFolderField->SetDivider(75);
    fSlotField = AddField(BRect(155, 20, 300, 40), "qb_location_slot", "Choose Slot",
                          NewDigitMenu("Slot", QBSlot, B_SHIFT_KEY | B_COMMAND_KEY));
    fSlotField->SetDivider(70);
    fKeyword = new BTextControl(BRect(10, 50, 260, 70), "qb_location_keyword", "Folder Keyword", "",
                                nullptr, B_FOLLOW_LEFT | B_FOLLOW_TOP, B_WILL_DRAW | B_NAVIGABLE);
    AddChild(fKeyword);
    fKeyword->SetDivider(80);
}

BMenuField* QBLocationView::AddField(BRect frame, const char* name, const char* label,
                                     BPopUpMenu* menu) {
    auto* field = new BMenuField(frame, name, label, menu, true, B_FOLLOW_LEFT | B_FOLLOW_TOP,
                                 B_WILL_DRAW | B_NAVIGABLE);
    AddChild(field);
    return field;
}
