#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "base/Errors.h"
#include "quillbar/base/Browser.h"
#include "quillbar/base/Settings.h"
#include "quillbarctl/CommandLine.h"
#include "quillbarctl/Slots.h"
#include "quillbarctl/formats/LineText.h"

namespace {

// The longest part of a line that is looked at: the two digits are in front.
constexpr size_t kLongestLine = 1 << 20;

struct Options {
    std::optional<size_t> folder;
    std::optional<size_t> slot;
};

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

// The folder and slot of a line of `list`. An empty line is what a chooser leaves that was
// cancelled.
bool ReadLine(Options& options) {
    std::string line;
    for (int byte = std::getchar(); byte != EOF && byte != '\n'; byte = std::getchar()) {
        if (line.size() < kLongestLine)
            line += static_cast<char>(byte);
    }
    if (line.size() < 3 || !IsDigit(line[0]) || line[1] != '\t' || !IsDigit(line[2]) ||
        (line.size() > 3 && line[3] != '\t'))
        return false;
    options.folder = static_cast<size_t>(line[0] - '0');
    options.slot = static_cast<size_t>(line[2] - '0');
    return true;
}

QBBrowser ChosenBrowser() {
    QBSettings settings((BPath(kSettingsPath)));
    settings.Peek();
    return UsableBrowser(settings.GetBrowser(), HasBrowser(kQBOpera), HasBrowser(kQBNetPositive));
}

int OpenSlot(const Slot& slot, size_t folder, size_t digit) {
    if (!slot.isFilled)
        return Fail("slot %zu of folder %zu is empty", digit, folder);
    if (slot.url.empty())
        return Fail("\"%s\" has no address", Shown(slot.name).c_str());
    const QBBrowser browser = ChosenBrowser();
    const status_t status = OpenInBrowser(browser, slot.url.c_str());
    if (status == B_BAD_VALUE)
        return Fail(
            "\"%s\" cannot be opened: its address could be read as an option or has control "
            "characters, or the settings name no browser",
            Shown(slot.name).c_str());
    if (status != B_OK)
        return Fail("%s cannot be started: %s", BrowserName(browser).String(),
                    LaunchReason(status));
    return 0;
}

int Open(Options& options) {
    if (!options.folder && !ReadLine(options))
        return Fail("standard input has no line of \"quillbarctl list\"");
    Folders folders;
    if (ReadFolders(folders) != B_OK)
        return kFailed;
    return OpenSlot(folders[*options.folder].slots[*options.slot], *options.folder, *options.slot);
}

} // namespace

void AddOpenCommand(CommandLine& line) {
    const auto options = std::make_shared<Options>();
    CLI::App* open = line.app.add_subcommand("open", "open a bookmark in the browser");
    CLI::Option* folder = open->add_option("FOLDER", options->folder,
                                           "without it, of a line of \"list\" on standard input");
    CLI::Option* slot = open->add_option("SLOT", options->slot, "the bookmark's digit");
    folder->check(CLI::Range(0, 9))->needs(slot);
    slot->check(CLI::Range(0, 9));
    open->callback([&line, options] { line.status = Open(*options); });
}
