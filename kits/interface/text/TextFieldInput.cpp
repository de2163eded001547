#include "kits/app/Message.h"
#include "kits/interface/text/TextControl.h"
#include "kits/interface/text/TextField.h"
#include "kits/interface/window/Window.h"

#include <algorithm>

namespace {

constexpr uint32 kScroll = '_kts';
constexpr bigtime_t kScrollInterval = 50'000;

} // namespace

void TextField::KeyDown(const char* bytes, int32 numBytes) {
    BMessage* message = Window() ? Window()->CurrentMessage() : nullptr;
    if (message == nullptr ||
        !HandleKey(EditKeyOf(*message), {bytes, static_cast<size_t>(numBytes)}))
        BTextView::KeyDown(bytes, numBytes);
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
        Change(Selection(), typed, UndoHistory::Kind::Typing);
        return true;
    case EditAction::SelectAll:
        SelectAll();
        OfferSelected();
        return true;
    case EditAction::Cut:
        Cut();
        return true;
    case EditAction::Copy:
        Copy();
        return true;
    case EditAction::Paste:
        Paste();
        return true;
    case EditAction::Undo:
        Undo();
        return true;
    case EditAction::Redo:
        Redo();
        return true;
    default:
        break;
    }
    if (!Move(key))
        return Erase(key.action);
    if (key.extends)
        OfferSelected();
    return true;
}

bool TextField::Move(EditKey key) {
    bool collapses = !key.extends && fAnchor != fCaret;
    switch (key.action) {
    case EditAction::Left:
        SetCaret(collapses ? Selection().first : fLine.Before(fCaret), key.extends);
        return true;
    case EditAction::Right:
        SetCaret(collapses ? Selection().second : fLine.After(fCaret), key.extends);
        return true;
    case EditAction::WordLeft:
        SetCaret(fLine.WordBefore(fCaret), key.extends);
        return true;
    case EditAction::WordRight:
        SetCaret(fLine.WordAfter(fCaret), key.extends);
        return true;
    case EditAction::Home:
        SetCaret(0, key.extends);
        return true;
    case EditAction::End:
        SetCaret(TextLength(), key.extends);
        return true;
    default:
        return false;
    }
}

bool TextField::Erase(EditAction action) {
    TextLine::Range range = Selection();
    auto kind = UndoHistory::Kind::Other;
    if (range.first == range.second) {
        kind = UndoHistory::Kind::Erasing;
        switch (action) {
        case EditAction::EraseLeft:
            range.first = fLine.Before(fCaret);
            break;
        case EditAction::EraseRight:
            range.second = fLine.After(fCaret);
            break;
        case EditAction::EraseWordLeft:
            range.first = fLine.WordBefore(fCaret);
            break;
        case EditAction::EraseWordRight:
            range.second = fLine.WordAfter(fCaret);
            break;
        default:
            return false;
        }
    }
    if (range.first < range.second)
        Change(range, {}, kind);
    return true;
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
    case CaretBlink::kTick:
        if (fBlink.Tick(*message))
            Invalidate(CaretFrame());
        break;
    case kScroll:
        DragTo(fDragPlace);
        break;
    case kActionChosen:
        HandleKey({static_cast<EditAction>(message->GetInt32("action", 0))}, {});
        break;
    case kTextCame:
        TakeText(*message);
        break;
    default:
        BTextView::MessageReceived(message);
    }
}
