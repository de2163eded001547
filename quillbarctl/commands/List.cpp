#include <memory>
#include <optional>

#include "quillbarctl/CommandLine.h"
#include "quillbarctl/Slots.h"
#include "quillbarctl/formats/BookmarkJson.h"
#include "quillbarctl/formats/LineText.h"

namespace {

struct Options {
    std::optional<size_t> folder;
    bool isJson = false;
};

int List(const Options& options) {
    Folders folders;
    if (ReadFolders(folders) != B_OK)
        return kFailed;
    if (options.isJson)
        return Print(ListAsJson(folders, options.folder));
    std::string lines;
    for (size_t folder = 0; folder < folders.size(); ++folder) {
        if (options.folder.value_or(folder) != folder)
            continue;
        for (size_t digit = 0; digit < 10; ++digit) {
            const Slot& slot = folders[folder].slots[digit];
            if (slot.isFilled)
                lines += LineOf(folder, digit, MakeBookmark(slot.name, slot.url, slot.keywords));
        }
    }
    return Print(lines);
}

} // namespace

void AddListCommand(CommandLine& line) {
    const auto options = std::make_shared<Options>();
    CLI::App* list = line.app.add_subcommand("list", "print the bookmarks, one on a line");
    list->add_option("FOLDER", options->folder, "only this folder's")->check(CLI::Range(0, 9));
    list->add_flag("--json", options->isJson, "as JSON, for programs");
    list->callback([&line, options] { line.status = List(*options); });
}
