#include "quillbarctl/formats/BookmarkHtml.h"

#include <libxml/HTMLparser.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <string_view>

#include "base/Utf8.h"
#include "quillbar/bookmarks/StoreNames.h"

namespace {

// A longer one is cut when it becomes a file's name; this bounds what is kept until then.
constexpr size_t kLongestText = 4096;
constexpr size_t kPart = 1 << 16;

// Builds the groups from the parser's events.
class Reader {
public:
    void Start(std::string_view element, const xmlChar** attributes);
    void End(std::string_view element);
    void Characters(std::string_view text);
    Collection Take();
    bool HasTooMany() const { return fCount > kMostBookmarks; }

private:
    enum class Collected { Nothing, FolderName, LinkName };

    void StartFolder();
    void StartLink(const xmlChar** attributes);
    void EndLink();

    Collection fGroups{Group()};
    std::vector<size_t> fOpen{0}; // indices of the groups around this place
    size_t fCount = 0;            // of links and lists
    Collected fCollected = Collected::Nothing;
    std::string fText;
    std::string fFolderName; // of the list that comes next
    std::string fUrl;
    std::string fKeywords;
};

std::string_view ViewOf(const xmlChar* text) {
    return text ? reinterpret_cast<const char*>(text) : std::string_view();
}

// Without the blanks around it, which HTML does not count.
std::string Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n\f";
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return std::string(text.substr(first, text.find_last_not_of(kBlanks) - first + 1));
}

void Reader::Start(std::string_view element, const xmlChar** attributes) {
    if (HasTooMany())
        return;
    if (element == "dl") {
        StartFolder();
    } else if (element == "h3") {
        fCollected = Collected::FolderName;
        fText.clear();
    } else if (element == "a") {
        EndLink();
        StartLink(attributes);
    }
}

void Reader::End(std::string_view element) {
    if (element == "dl") {
        EndLink();
        if (fOpen.size() > 1)
            fOpen.pop_back();
    } else if (element == "h3" && fCollected == Collected::FolderName) {
        fFolderName = Trimmed(fText);
        fCollected = Collected::Nothing;
    } else if (element == "a") {
        EndLink();
    }
}

void Reader::Characters(std::string_view text) {
    if (fCollected != Collected::Nothing && fText.size() < kLongestText)
        fText += text;
}

// A list without a name of its own belongs to what is around it.
void Reader::StartFolder() {
    EndLink();
    ++fCount;
    size_t group = fOpen.back();
    if (!fFolderName.empty()) {
        group = fGroups.size();
        fGroups.push_back({std::move(fFolderName), std::nullopt, {}});
        fFolderName.clear();
    }
    fOpen.push_back(group);
}

void Reader::StartLink(const xmlChar** attributes) {
    fUrl.clear();
    fKeywords.clear();
    std::string tags;
    for (; attributes && attributes[0]; attributes += 2) {
        const std::string_view name = ViewOf(attributes[0]);
        const std::string value = Trimmed(ViewOf(attributes[1]));
        if (name == "href")
            fUrl = value;
        else if (name == "shortcuturl")
            fKeywords = value;
        else if (name == "tags")
            tags = value;
    }
    if (!fKeywords.empty() && !tags.empty())
        fKeywords += ",";
    fKeywords += tags;
    fCollected = Collected::LinkName;
    fText.clear();
}

void Reader::EndLink() {
    if (fCollected != Collected::LinkName)
        return;
    fCollected = Collected::Nothing;
    if (fUrl.empty() || ++fCount > kMostBookmarks)
        return;
    const std::string title = Trimmed(fText);
    const std::string name = title.empty() ? NameForUrl(fUrl) : title;
    fGroups[fOpen.back()].bookmarks.push_back({MakeBookmark(name, fUrl, fKeywords), std::nullopt});
}

Collection Reader::Take() {
    EndLink();
    std::erase_if(fGroups, [](const Group& group) { return group.bookmarks.empty(); });
    return std::move(fGroups);
}

