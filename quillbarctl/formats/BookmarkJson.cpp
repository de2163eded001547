#include "quillbarctl/formats/BookmarkJson.h"

#include <nlohmann/json.hpp>

#include "base/Utf8.h"
#include "quillbar/bookmarks/StoreNames.h"

using Json = nlohmann::ordered_json;

namespace {

constexpr int kVersion = 1;
constexpr int kIndent = 2;

// The whole, its folders, a folder, its bookmarks, a bookmark, its attributes, an attribute.
constexpr int kMostNested = 7;

// The kernel keeps no longer name.
constexpr size_t kLongestAttributeName = 250;

std::string Dump(const Json& json) {
    return json.dump(kIndent, ' ', false, Json::error_handler_t::replace) + "\n";
}

// Whether the bytes are a text and its NUL.
bool IsText(const std::string& bytes) {
    return !bytes.empty() && bytes.find('\0') == bytes.size() - 1 && IsUtf8(bytes);
}

Json JsonOfBytes(const std::string& bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    if (IsText(bytes))
        return bytes.c_str();
    if (bytes.find('\0') == std::string::npos && IsUtf8(bytes))
        return {{"text", bytes}};
    std::string hex;
    for (const unsigned char byte : bytes)
        hex.append({kDigits[byte >> 4], kDigits[byte & 15]});
    return {{"hex", hex}};
}

int ValueOfDigit(char digit) {
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    return -1;
}

bool BytesOfHex(const std::string& hex, std::string& bytes) {
    bytes.clear();
    for (size_t i = 0; i + 1 < hex.size(); i += 2) {
        const int high = ValueOfDigit(hex[i]), low = ValueOfDigit(hex[i + 1]);
        if (high < 0 || low < 0)
            return false;
        bytes += static_cast<char>(high * 16 + low);
    }
    return hex.size() % 2 == 0;
}

bool BytesOfJson(const Json& json, std::string& bytes) {
    if (json.is_string()) {
        bytes = BytesOf(json.get<std::string>());
        return IsText(bytes);
    }
    if (!json.is_object() || json.size() != 1 || !json.begin()->is_string())
        return false;
    const std::string value = json.begin()->get<std::string>();
    if (json.begin().key() == "hex")
        return BytesOfHex(value, bytes);
    bytes = value;
    return json.begin().key() == "text";
}

// Attributes that are as this program would make them are said in few words.
Json JsonOf(const CollectedBookmark& collected) {
    const Bookmark& bookmark = collected.bookmark;
    const Bookmark plain = MakeBookmark(bookmark.name, TextOf(bookmark, kUrlAttribute),
                                        TextOf(bookmark, kKeywordsAttribute));
    Json json;
    if (collected.slot)
        json["slot"] = *collected.slot;
    json["name"] = bookmark.name;
    json["url"] = TextOf(bookmark, kUrlAttribute);
    json["keywords"] = TextOf(bookmark, kKeywordsAttribute);
    if (!bookmark.attributes.contains(kTitleAttribute))
        json["title"] = nullptr;
    Json others = Json::object();
    for (const auto& [name, bytes] : bookmark.attributes) {
        const auto usual = plain.attributes.find(name);
        const bool isUsual = usual != plain.attributes.end() && usual->second == bytes;
        if (!isUsual || !IsUtf8(bytes))
            others[name] = JsonOfBytes(bytes);
    }
    if (!others.empty())
        json["attributes"] = others;
    return json;
}

bool ReadDigit(const Json& json, const char* member, std::optional<size_t>& digit) {
    if (!json.contains(member))
        return true;
    const Json& value = json[member];
    if (!value.is_number_unsigned() || value.get<uint64_t>() > 9)
        return false;
    digit = value.get<size_t>();
    return true;
}

// A member that may be missing.
bool ReadText(const Json& json, const char* member, std::string& text) {
    if (!json.contains(member))
        return true;
    if (!json[member].is_string())
        return false;
    text = json[member].get<std::string>();
    return text.find('\0') == std::string::npos;
}

bool ReadAttributes(const Json& json, Bookmark& bookmark) {
    if (json.contains("title") && json["title"].is_null())
        bookmark.attributes.erase(kTitleAttribute);
    if (!json.contains("attributes"))
        return true;
    for (const auto& [name, value] : json["attributes"].items()) {
        std::string bytes;
        if (name.empty() || name.size() > kLongestAttributeName ||
            name.find('\0') != std::string::npos || !BytesOfJson(value, bytes))
            return false;
        bookmark.attributes[name] = bytes;
    }
    return json["attributes"].is_object();
}

bool ReadBookmark(const Json& json, CollectedBookmark& collected) {
    std::string name, url, keywords;
    if (!json.is_object() || !json.contains("name") || !ReadText(json, "name", name) ||
        !ReadText(json, "url", url) || !ReadText(json, "keywords", keywords) ||
        !ReadDigit(json, "slot", collected.slot))
        return false;
    collected.bookmark = MakeBookmark(name, url, keywords);
    return ReadAttributes(json, collected.bookmark);
}

bool ReadFolder(const Json& json, Group& group) {
    if (!json.is_object() || !ReadText(json, "name", group.name) ||
        !ReadDigit(json, "folder", group.folder) || !json.contains("bookmarks") ||
        !json["bookmarks"].is_array() || json["bookmarks"].size() > kMostBookmarks)
        return false;
    for (const Json& bookmark : json["bookmarks"]) {
        if (!ReadBookmark(bookmark, group.bookmarks.emplace_back()))
            return false;
    }
    return true;
}

void ReadFolders(const Json& folders, Collection& collection, std::string& error) {
    size_t count = folders.size();
    for (const Json& folder : folders) {
        if (count > kMostBookmarks) {
            error = kTooMany;
        } else if (!ReadFolder(folder, collection.emplace_back())) {
            error = "the folder in place " + std::to_string(collection.size()) +
                    " is not as \"quillbarctl export --json\" writes it";
        }
        if (!error.empty())
            return;
        count += collection.back().bookmarks.size();
    }
}

// Null unless the text is JSON and is not nested deeper than ours is.
Json Parse(const std::string& text) {
    bool isTooDeep = false;
    const auto look = [&](int depth, Json::parse_event_t, const Json&) {
        isTooDeep = isTooDeep || depth > kMostNested;
        return !isTooDeep;
    };
    Json json = Json::parse(text, look, false);
    return isTooDeep || json.is_discarded() ? Json() : json;
}

} // namespace

