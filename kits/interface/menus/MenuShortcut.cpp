#include "kits/interface/menus/MenuShortcut.h"

#include "kits/interface/drawing/InterfaceDefs.h"

namespace {

// Keys that lie side by side, by their raw codes.
struct KeyRow {
    int32 first;
    std::string_view characters;
};
constexpr KeyRow kDigits = {0x12, "1234567890"};
constexpr KeyRow kLetters[] = {{0x27, "qwertyuiop"}, {0x3c, "asdfghjkl"}, {0x4c, "zxcvbnm"}};

char CharacterIn(const KeyRow& row, int32 key) {
    const int32 place = key - row.first;
    return place >= 0 && place < static_cast<int32>(row.characters.size())
               ? row.characters[static_cast<size_t>(place)]
               : 0;
}

bool IsAscii(std::string_view bytes) {
    return bytes.size() == 1 && bytes[0] > B_SPACE && bytes[0] < B_DELETE;
}

char ToLower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

char ToUpper(char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A')
                                                : character;
}

} // namespace

char ShortcutCharacter(int32 key, std::string_view bytes) {
    if (const char digit = CharacterIn(kDigits, key))
        return digit;
    if (IsAscii(bytes))
        return ToLower(bytes[0]);
    for (const KeyRow& row : kLetters) {
        if (const char letter = CharacterIn(row, key))
            return letter;
    }
    return 0;
}

bool IsSameShortcut(char one, char other) {
    return ToLower(one) == ToLower(other);
}

std::string ShortcutLabel(char shortcut, uint32 modifiers) {
    std::string label;
    if (modifiers & B_CONTROL_KEY)
        label += "Ctrl+";
    if (modifiers & B_COMMAND_KEY)
        label += "Alt+";
    if (modifiers & B_SHIFT_KEY)
        label += "Shift+";
    return label + ToUpper(shortcut);
}
