#include "base/Utf8.h"

#include <utility>

#include <glib.h>

namespace {

bool EndsLine(char32_t code) {
    return code == '\n' || code == '\r' || code == 0x85 || code == 0x2028 || code == 0x2029;
}

template <typename Visit>
void ForEachCharacter(std::string_view text, Visit visit) {
    while (!text.empty()) {
        const Utf8Character character = FirstCharacter(text);
        visit(character, text.substr(0, character.length));
        text.remove_prefix(character.length);
    }
}

} // namespace

// GLib takes a NUL for the end of the text.
Utf8Character FirstCharacter(std::string_view text) {
    const auto lead = static_cast<uint8>(text[0]);
    if (lead < 0x80)
        return {lead, 1};
    const gunichar code = g_utf8_get_char_validated(text.data(), static_cast<gssize>(text.size()));
    if (code == static_cast<gunichar>(-1) || code == static_cast<gunichar>(-2))
        return {kNoCharacter, 1};
    return {code, static_cast<size_t>(g_unichar_to_utf8(code, nullptr))};
}

bool IsUtf8(std::string_view text) {
    bool isValid = true;
    ForEachCharacter(text, [&](Utf8Character character, std::string_view) {
        isValid = isValid && character.code != kNoCharacter;
    });
    return isValid;
}

std::string_view CutUtf8(std::string_view text, size_t room) {
    size_t end = 0;
    while (end < text.size()) {
        const size_t next = end + FirstCharacter(text.substr(end)).length;
        if (next > room)
            break;
        end = next;
    }
    return text.substr(0, end);
}

bool IsControl(char32_t code) {
    return code < 0x20 || (code >= 0x7f && code < 0xa0) || code == 0x2028 || code == 0x2029;
}

std::string OneLineOf(std::string_view text) {
    std::string line;
    size_t blanks = 0; // waiting for a character behind them
    char32_t before = 0;
    ForEachCharacter(text, [&](Utf8Character character, std::string_view bytes) {
        const bool isSecondOfPair = before == '\r' && character.code == '\n';
        before = character.code;
        if (EndsLine(character.code) || character.code == '\t') {
            blanks += !isSecondOfPair;
        } else if (!IsControl(character.code)) {
            line.append(std::exchange(blanks, 0), ' ');
            line += character.code == kNoCharacter ? kReplacementMark : bytes;
        }
    });
    return line;
}

std::string Utf16Of(std::string_view text) {
    std::u16string units;
    ForEachCharacter(text, [&](Utf8Character character, std::string_view) {
        const char32_t code = character.code;
        if (code == kNoCharacter)
            return;
        if (code >= 0x10000)
            units += static_cast<char16_t>(0xd7c0 + (code >> 10));
        units += static_cast<char16_t>(code >= 0x10000 ? 0xdc00 + (code & 0x3ff) : code);
    });
    return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(char16_t)};
}

void AppendUtf8(std::string& text, char32_t code) {
    char bytes[6];
    if (g_unichar_validate(code))
        text.append(bytes, static_cast<size_t>(g_unichar_to_utf8(code, bytes)));
    else
        text += kReplacementMark;
}

std::string Utf8FromUtf16(std::string_view bytes, bool isBigEndian) {
    std::string text;
    const auto unitAt = [&](size_t at) -> char32_t {
        const auto first = static_cast<uint8>(bytes[at]),
                   second = static_cast<uint8>(bytes[at + 1]);
        return isBigEndian ? first << 8 | second : second << 8 | first;
    };
    for (size_t at = 0; at + 1 < bytes.size(); at += 2) {
        char32_t code = unitAt(at);
        const char32_t low = at + 3 < bytes.size() ? unitAt(at + 2) : 0;
        if (code >> 10 == 0xd800 >> 10 && low >> 10 == 0xdc00 >> 10) {
            code = 0x10000 + ((code & 0x3ff) << 10 | (low & 0x3ff));
            at += 2;
        }
        AppendUtf8(text, code);
    }
    return text;
}

std::string Utf8FromLatin1(std::string_view text) {
    std::string result;
    for (const char byte : text)
        AppendUtf8(result, static_cast<uint8>(byte));
    return result;
}

std::string Latin1FromUtf8(std::string_view text) {
    std::string result;
    ForEachCharacter(text, [&](Utf8Character character, std::string_view) {
        result += static_cast<char>(character.code < 0x100 ? character.code : U'?');
    });
    return result;
}
