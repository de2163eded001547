#include "base/links/Link.h"

#include <algorithm>

#include "base/Utf8.h"
#include "base/links/LinkText.h"

namespace {

// What comes behind the colon.
enum class Rest {
    Host, // two slashes and a host
    Path,
    Any,
};
constexpr struct {
    std::string_view scheme;
    Rest rest;
} kSchemes[] = {
    {"http", Rest::Host},   {"https", Rest::Host},  {"ftp", Rest::Host},  {"ftps", Rest::Host},
    {"gemini", Rest::Host}, {"gopher", Rest::Host}, {"file", Rest::Path}, {"mailto", Rest::Any},
};

bool IsComplete(std::string_view rest, Rest needed) {
    switch (needed) {
    case Rest::Host:
        return rest.size() > 2 && rest.starts_with("//") &&
               std::string_view("/?#\\").find(rest[2]) == std::string_view::npos;
    case Rest::Path:
        return rest.size() > 1 && rest[0] == '/';
    case Rest::Any:
        break;
    }
    return !rest.empty();
}

bool HasBlankOrControl(std::string_view text) {
    while (!text.empty()) {
        const auto [code, length] = FirstCharacter(text);
        if (code <= ' ' || code == 0xa0 || IsControl(code))
            return true;
        text.remove_prefix(length);
    }
    return false;
}

// The host of an address, or the last name in a file's.
std::string_view TellingPart(std::string_view url) {
    const size_t colon = url.find(':');
    std::string_view part = url.substr(colon + 1);
    if (IsWord(url.substr(0, colon), "file"))
        return part.substr(part.rfind('/') + 1);
    part.remove_prefix(std::min(part.find_first_not_of('/'), part.size()));
    part = part.substr(0, part.find_first_of("/?#"));
    if (!IsWord(url.substr(0, colon), "mailto"))
        part = part.substr(part.rfind('@') + 1);
    return part.starts_with("www.") ? part.substr(4) : part;
}

std::string TitleOf(std::string_view text) {
    std::string title;
    for (const char byte : OneLineOf(CutUtf8(WithoutBlanks(text), 4 * kMaxTitle))) {
        if (byte != ' ' || !title.ends_with(' '))
            title += byte;
    }
    return std::string(WithoutBlanks(CutUtf8(WithoutBlanks(title), kMaxTitle)));
}

} // namespace

bool IsWord(std::string_view text, std::string_view lower) {
    return std::ranges::equal(text, lower, [](char byte, char wanted) {
        return (byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte | 0x20) : byte) == wanted;
    });
}

std::string_view WithoutBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::string_view TakeLine(std::string_view& text) {
    const size_t end = std::min(text.find_first_of("\r\n"), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end);
    text.remove_prefix(text.starts_with("\r\n") ? 2 : !text.empty());
    return WithoutBlanks(line);
}

std::string TextOf(std::string_view bytes) {
    constexpr std::string_view kUtf8Mark = "\xef\xbb\xbf";
    const auto at = [&](size_t index) { return static_cast<uint8>(bytes[index]); };
    std::string text;
    if (bytes.size() >= 2 && ((at(0) == 0xfe && at(1) == 0xff) || (at(0) == 0 && at(1) != 0)))
        text = Utf8FromUtf16(bytes, true);
    else if (bytes.size() >= 2 && ((at(0) == 0xff && at(1) == 0xfe) || (at(0) != 0 && at(1) == 0)))
        text = Utf8FromUtf16(bytes, false);
    else
        text = bytes;
    if (text.starts_with(kUtf8Mark))
        text.erase(0, kUtf8Mark.size());
    return text.substr(0, text.find('\0'));
}

bool IsBookmarkUrl(std::string_view url) {
    if (url.size() > kMaxUrl || !IsUtf8(url) || HasBlankOrControl(url))
        return false;
    const size_t colon = std::min(url.find(':'), url.size());
    const auto* found = std::ranges::find_if(
        kSchemes, [&](const auto& entry) { return IsWord(url.substr(0, colon), entry.scheme); });
    return found != std::end(kSchemes) && colon < url.size() &&
           IsComplete(url.substr(colon + 1), found->rest);
}

std::optional<Link> MakeLink(std::string_view url, std::string_view title) {
    if (!IsBookmarkUrl(url))
        return std::nullopt;
    Link link{std::string(url), TitleOf(title)};
    if (link.title.empty() || link.title == url)
        link.title = TitleOf(TellingPart(url));
    if (link.title.empty())
        link.title = TitleOf(url);
    return link;
}

std::optional<Link> LinkOfMozUrl(std::string_view bytes) {
    const std::string text = TextOf(bytes);
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view url = TakeLine(rest);
        if (auto link = MakeLink(url, TakeLine(rest)))
            return link;
    }
    return std::nullopt;
}

std::optional<Link> LinkOfUriList(std::string_view bytes) {
    const std::string text = TextOf(bytes);
    for (std::string_view rest = text; !rest.empty();) {
        if (auto link = MakeLink(TakeLine(rest), {}))
            return link;
    }
    return std::nullopt;
}

std::optional<Link> LinkOfText(std::string_view bytes) {
    return MakeLink(WithoutBlanks(TextOf(bytes)), {});
}
