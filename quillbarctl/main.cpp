#include "quillbarctl/CommandLine.h"

namespace {

constexpr const char* kFooter =
    "FOLDER and SLOT are digits, 0 to 9. Bookmarks are files in ~/.config/Quillbar.\n"
    "See quillbarctl(1).";

int ReportBadUse(const CLI::ParseError& error) {
    Warn("%s", error.what());
    Warn("try: quillbarctl --help");
    return kBadUse;
}

} // namespace

// What is thrown before the arguments are read is a fault of the program, which ends with it.
int main(int count, char** arguments) { // NOLINT(bugprone-exception-escape)
    CommandLine line{
        CLI::App("The bookmarks of Quillbar's bar, from the command line.", "quillbarctl")};
    line.app.set_version_flag("--version", "quillbarctl " QUILLBAR_VERSION_TEXT,
                              "print the version and exit");
    line.app.set_help_flag("--help", "print a summary and exit");
    line.app.require_subcommand(1);
    line.app.footer(kFooter);
    AddActivateCommands(line);
    AddListCommand(line);
    AddOpenCommand(line);
    AddAddCommand(line);
    AddImportCommand(line);
    AddExportCommand(line);
    AddAutostartCommand(line);
    try {
        line.app.parse(count, arguments);
    } catch (const CLI::Success& answer) {
        line.app.exit(answer);
        return Print("");
    } catch (const CLI::ParseError& error) {
        return ReportBadUse(error);
    }
    return line.status;
}
