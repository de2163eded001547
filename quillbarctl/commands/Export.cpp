#include <memory>
#include <string>

#include "base/Errors.h"
#include "kits/storage/Entry.h"
#include "quillbar/base/SettingsFile.h"
#include "quillbarctl/CommandLine.h"
#include "quillbarctl/SlotFiles.h"
#include "quillbarctl/Slots.h"
#include "quillbarctl/formats/BookmarkHtml.h"
#include "quillbarctl/formats/BookmarkJson.h"
#include "quillbarctl/formats/LineText.h"

namespace {

struct Options {
    std::string file;
    bool isJson = false;
};

// A folder with neither a name nor bookmarks is as good as none.
status_t Collect(const Folders& folders, Collection& collection) {
    for (size_t number = 0; number < folders.size(); ++number) {
        const Folder& folder = folders[number];
        Group group{folder.name, number, {}};
        for (size_t digit = 0; digit < folder.slots.size(); ++digit) {
            const Slot& slot = folder.slots[digit];
            CollectedBookmark collected{{}, digit};
            if (slot.isFilled && !slot.isBookmark) {
                Warn("slot %zu of folder %zu is left out: \"%s\" is no bookmark", digit, number,
                     Shown(slot.name).c_str());
            } else if (slot.isFilled) {
                if (ReadBookmark(slot, collected.bookmark) != B_OK)
                    return B_ERROR;
                group.bookmarks.push_back(collected);
            }
        }
        if (!group.name.empty() || !group.bookmarks.empty())
            collection.push_back(group);
    }
    return B_OK;
}

int WriteFile(const std::string& file, const std::string& text) {
    const BEntry entry(file.c_str(), true);
    if (entry.Exists() && !entry.IsFile())
        return Fail("%s is not a file", file.c_str());
    const status_t status = SettingsFile::Write(file.c_str(), text);
    return status == B_OK ? 0 : Fail("%s cannot be written: %s", file.c_str(), StatusText(status));
}

int Export(const Options& options) {
    Folders folders;
    Collection collection;
    if (ReadFolders(folders) != B_OK || Collect(folders, collection) != B_OK)
        return kFailed;
    const std::string text = options.isJson ? WriteJson(collection) : WriteHtml(collection);
    return options.file.empty() ? Print(text) : WriteFile(options.file, text);
}

} // namespace

void AddExportCommand(CommandLine& line) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = line.app.add_subcommand("export", "write all bookmarks for other programs");
    command->add_option("FILE", options->file, "else standard output");
    command->add_flag("--json", options->isJson,
                      "everything, for import, instead of HTML for browsers");
    command->callback([&line, options] { line.status = Export(*options); });
}
