#include "host/x11/exchange/DroppedColor.h"

#include <charconv>
#include <cstring>

namespace host {

namespace {

constexpr std::string_view kAround(" \t\r\n\0", 5);

} // namespace

std::optional<rgb_color> ColorOfWords(std::string_view bytes) {
    uint16 words[4];
    if (bytes.size() != sizeof(words))
        return std::nullopt;
    std::memcpy(words, bytes.data(), sizeof(words));
    auto channel = [&](int index) { return static_cast<uint8>(words[index] >> 8); };
    return rgb_color{channel(0), channel(1), channel(2), 255};
}

std::optional<rgb_color> ColorOfText(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kAround), text.size()));
    text = text.substr(0, text.find_last_not_of(kAround) + 1);
    if (text.size() != 7 || text[0] != '#')
        return std::nullopt;
    uint32 value = 0;
    if (std::from_chars(text.data() + 1, text.data() + 7, value, 16).ptr != text.data() + 7)
        return std::nullopt;
    return rgb_color{static_cast<uint8>(value >> 16), static_cast<uint8>(value >> 8),
                     static_cast<uint8>(value), 255};
}

} // namespace host