xmlSAXHandler Events() {
    xmlSAXHandler events = {};
    events.startElement = [](void* reader, const xmlChar* name, const xmlChar** attributes) {
        static_cast<Reader*>(reader)->Start(ViewOf(name), attributes);
    };
    events.endElement = [](void* reader, const xmlChar* name) {
        static_cast<Reader*>(reader)->End(ViewOf(name));
    };
    events.characters = [](void* reader, const xmlChar* text, int length) {
        static_cast<Reader*>(reader)->Characters(
            {reinterpret_cast<const char*>(text), static_cast<size_t>(length)});
    };
    events.ignorableWhitespace = events.characters;
    return events;
}

struct ParserDeleter {
    void operator()(htmlParserCtxtPtr parser) const { htmlFreeParserCtxt(parser); }
};

// The parser would take a text that is not UTF-8 for something else from there on.
std::string AsUtf8(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const Utf8Character character = FirstCharacter(text);
        if (character.code == kNoCharacter)
            result += kReplacementMark;
        else if (character.code != 0)
            result += text.substr(0, character.length);
        text.remove_prefix(character.length);
    }
    return result;
}

std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char byte : OneLineOf(text)) {
        if (byte == '&')
            escaped += "&amp;";
        else if (byte == '<')
            escaped += "&lt;";
        else if (byte == '>')
            escaped += "&gt;";
        else if (byte == '"')
            escaped += "&quot;";
        else
            escaped += byte;
    }
    return escaped;
}

std::string LinkOf(const Bookmark& bookmark) {
    std::string link = "        <DT><A HREF=\"" + Escaped(TextOf(bookmark, kUrlAttribute)) + "\"";
    const std::string keywords = Escaped(TextOf(bookmark, kKeywordsAttribute));
    if (!keywords.empty())
        link += " TAGS=\"" + keywords + "\"";
    return link + ">" + Escaped(bookmark.name) + "</A>\n";
}

} // namespace

void ReadHtml(const std::string& text, Collection& collection, std::string& error) {
    const std::string bytes = AsUtf8(text);
    xmlSAXHandler events = Events();
    Reader reader;
    const std::unique_ptr<htmlParserCtxt, ParserDeleter> parser(
        htmlCreatePushParserCtxt(&events, &reader, nullptr, 0, nullptr, XML_CHAR_ENCODING_UTF8));
    // What the text says of its encoding is no longer true.
    htmlCtxtUseOptions(parser.get(), HTML_PARSE_RECOVER | HTML_PARSE_NOERROR |
                                         HTML_PARSE_NOWARNING | HTML_PARSE_NONET |
                                         HTML_PARSE_IGNORE_ENC);
    for (size_t start = 0; start < bytes.size() && !reader.HasTooMany(); start += kPart)
        htmlParseChunk(parser.get(), &bytes[start],
                       static_cast<int>(std::min(kPart, bytes.size() - start)), 0);
    if (!reader.HasTooMany())
        htmlParseChunk(parser.get(), nullptr, 0, 1);
    collection = reader.Take();
    error = reader.HasTooMany() ? kTooMany : "";
}

std::string WriteHtml(const Collection& collection) {
    std::string text = "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n"
                       "<META HTTP-EQUIV=\"Content-Type\" CONTENT=\"text/html; charset=UTF-8\">\n"
                       "<TITLE>Bookmarks</TITLE>\n"
                       "<H1>Bookmarks</H1>\n"
                       "<DL><p>\n";
    for (const Group& group : collection) {
        const std::string name = group.name.empty() && group.folder ? std::to_string(*group.folder)
                                                                    : Escaped(group.name);
        text += "    <DT><H3>" + name + "</H3>\n    <DL><p>\n";
        for (const CollectedBookmark& collected : group.bookmarks)
            text += LinkOf(collected.bookmark);
        text += "    </DL><p>\n";
    }
    return text + "</DL><p>\n";
}
