#include <algorithm>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/interface/menus/MenuItem.h"
#include "kits/interface/menus/PopUpMenu.h"
#include "kits/interface/text/Clipboard.h"
#include "kits/interface/text/TextControl.h"
#include "kits/interface/text/TextField.h"
#include "kits/interface/window/Window.h"

namespace {

// Messages to itself.
constexpr uint32 kScroll = '_kts';
constexpr uint32 kTextCame = '_ktc';     // "text" string
constexpr uint32 kActionChosen = '_kta'; // "action" int32, from the menu

constexpr bigtime_t kScrollInterval = 50'000;
// Of another program's text; far more than a field takes.
constexpr size_t kMaxTaken = 1 << 16;

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

void TextField::KeyDown(const char* bytes, int32 numBytes) {
    BMessage* message = Window() ? Window()->CurrentMessage() : nullptr;
    if (message == nullptr ||
        !HandleKey(EditKeyOf(*message), {bytes, static_cast<size_t>(numBytes)}))
        BView::KeyDown(bytes, numBytes);
}

// False for a key that is not used up here.
bool TextField::HandleKey(EditKey key, std::string_view typed) {
    switch (key.action) {
    case EditAction::None:
        return false;
    case EditAction::Commit:
        // The window's default button is pressed as well.
        fControl.Commit();
        return false;
    case EditAction::Type:
        Insert(typed, UndoHistory::Kind::Typing);
        break;
    case EditAction::OpenMenu:
        OpenMenu(CaretFrame().LeftBottom());
        break;
    case EditAction::SelectAll:
        SelectAll();
        OfferSelected();
        break;
    case EditAction::Cut:
        Cut();
        break;
    case EditAction::Copy:
        Copy();
        break;
    case EditAction::Paste:
        Paste();
        break;
    case EditAction::Undo:
        Undo();
        break;
    case EditAction::Redo:
        Redo();
        break;
    default:
        if (const auto caret = TargetOf(key)) {
            SetCaret(*caret, key.extends);
            if (key.extends)
                OfferSelected();
        } else if (fAnchor != fCaret) {
            Change(Selection(), {}, UndoHistory::Kind::Other);
        } else if (const auto range = ErasedBy(key.action); range && range->first < range->second) {
            Change(*range, {}, UndoHistory::Kind::Erasing);
        }
    }
    return true;
}

std::optional<int32> TextField::TargetOf(EditKey key) const {
    const bool collapses = !key.extends && fAnchor != fCaret;
    switch (key.action) {
    case EditAction::Left:
        return collapses ? Selection().first : fLine.Before(fCaret);
    case EditAction::Right:
        return collapses ? Selection().second : fLine.After(fCaret);
    case EditAction::WordLeft:
        return fLine.WordBefore(fCaret);
    case EditAction::WordRight:
        return fLine.WordAfter(fCaret);
    case EditAction::Home:
        return 0;
    case EditAction::End:
        return TextLength();
    default:
        return std::nullopt;
    }
}

std::optional<TextLine::Range> TextField::ErasedBy(EditAction action) const {
    switch (action) {
    case EditAction::EraseLeft:
        return TextLine::Range(fLine.Before(fCaret), fCaret);
    case EditAction::EraseRight:
        return TextLine::Range(fCaret, fLine.After(fCaret));
    case EditAction::EraseWordLeft:
        return TextLine::Range(fLine.WordBefore(fCaret), fCaret);
    case EditAction::EraseWordRight:
        return TextLine::Range(fCaret, fLine.WordAfter(fCaret));
    default:
        return std::nullopt;
    }
}

void TextField::MouseDown(BPoint where) {
    BMessage* message = Window() ? Window()->CurrentMessage() : nullptr;
    int32 buttons = message ? message->GetInt32("buttons", 0) : 0;
    bool isSecond = fDrag != Drag::None && buttons != B_PRIMARY_MOUSE_BUTTON;
    if (!fIsEnabled || isSecond)
        return;
    if (buttons & B_PRIMARY_MOUSE_BUTTON) {
        MakeFocus(true);
        SetMouseEventMask(B_POINTER_EVENTS, B_LOCK_WINDOW_FOCUS | B_NO_POINTER_HISTORY);
        BeginDrag(where, message->GetInt32("clicks", 1),
                  (message->GetInt32("modifiers", 0) & B_SHIFT_KEY) != 0);
    } else if (buttons & B_TERTIARY_MOUSE_BUTTON) {
        MakeFocus(true);
        SetCaret(fLine.OffsetAt(LinePlaceOf(where)), false);
        AskFor(host::SelectionKind::Primary);
    } else if (buttons & B_SECONDARY_MOUSE_BUTTON) {
        MakeFocus(true);
        OpenMenu(where);
    }
}

void TextField::BeginDrag(BPoint where, int32 clicks, bool extends) {
    float place = LinePlaceOf(where);
    if (clicks > 2) {
        fDrag = Drag::All;
        SelectAll();
    } else if (clicks == 2) {
        fDrag = Drag::Words;
        fDragStart = fLine.WordAt(fLine.CharacterAt(place));
        Select(fDragStart.first, fDragStart.second);
    } else {
        fDrag = Drag::Characters;
        SetCaret(fLine.OffsetAt(place), extends);
    }
}

void TextField::MouseMoved(BPoint where, uint32, const BMessage*) {
    if (fDrag == Drag::None)
        return;
    fDragPlace = where;
    DragTo(where);
    bool isBeyond = where.x < 0 || where.x > Bounds().right;
    if (isBeyond && !fScroller) {
        BMessage scroll(kScroll);
        fScroller = std::make_unique<BMessageRunner>(BMessenger(this), &scroll, kScrollInterval);
    } else if (!isBeyond) {
        fScroller.reset();
    }
}

void TextField::MouseUp(BPoint) {
    if (fDrag != Drag::None)
        OfferSelected();
    EndDrag();
    UpdateCaret();
}

void TextField::EndDrag() {
    fDrag = Drag::None;
    fScroller.reset();
}

void TextField::DragTo(BPoint where) {
    float place = LinePlaceOf(where);
    if (fDrag == Drag::Characters) {
        int32 caret = fLine.OffsetAt(place);
        if (caret != fCaret)
            SetCaret(caret, true);
    } else if (fDrag == Drag::Words) {
        TextLine::Range word = fLine.WordAt(fLine.CharacterAt(place));
        bool isBefore = word.first < fDragStart.first;
        Select(isBefore ? fDragStart.second : fDragStart.first,
               isBefore ? word.first : std::max(word.second, fDragStart.second));
    }
}

void TextField::MessageReceived(BMessage* message) {
    switch (message->what) {
    case B_UNMAPPED_KEY_DOWN:
        if (!HandleKey(EditKeyOf(*message), {}))
            BView::MessageReceived(message);
        break;
    case kBlinkTick:
        Blink(*message);
        break;
    case kScroll:
        DragTo(fDragPlace);
        break;
    case kActionChosen:
        HandleKey({static_cast<EditAction>(message->GetInt32("action", 0))}, {});
        break;
    case kTextCame:
        if (fIsEnabled)
            Insert(message->GetString("text", ""));
        break;
    default:
        BView::MessageReceived(message);
    }
}

std::string TextField::SelectedText() const {
    auto [start, end] = Selection();
    return fLine.Text().substr(static_cast<size_t>(start), static_cast<size_t>(end - start));
}

void TextField::Cut() {
    Copy();
    if (fAnchor != fCaret)
        Change(Selection(), {}, UndoHistory::Kind::Other);
}

void TextField::Copy() {
    std::string text = SelectedText();
    if (text.empty() || !be_clipboard->Lock())
        return;
    be_clipboard->Clear();
    be_clipboard->Data()->AddData("text/plain", B_MIME_TYPE, text.data(),
                                  static_cast<ssize_t>(text.size()));
    be_clipboard->Commit();
    be_clipboard->Unlock();
}

void TextField::Paste() {
    AskFor(host::SelectionKind::Clipboard);
}

// The middle button brings it into other fields and programs.
void TextField::OfferSelected() {
    if (fAnchor != fCaret)
        host::Display::Shared()->OwnSelection(host::SelectionKind::Primary, SelectedText());
}

// The program that holds the text may be slow: the window must not wait for it.
void TextField::AskFor(host::SelectionKind selection) {
    const auto send = [target = BMessenger(this)](status_t, std::string text) {
        BMessage message(kTextCame);
        text.resize(std::min(text.size(), kMaxTaken));
        std::erase(text, '\0');
        message.AddString("text", text.c_str());
        target.SendMessage(&message);
    };
    host::Display::Shared()->AskSelection(selection, send);
}

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