void ReadJson(const std::string& text, Collection& collection, std::string& error) {
    const Json json = Parse(text);
    collection.clear();
    error.clear();
    if (!json.is_object() || !json.contains("quillbar") || !json.contains("folders") ||
        !json["folders"].is_array())
        error = "it is not the JSON that \"quillbarctl export --json\" writes";
    else if (json["quillbar"] != kVersion)
        error = "it has another version than this program can read";
    else
        ReadFolders(json["folders"], collection, error);
}

std::string WriteJson(const Collection& collection) {
    Json folders = Json::array();
    for (const Group& group : collection) {
        Json bookmarks = Json::array();
        for (const CollectedBookmark& collected : group.bookmarks)
            bookmarks.push_back(JsonOf(collected));
        Json folder;
        if (group.folder)
            folder["folder"] = *group.folder;
        folder["name"] = group.name;
        folder["bookmarks"] = bookmarks;
        folders.push_back(folder);
    }
    return Dump({{"quillbar", kVersion}, {"folders", folders}});
}

std::string ListAsJson(const Folders& folders, std::optional<size_t> only) {
    Json list = Json::array();
    for (size_t folder = 0; folder < folders.size(); ++folder) {
        for (size_t digit = 0; digit < 10; ++digit) {
            const Slot& slot = folders[folder].slots[digit];
            if (slot.isFilled && only.value_or(folder) == folder)
                list.push_back({{"folder", folder},
                                {"slot", digit},
                                {"name", slot.name},
                                {"url", slot.url},
                                {"keywords", slot.keywords}});
        }
    }
    return Dump(list);
}
