#include "quillbarctl/formats/LineText.h"

#include "base/Utf8.h"
#include "quillbar/bookmarks/StoreNames.h"

std::string EscapeLine(std::string_view text) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string escaped;
    while (!text.empty()) {
        const Utf8Character character = FirstCharacter(text);
        const std::string_view bytes = text.substr(0, character.length);
        text.remove_prefix(character.length);
        if (character.code == '\\')
            escaped += "\\\\";
        else if (character.code == '\t')
            escaped += "\\t";
        else if (character.code == '\n')
            escaped += "\\n";
        else if (character.code != kNoCharacter && !IsControl(character.code))
            escaped += bytes;
        else
            for (const unsigned char byte : bytes)
                escaped.append({'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]});
    }
    return escaped;
}

std::string Shown(std::string_view text) {
    constexpr size_t kLongest = 160;
    if (text.size() <= kLongest)
        return EscapeLine(text);
    return EscapeLine(CutUtf8(text, kLongest)) + "...";
}

std::string LineOf(size_t folder, size_t slot, const Bookmark& bookmark) {
    return std::to_string(folder) + '\t' + std::to_string(slot) + '\t' + EscapeLine(bookmark.name) +
           '\t' + EscapeLine(TextOf(bookmark, kUrlAttribute)) + '\t' +
           EscapeLine(TextOf(bookmark, kKeywordsAttribute)) + '\n';
}
