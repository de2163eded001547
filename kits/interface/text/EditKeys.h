#pragma once

#include "base/Types.h"

class BMessage;

enum class EditAction {
    None, // not a key for a field
    Type,
    Left,
    Right,
    WordLeft,
    WordRight,
    Home,
    End,
    EraseLeft,
    EraseRight,
    EraseWordLeft,
    EraseWordRight,
    Cut,
    Copy,
    Paste,
    SelectAll,
    Undo,
    Redo,
    Commit, // Enter
    OpenMenu,
};

struct EditKey {
    EditAction action = EditAction::None;
    bool extends = false; // a move that takes the end of the selection with it
};

// The action of the key in a B_KEY_DOWN or B_UNMAPPED_KEY_DOWN message for a field of one line. The
// letters of the editing commands go with the Command key and with Control; on a keyboard whose
// letters are not Latin their places count.
EditKey EditKeyOf(const BMessage& keyDown);
