#include "quillbarctl/Bookmark.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "base/Utf8.h"
#include "quillbar/bookmarks/StoreNames.h"
#include "quillbarctl/CommandLine.h"
#include "quillbarctl/formats/LineText.h"

namespace {

// Of a file's name, less "N - ".
constexpr size_t kLongestName = 255 - 4;

// Addresses that run something, carry their page in themselves or mean something to one browser.
constexpr std::string_view kRefusedSchemes[] = {"javascript", "vbscript", "data", "place"};

std::string SchemeOf(const std::string& url) {
    std::string scheme = url.substr(0, url.find(':'));
    std::transform(scheme.begin(), scheme.end(), scheme.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return scheme;
}

bool HasControl(std::string_view text) {
    while (!text.empty()) {
        const Utf8Character character = FirstCharacter(text);
        if (IsControl(character.code))
            return true;
        text.remove_prefix(character.length);
    }
    return false;
}

} // namespace

Bookmark MakeBookmark(const std::string& name, const std::string& url,
                      const std::string& keywords) {
    return {name,
            {{kTypeAttribute, kBookmarkType},
             {kUrlAttribute, BytesOf(url)},
             {kKeywordsAttribute, BytesOf(keywords)},
             {kTitleAttribute, BytesOf(name)}}};
}

std::string TextOf(const Bookmark& bookmark, const char* attribute) {
    const auto found = bookmark.attributes.find(attribute);
    return found == bookmark.attributes.end() ? "" : found->second.c_str();
}

std::string BytesOf(const std::string& text) {
    return text + '\0';
}

std::string UsableName(const std::string& name) {
    return NameOfTitle(name.c_str()).String();
}

std::string TakenName(const std::string& name) {
    std::string usable = UsableName(name);
    if (usable != name)
        Warn("the name \"%s\" becomes \"%s\"", Shown(name).c_str(), usable.c_str());
    return usable;
}

std::string NameForUrl(const std::string& url) {
    const size_t scheme = url.find("://");
    std::string name = scheme == std::string::npos ? url : url.substr(scheme + 3);
    name.resize(std::min(name.find_last_not_of('/') + 1, kLongestName));
    std::replace(name.begin(), name.end(), '/', ' ');
    return OneLineOf(name);
}

const char* RefusalOf(const std::string& url) {
    if (url.empty())
        return "it is empty";
    if (url.front() == '-')
        return "a browser would take it for an option";
    if (!IsUtf8(url) || HasControl(url))
        return "it has control characters, or is not UTF-8";
    if (url.front() == ' ')
        return "it begins with a blank";
    if (std::ranges::find(kRefusedSchemes, SchemeOf(url)) != std::end(kRefusedSchemes))
        return "it is no address of a page";
    return nullptr;
}
