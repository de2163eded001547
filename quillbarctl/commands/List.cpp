#include <memory>
#include <optional>

#include "base/Types.h"
#include "quillbarctl/CommandLine.h"
#include "quillbarctl/Slots.h"
#include "quillbarctl/formats/LineText.h"

namespace {

struct Options {
    std::optional<size_t> folder;
};

std::string LineOf(size_t folder, size_t digit, const Slot& slot) {
    return std::to_string(folder) + '\t' + std::to_string(digit) + '\t' + EscapeLine(slot.name) +
           '\t' + EscapeLine(slot.url) + '\t' + EscapeLine(slot.keywords) + '\n';
}

int List(const Options& options) {
    Folders folders;
    if (ReadFolders(folders) != B_OK)
        return kFailed;
    std::string lines;
    for (size_t folder = 0; folder < folders.size(); ++folder) {
        if (options.folder.value_or(folder) != folder)
            continue;
        for (size_t digit = 0; digit < 10; ++digit) {
            const Slot& slot = folders[folder].slots[digit];
            if (slot.isFilled)
                lines += LineOf(folder, digit, slot);
        }
    }
    return Print(lines);
}

} // namespace

void AddListCommand(CommandLine& line) {
    const auto options = std::make_shared<Options>();
    CLI::App* list = line.app.add_subcommand("list", "print the bookmarks, one on a line");
    list->add_option("FOLDER", options->folder, "only this folder's")->check(CLI::Range(0, 9));
    list->callback([&line, options] { line.status = List(*options); });
}
