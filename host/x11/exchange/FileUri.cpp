#include "host/x11/exchange/FileUri.h"

#include <algorithm>
#include <charconv>

#include "base/Types.h"

namespace host {

namespace {

constexpr std::size_t kMaxUri = 16384;
constexpr std::size_t kMaxName = 200;

bool IsControl(char byte) {
    return static_cast<uint8>(byte) < 0x20 || byte == 0x7f;
}

char LowerCase(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
}

bool IsSame(std::string_view one, std::string_view other) {
    return std::ranges::equal(one, other, {}, LowerCase, LowerCase);
}

bool Decode(std::string_view text, std::string& decoded) {
    for (std::size_t i = 0; i < text.size(); i++) {
        char byte = text[i];
        if (byte == '%') {
            uint8 value = 0;
            if (text.size() - i < 3 ||
                std::from_chars(&text[i] + 1, &text[i] + 3, value, 16).ptr != &text[i] + 3)
                return false;
            byte = static_cast<char>(value);
            i += 2;
        }
        if (byte == '\0')
            return false;
        decoded += byte;
    }
    return true;
}

} // namespace

status_t PathOfFileUri(std::string_view uri, std::string_view machine, std::string* path) {
    // Some end it like a line, or like a string.
    while (!uri.empty() && (IsControl(uri.back()) || uri.back() == ' '))
        uri.remove_suffix(1);
    std::size_t colon = uri.find(':');
    if (uri.size() > kMaxUri || colon == std::string_view::npos)
        return B_BAD_VALUE;
    if (!IsSame(uri.substr(0, colon), "file"))
        return B_UNSUPPORTED;
    std::string_view rest = uri.substr(colon + 1);
    if (rest.starts_with("//")) {
        rest.remove_prefix(2);
        std::string_view host = rest.substr(0, rest.find('/'));
        if (!host.empty() && !IsSame(host, "localhost") && !IsSame(host, machine))
            return B_UNSUPPORTED;
        rest.remove_prefix(host.size());
    }
    std::string decoded;
    if (!rest.starts_with('/') || !Decode(rest, decoded))
        return B_BAD_VALUE;
    std::string_view name = std::string_view(decoded).substr(decoded.rfind('/') + 1);
    if (name.empty() || name == "." || name == "..")
        return B_BAD_VALUE;
    *path = std::move(decoded);
    return B_OK;
}

std::string FileNameFor(std::string_view text) {
    std::string name;
    for (char byte : text) {
        if (IsControl(byte))
            continue;
        if (!(name.empty() && (byte == '.' || byte == ' ')))
            name += byte == '/' ? '-' : byte;
    }
    if (name.size() > kMaxName) {
        std::size_t end = kMaxName;
        while (end > 0 && (static_cast<uint8>(name[end]) & 0xc0) == 0x80)
            end--; // not inside a character
        name.resize(end);
    }
    return name;
}

} // namespace host
