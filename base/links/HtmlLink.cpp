#include <algorithm>
#include <charconv>

#include "base/Utf8.h"
#include "base/links/LinkText.h"

namespace {

constexpr std::string_view kEndOfName = " \t\r\n\f\v=/>";
constexpr std::string_view kTagBeginnings = "/!?abcdefghijklmnopqrstuvwxyz"; // with 0x20
constexpr size_t kLongestEntity = 10;
constexpr size_t kLongestTitle = 16384; // with its tags

void Skip(std::string_view& text, std::string_view what) {
    text.remove_prefix(std::min(text.find_first_not_of(what), text.size()));
}

// Takes what is before one of `ends`, or all.
std::string_view TakeUntil(std::string_view& text, std::string_view ends) {
    const std::string_view taken = text.substr(0, text.find_first_of(ends));
    text.remove_prefix(taken.size());
    return taken;
}

std::string_view TakeValue(std::string_view& text) {
    Skip(text, kBlanks);
    const bool isQuoted = text.starts_with('"') || text.starts_with('\'');
    if (!isQuoted)
        return TakeUntil(text, " \t\r\n\f\v>");
    const char quote = text[0];
    text.remove_prefix(1);
    const std::string_view value = TakeUntil(text, std::string_view(&quote, 1));
    text.remove_prefix(!text.empty());
    return value;
}

// Takes the rest of a tag, from behind its name; its attribute "href", or nothing.
std::string_view TakeHref(std::string_view& text) {
    std::string_view href;
    for (Skip(text, " \t\r\n\f\v/"); !text.empty() && text[0] != '>'; Skip(text, " \t\r\n\f\v/")) {
        const std::string_view name = TakeUntil(text, kEndOfName);
        Skip(text, kBlanks);
        if (!text.starts_with('='))
            continue;
        text.remove_prefix(1);
        const std::string_view value = TakeValue(text);
        if (href.empty() && IsWord(name, "href"))
            href = value;
    }
    text.remove_prefix(!text.empty());
    return href;
}

// 0 for one that is not known.
char32_t CharacterOf(std::string_view entity) {
    constexpr std::pair<std::string_view, char32_t> kNames[] = {
        {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}, {"nbsp", ' '}};
    if (!entity.starts_with('#')) {
        for (const auto& [name, code] : kNames) {
            if (name == entity)
                return code;
        }
        return 0;
    }
    const bool isHex = entity.size() > 1 && (entity[1] | 0x20) == 'x';
    entity.remove_prefix(isHex ? 2 : 1);
    uint32 code = 0;
    const auto [end, error] =
        std::from_chars(entity.data(), entity.data() + entity.size(), code, isHex ? 16 : 10);
    return error == std::errc() && end == entity.data() + entity.size() ? code : 0;
}

std::string Decoded(std::string_view text) {
    std::string decoded;
    while (!text.empty()) {
        decoded += TakeUntil(text, "&");
        const size_t end = text.substr(0, kLongestEntity).find(';');
        const char32_t code =
            end == std::string_view::npos ? 0 : CharacterOf(text.substr(1, end - 1));
        if (code != 0)
            AppendUtf8(decoded, code);
        else
            decoded += text.substr(0, 1);
        text.remove_prefix(std::min(code != 0 ? end + 1 : size_t{1}, text.size()));
    }
    return decoded;
}

// Takes a tag or a comment that begins `text`: the anchor's address if it is one.
std::string_view TakeTag(std::string_view& text, std::string_view& name) {
    if (text.starts_with("<!--")) {
        const size_t end = text.find("-->", 4);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 3);
        return name = {};
    }
    text.remove_prefix(1);
    name = {};
    if (text.empty() || kTagBeginnings.find(static_cast<char>(text[0] | 0x20)) == text.npos)
        return {};                                            // text
    name = text.substr(0, text.find_first_of(kEndOfName, 1)); // "/a" is one
    text.remove_prefix(name.size());
    return TakeHref(text);
}

// The text up to the end of the anchor.
std::string TitleIn(std::string_view text) {
    std::string title;
    text = text.substr(0, kLongestTitle);
    while (!text.empty()) {
        title += TakeUntil(text, "<");
        std::string_view name;
        if (!text.empty())
            TakeTag(text, name);
        if (IsWord(name, "/a") || IsWord(name, "a"))
            break;
    }
    return Decoded(title);
}

} // namespace

std::optional<Link> LinkOfHtml(std::string_view bytes) {
    const std::string whole = TextOf(bytes);
    std::string_view text = whole;
    for (TakeUntil(text, "<"); !text.empty(); TakeUntil(text, "<")) {
        std::string_view name;
        const std::string url = Decoded(WithoutBlanks(TakeTag(text, name)));
        if (IsWord(name, "a") && IsBookmarkUrl(url))
            return MakeLink(url, TitleIn(text));
    }
    return std::nullopt;
}
