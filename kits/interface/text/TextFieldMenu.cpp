#include "kits/app/Message.h"
#include "kits/interface/menus/MenuItem.h"
#include "kits/interface/menus/PopUpMenu.h"
#include "kits/interface/text/TextField.h"

namespace {

struct Entry {
    const char* label; // null for a line between items
    EditAction action;
};

// With a selection every way of erasing takes that.
constexpr EditAction kDelete = EditAction::EraseRight;

constexpr Entry kEntries[] = {
    {"Undo", EditAction::Undo}, {"Redo", EditAction::Redo},  {nullptr, EditAction::None},
    {"Cut", EditAction::Cut},   {"Copy", EditAction::Copy},  {"Paste", EditAction::Paste},
    {"Delete", kDelete},        {nullptr, EditAction::None}, {"Select All", EditAction::SelectAll},
};

} // namespace

bool TextField::Offers(EditAction action) const {
    switch (action) {
    case EditAction::Undo:
        return fHistory.CanUndo();
    case EditAction::Redo:
        return fHistory.CanRedo();
    case EditAction::Cut:
    case EditAction::Copy:
    case kDelete:
        return fAnchor != fCaret;
    case EditAction::SelectAll:
        return TextLength() > 0;
    default:
        return true;
    }
}

// The window goes on while it is open: the choice comes as a message.
void TextField::OpenMenu(BPoint where) {
    auto* menu = new BPopUpMenu("Edit", false, false);
    for (const Entry& entry : kEntries) {
        if (entry.label == nullptr) {
            menu->AddSeparatorItem();
            continue;
        }
        auto* message = new BMessage(kActionChosen);
        message->AddInt32("action", static_cast<int32>(entry.action));
        auto* item = new BMenuItem(entry.label, message);
        item->SetEnabled(Offers(entry.action));
        menu->AddItem(item);
    }
    menu->SetTargetForItems(BMessenger(this));
    menu->SetAsyncAutoDestruct(true);
    menu->Go(ConvertToScreen(where), true, true, true);
}
