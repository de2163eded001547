#include "kits/app/Message.h"
#include "kits/interface/TextControl.h"
#include "kits/interface/TextField.h"
#include "kits/interface/Window.h"

#include <algorithm>

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
        return true;
    case EditAction::Undo:
        Undo();
        return true;
    case EditAction::Redo:
        Redo();
        return true;
    default:
        return Move(key) || Erase(key.action);
    }
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
    if (range.first == range.second) {
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
        Change(range, {}, UndoHistory::Kind::Erasing);
    return true;
}

void TextField::MouseDown(BPoint where) {
    BMessage* message = Window() ? Window()->CurrentMessage() : nullptr;
    if (message == nullptr || !fIsEnabled ||
        (message->GetInt32("buttons", 0) & B_PRIMARY_MOUSE_BUTTON) == 0)
        return;
    MakeFocus(true);
    SetMouseEventMask(B_POINTER_EVENTS, B_LOCK_WINDOW_FOCUS | B_NO_POINTER_HISTORY);
    int32 clicks = message->GetInt32("clicks", 1);
    float place = LinePlaceOf(where);
    if (clicks > 2) {
        fDrag = Drag::None;
        SelectAll();
    } else if (clicks == 2) {
        fDrag = Drag::Words;
        fDragStart = fLine.WordAt(fLine.CharacterAt(place));
        Select(fDragStart.first, fDragStart.second);
    } else {
        fDrag = Drag::Characters;
        bool extends = (message->GetInt32("modifiers", 0) & B_SHIFT_KEY) != 0;
        SetCaret(fLine.OffsetAt(place), extends);
    }
}

void TextField::MouseMoved(BPoint where, uint32, const BMessage*) {
    if (fDrag != Drag::None)
        DragTo(where);
}

void TextField::MouseUp(BPoint) {
    fDrag = Drag::None;
}

void TextField::DragTo(BPoint where) {
    if (fDrag == Drag::Characters) {
        int32 caret = fLine.OffsetAt(LinePlaceOf(where));
        if (caret != fCaret)
            SetCaret(caret, true);
        return;
    }
    TextLine::Range word = fLine.WordAt(fLine.CharacterAt(LinePlaceOf(where)));
    bool isBefore = word.first < fDragStart.first;
    Select(isBefore ? fDragStart.second : fDragStart.first,
           isBefore ? word.first : std::max(word.second, fDragStart.second));
}
