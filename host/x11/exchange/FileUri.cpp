#include "host/x11/exchange/FileUri.h"

#include <memory>

#include <glib.h>

#include "base/Utf8.h"

namespace host {

namespace {

constexpr std::size_t kMaxUri = 16384;
constexpr std::size_t kMaxName = 200;

constexpr std::string_view kScheme = "file:";

struct FreeText {
    void operator()(char* text) const { g_free(text); }
};
using Text = std::unique_ptr<char, FreeText>;

bool IsControlByte(char byte) {
    return static_cast<uint8>(byte) < 0x20 || byte == 0x7f;
}

} // namespace

status_t PathOfFileUri(std::string_view uri, const std::string& machine, std::string* path) {
    // Some end it like a line, or like a string.
    while (!uri.empty() && (IsControlByte(uri.back()) || uri.back() == ' '))
        uri.remove_suffix(1);
    if (uri.size() > kMaxUri || uri.find(':') == std::string_view::npos ||
        uri.find('\0') != std::string_view::npos)
        return B_BAD_VALUE;
    const std::string text(uri);
    if (g_ascii_strncasecmp(text.c_str(), kScheme.data(), kScheme.size()) != 0)
        return B_UNSUPPORTED;
    char* host = nullptr;
    const Text decoded(g_filename_from_uri(text.c_str(), &host, nullptr));
    const Text ownHost(host);
    if (!decoded)
        return B_BAD_VALUE;
    if (host && g_ascii_strcasecmp(host, "localhost") != 0 &&
        g_ascii_strcasecmp(host, machine.c_str()) != 0)
        return B_UNSUPPORTED;
    const std::string_view whole = decoded.get();
    const std::string_view name = whole.substr(whole.rfind('/') + 1);
    if (name.empty() || name == "." || name == "..")
        return B_BAD_VALUE;
    *path = whole;
    return B_OK;
}

std::string FileNameFor(std::string_view text) {
    std::string name;
    for (char byte : text) {
        if (IsControlByte(byte))
            continue;
        if (!(name.empty() && (byte == '.' || byte == ' ')))
            name += byte == '/' ? '-' : byte;
    }
    name.resize(CutUtf8(name, kMaxName).size());
    return name;
}

} // namespace host
