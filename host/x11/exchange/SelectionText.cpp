#include "host/x11/exchange/SelectionText.h"

#include "base/Types.h"

namespace host {

std::string Utf8FromLatin1(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (char character : text) {
        auto byte = static_cast<uint8>(character);
        if (byte >= 0x80)
            result += static_cast<char>(0xc0 | byte >> 6);
        result += static_cast<char>(byte < 0x80 ? byte : 0x80 | (byte & 0x3f));
    }
    return result;
}

std::string Latin1FromUtf8(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size(); i++) {
        auto byte = static_cast<uint8>(text[i]);
        bool isInside = (byte & 0xc0) == 0x80;
        bool isLatin = (byte == 0xc2 || byte == 0xc3) && i + 1 < text.size() &&
                       (static_cast<uint8>(text[i + 1]) & 0xc0) == 0x80;
        if (byte < 0x80)
            result += text[i];
        else if (isLatin)
            result += static_cast<char>((byte & 3) << 6 | (static_cast<uint8>(text[++i]) & 0x3f));
        else if (!isInside)
            result += '?';
    }
    return result;
}

} // namespace host
