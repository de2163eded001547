#include "host/draw/VisibleText.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace host {

namespace {

// Laying out takes time for every byte, and a name or an address may be of any length.
constexpr std::size_t kMaxBytes = 4096;

constexpr char32_t kInvalid = 0xffffffff;
constexpr std::string_view kReplacementMark = "\xef\xbf\xbd";
// In every font, so that it brings in no second one.
constexpr std::string_view kControlMark = "\xc2\xb7";

struct Character {
    char32_t code;
    int length;
};

int ExpectedLength(std::uint8_t lead) {
    if (lead < 0x80)
        return 1;
    if (lead >= 0xc2 && lead < 0xe0)
        return 2;
    if (lead >= 0xe0 && lead < 0xf0)
        return 3;
    if (lead >= 0xf0 && lead < 0xf5)
        return 4;
    return 0;
}

bool IsOverlongOrNoCharacter(char32_t code, int length) {
    return (length == 3 && code < 0x800) || (length == 4 && code < 0x10000) || code > 0x10ffff ||
           (code >= 0xd800 && code < 0xe000);
}

// An invalid sequence is one byte long: reading goes on with the next.
Character Decode(std::string_view text) {
    auto lead = static_cast<std::uint8_t>(text[0]);
    int length = ExpectedLength(lead);
    if (length == 1)
        return {lead, 1};
    if (length == 0 || text.size() < static_cast<std::size_t>(length))
        return {kInvalid, 1};
    char32_t code = lead & (0x7f >> length);
    for (int i = 1; i < length; i++) {
        auto byte = static_cast<std::uint8_t>(text[i]);
        if ((byte & 0xc0) != 0x80)
            return {kInvalid, 1};
        code = code << 6 | (byte & 0x3f);
    }
    if (IsOverlongOrNoCharacter(code, length))
        return {kInvalid, 1};
    return {code, length};
}

bool IsControl(char32_t code) {
    return code < 0x20 || (code >= 0x7f && code < 0xa0) || code == 0x2028 || code == 0x2029;
}

bool IsLineEnd(char32_t code) {
    return code == '\n' || code == '\r' || code == 0x85 || code == 0x2028 || code == 0x2029;
}

} // namespace

std::string VisibleText(std::string_view text) {
    std::string visible;
    visible.reserve(std::min(text.size(), kMaxBytes));
    while (!text.empty() && visible.size() < kMaxBytes) {
        Character character = Decode(text);
        if (character.code == kInvalid)
            visible += kReplacementMark;
        else if (IsControl(character.code))
            visible += kControlMark;
        else
            visible += text.substr(0, character.length);
        text.remove_prefix(character.length);
    }
    return visible;
}

std::string LineOf(std::string_view text) {
    std::string line;
    size_t blanks = 0; // waiting for a character behind them
    char32_t before = 0;
    while (!text.empty()) {
        Character character = Decode(text);
        bool isSecondOfPair = before == '\r' && character.code == '\n';
        before = character.code;
        if (IsLineEnd(character.code) || character.code == '\t') {
            blanks += !isSecondOfPair;
        } else if (character.code == kInvalid || !IsControl(character.code)) {
            line.append(std::exchange(blanks, 0), ' ');
            line +=
                character.code == kInvalid ? kReplacementMark : text.substr(0, character.length);
        }
        text.remove_prefix(character.length);
    }
    return line;
}

int ShownLength(std::string_view text) {
    return Decode(text).length;
}

int CharacterLength(char lead) {
    return ExpectedLength(static_cast<std::uint8_t>(lead));
}

} // namespace host
