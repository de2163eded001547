#include <cerrno>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "base/Errors.h"
#include "base/Utf8.h"
#include "quillbar/bookmarks/StoreNames.h"
#include "quillbarctl/Bookmark.h"
#include "quillbarctl/CommandLine.h"
#include "quillbarctl/Placement.h"
#include "quillbarctl/SlotFiles.h"
#include "quillbarctl/Slots.h"
#include "quillbarctl/formats/BookmarkHtml.h"
#include "quillbarctl/formats/BookmarkJson.h"
#include "quillbarctl/formats/LineText.h"

namespace {

// Ten thousand bookmarks with their icons are about half of that.
constexpr size_t kLongestHtml = 64 << 20;
// Takes many times its size while it is read.
constexpr size_t kLongestJson = 8 << 20;

struct Options {
    std::string file;
    std::optional<size_t> folder;
    bool isDry = false;
};

struct Counts {
    size_t placed = 0;
    size_t there = 0;
    size_t homeless = 0;
    size_t refused = 0;
    size_t failed = 0;
};

struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
};

bool ReadFile(const std::string& name, std::string& text) {
    const std::unique_ptr<FILE, FileCloser> file(std::fopen(name.c_str(), "re"));
    size_t count = file ? 1 : 0;
    while (count > 0 && text.size() <= kLongestHtml) {
        char part[1 << 16];
        count = std::fread(part, 1, sizeof part, file.get());
        text.append(part, count);
    }
    if (!file || std::ferror(file.get())) {
        Fail("%s cannot be read: %s", name.c_str(), StatusText(StatusFromErrno(errno)));
        return false;
    }
    return true;
}

bool Parse(const std::string& name, const std::string& text, Collection& collection) {
    const size_t first = text.find_first_not_of("\xef\xbb\xbf \t\r\n");
    const char kind = first == std::string::npos ? '\0' : text[first];
    std::string error;
    if (text.size() > (kind == '{' ? kLongestJson : kLongestHtml))
        error = "it is too long for a file of bookmarks";
    else if (kind == '<')
        ReadHtml(text, collection, error);
    else if (kind == '{')
        ReadJson(text.substr(first), collection, error);
    else
        error = "it is neither HTML nor JSON with bookmarks";
    if (!error.empty()) {
        Fail("%s is not taken: %s", name.c_str(), error.c_str());
        return false;
    }
    if (!IsUtf8(text))
        Warn("%s is not UTF-8 everywhere; the other bytes are replaced", name.c_str());
    return true;
}

// The name and the title as they can be.
void Clean(Bookmark& bookmark) {
    const std::string name = TakenName(bookmark.name);
    if (name == bookmark.name)
        return;
    const auto title = bookmark.attributes.find(kTitleAttribute);
    if (title != bookmark.attributes.end() && title->second == BytesOf(bookmark.name))
        title->second = BytesOf(name);
    bookmark.name = name;
}

// Leaves out what cannot be a bookmark, and makes the names what files can be called.
void MakeSafe(Collection& collection, Counts& counts) {
    for (Group& group : collection) {
        std::erase_if(group.bookmarks, [&](CollectedBookmark& collected) {
            const std::string url = TextOf(collected.bookmark, kUrlAttribute);
            const char* refusal = RefusalOf(url);
            if (refusal)
                Warn("\"%s\" (%s) is not taken: %s", Shown(collected.bookmark.name).c_str(),
                     Shown(url).c_str(), refusal);
            counts.refused += refusal ? 1 : 0;
            return refusal != nullptr;
        });
        for (CollectedBookmark& collected : group.bookmarks)
            Clean(collected.bookmark);
        group.name = TakenName(group.name);
    }
}

void Report(const Placed& placed, Folders& folders, bool isDry, Counts& counts) {
    const auto& [bookmark, fate, number, digit] = placed;
    if (fate == Fate::IsThere) {
        ++counts.there;
    } else if (fate == Fate::NoRoom) {
        ++counts.homeless;
        Warn("no room for \"%s\" (%s)", Shown(bookmark->name).c_str(),
             Shown(TextOf(*bookmark, kUrlAttribute)).c_str());
    } else if (isDry || FillSlot(folders[number], digit, *bookmark) == B_OK) {
        ++counts.placed;
        Print(LineOf(number, digit, *bookmark));
    } else {
        ++counts.failed;
    }
}

// Makes the folders that are used, and names those that get a name.
status_t MakeFolders(Folders& folders, const Folders& planned) {
    for (size_t number = 0; number < folders.size(); ++number) {
        const bool isUsed = planned[number].name != folders[number].name ||
                            RoomIn(planned[number]) != RoomIn(folders[number]);
        if (isUsed && MakeFolder(folders[number], number, planned[number].name) != B_OK)
            return B_ERROR;
    }
    return B_OK;
}

int Summarize(const Counts& counts, bool isDry) {
    Warn("%zu %s in, %zu were there already, %zu found no room, %zu were not taken, %zu failed",
         counts.placed, isDry ? "would come" : "came", counts.there, counts.homeless,
         counts.refused, counts.failed);
    return counts.homeless + counts.refused + counts.failed > 0 ? kFailed : 0;
}

int Import(const Options& options) {
    std::string text;
    Collection collection;
    if (!ReadFile(options.file, text) || !Parse(options.file, text, collection))
        return kFailed;
    Counts counts;
    MakeSafe(collection, counts);
    std::optional<StoreLock> lock;
    if (!options.isDry && lock.emplace().InitCheck() != B_OK)
        return kFailed;
    Folders folders;
    if (ReadFolders(folders) != B_OK)
        return kFailed;
    Folders planned = folders;
    const std::vector<Placed> all = PlaceAll(collection, options.folder, planned);
    if (!options.isDry && MakeFolders(folders, planned) != B_OK)
        return kFailed;
    for (const Placed& placed : all)
        Report(placed, folders, options.isDry, counts);
    return Summarize(counts, options.isDry);
}

} // namespace

void AddImportCommand(CommandLine& line) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = line.app.add_subcommand(
        "import", "fill empty slots with the bookmarks of a browser or another computer");
    command->add_option("FILE", options->file, "HTML that a browser exported, or our own JSON")
        ->required();
    command->add_option("--folder", options->folder, "into this folder only")
        ->check(CLI::Range(0, 9));
    command->add_flag("--dry-run", options->isDry, "only say what would come where");
    command->callback([&line, options] { line.status = Import(*options); });
}
