#include <algorithm>
#include <memory>
#include <optional>

#include "base/Errors.h"
#include "quillbarctl/Bookmark.h"
#include "quillbarctl/CommandLine.h"
#include "quillbarctl/SlotFiles.h"
#include "quillbarctl/Slots.h"
#include "quillbarctl/formats/LineText.h"

namespace {

struct Options {
    std::string url;
    std::optional<std::string> name;
    std::string keywords;
    std::optional<size_t> folder;
    std::optional<size_t> slot;
    bool isReplacing = false;
};

// Completes folder and slot. False if there is no room.
bool FindPlace(const Folders& folders, Options& options) {
    for (size_t folder = 0; folder < folders.size() && !options.slot; ++folder) {
        if (options.folder.value_or(folder) != folder)
            continue;
        options.slot = FirstEmptySlot(folders[folder]);
        if (options.slot)
            options.folder = folder;
    }
    return options.slot.has_value();
}

int AddInto(Folder& folder, const Options& options) {
    const std::string name = TakenName(options.name.value_or(NameForUrl(options.url)));
    const Bookmark bookmark = MakeBookmark(name, options.url, options.keywords);
    if (MakeFolder(folder, *options.folder, "") != B_OK)
        return kFailed;
    const auto save = options.isReplacing ? ReplaceSlot : FillSlot;
    return save(folder, *options.slot, bookmark) == B_OK ? 0 : kFailed;
}

int Add(Options& options) {
    if (const char* refusal = RefusalOf(options.url))
        return Fail("the address is not taken: %s", refusal);
    const StoreLock lock;
    Folders folders;
    if (lock.InitCheck() != B_OK || ReadFolders(folders) != B_OK)
        return kFailed;
    if (!FindPlace(folders, options))
        return options.folder ? Fail("folder %zu is full", *options.folder)
                              : Fail("all folders are full");
    Folder& folder = folders[*options.folder];
    const Slot& slot = folder.slots[*options.slot];
    if (slot.isFilled && !options.isReplacing)
        return Fail("slot %zu of folder %zu has \"%s\"; --replace moves it to the trash",
                    *options.slot, *options.folder, Shown(slot.name).c_str());
    return AddInto(folder, options);
}

} // namespace

void AddAddCommand(CommandLine& line) {
    const auto options = std::make_shared<Options>();
    CLI::App* add = line.app.add_subcommand("add", "make a bookmark");
    add->add_option("URL", options->url, "the page's address")->required();
    add->add_option("--name", options->name, "what it is called; else what the address says");
    add->add_option("--keywords", options->keywords, "for your own purposes");
    CLI::Option* folder =
        add->add_option("--folder", options->folder, "else the first with an empty slot");
    CLI::Option* slot = add->add_option("--slot", options->slot, "else the first empty one");
    folder->check(CLI::Range(0, 9));
    slot->check(CLI::Range(0, 9))->needs(folder);
    add->add_flag("--replace", options->isReplacing,
                  "move the bookmark that is in the slot to the trash")
        ->needs(slot);
    add->callback([&line, options] { line.status = Add(*options); });
}
