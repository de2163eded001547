#include "kits/interface/text/EditKeys.h"

#include <cstring>

#include "kits/app/Message.h"
#include "kits/interface/drawing/InterfaceDefs.h"

namespace {

// Raw key codes.
constexpr int32 kMenuKey = 0x68;
constexpr int32 kF10Key = 0x0b;

struct Command {
    char letter;
    int32 key; // where the letter is on a Latin keyboard
    EditAction action;
};

constexpr Command kCommands[] = {
    {'y', 0x2c, EditAction::Redo}, {'a', 0x3c, EditAction::SelectAll},
    {'z', 0x4c, EditAction::Undo}, {'x', 0x4d, EditAction::Cut},
    {'c', 0x4e, EditAction::Copy}, {'v', 0x4f, EditAction::Paste},
};

EditAction CommandOf(unsigned char typed, int32 key, bool isShifted) {
    for (const Command& command : kCommands) {
        if (typed < 0x80 ? (typed | 0x20) != command.letter : key != command.key)
            continue;
        const bool isRedo = isShifted && command.action == EditAction::Undo;
        return isRedo ? EditAction::Redo : command.action;
    }
    return EditAction::None;
}

EditKey SpecialKeyOf(char byte, bool isShifted, bool isControlled) {
    switch (byte) {
    case B_LEFT_ARROW:
        return {isControlled ? EditAction::WordLeft : EditAction::Left, isShifted};
    case B_RIGHT_ARROW:
        return {isControlled ? EditAction::WordRight : EditAction::Right, isShifted};
    case B_HOME:
        return {EditAction::Home, isShifted};
    case B_END:
        return {EditAction::End, isShifted};
    case B_BACKSPACE:
        return {isControlled ? EditAction::EraseWordLeft : EditAction::EraseLeft};
    case B_DELETE:
        if (isShifted)
            return {EditAction::Cut};
        return {isControlled ? EditAction::EraseWordRight : EditAction::EraseRight};
    case B_INSERT:
        if (isShifted || isControlled)
            return {isShifted ? EditAction::Paste : EditAction::Copy};
        return {};
    case B_ENTER:
        return {EditAction::Commit};
    default:
        return {};
    }
}

} // namespace

EditKey EditKeyOf(const BMessage& keyDown) {
    const char* bytes = keyDown.GetString("bytes", "");
    auto held = static_cast<uint32>(keyDown.GetInt32("modifiers", 0));
    bool isShifted = (held & B_SHIFT_KEY) != 0;
    bool isControlled = (held & B_CONTROL_KEY) != 0;
    bool isCommanded = (held & B_COMMAND_KEY) != 0;
    const int32 code = keyDown.GetInt32("key", 0);
    if (code == kMenuKey || (code == kF10Key && isShifted && !isControlled && !isCommanded))
        return {EditAction::OpenMenu};
    auto first = static_cast<unsigned char>(bytes[0]);
    if (first == 0 || (held & B_OPTION_KEY) != 0 || (isControlled && isCommanded))
        return {};
    // An input method may give a text that begins with a new line.
    if ((first < B_SPACE || first == B_DELETE) && bytes[1] == '\0')
        return isCommanded ? EditKey{} : SpecialKeyOf(bytes[0], isShifted, isControlled);
    if (!isControlled && !isCommanded)
        return {EditAction::Type};
    return {CommandOf(first, code, isShifted)};
}
