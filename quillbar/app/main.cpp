#include <algorithm>
#include <cstdio>
#include <optional>
#include <string_view>
#include <vector>

#include "kits/app/AppResources.h"
#include "kits/interface/drawing/Font.h"
#include "kits/interface/window/Window.h"
#include "quillbar/app/Application.h"
#include "quillbar/app/Resources.h"

namespace {

constexpr int kBadUse = 2;

constexpr const char* kHelp =
    "Usage: quillbar [OPTION]\n"
    "A bookmark bar: ten folder buttons with ten bookmarks each.\n"
    "\n"
    "  --help     print this text and exit\n"
    "  --version  print the version and exit\n"
    "\n"
    "Without an option the bar is started; where it runs already, it comes to the front.\n"
    "Bookmarks are files in ~/.config/Quillbar. See quillbar(1) and quillbar(5).\n";

void PrintVersion() {
    const app_version& version = kAppResources.version;
    std::printf("quillbar %u.%u.%u", version.major, version.middle, version.minor);
    if (version.variety == B_BETA_VERSION)
        std::printf(" beta %u", version.internal);
    std::printf("\n");
}

// What the process ends with when its arguments ask for something other than the bar.
std::optional<int> ReadOptions(const std::vector<std::string_view>& options) {
    if (options.empty())
        return std::nullopt;
    for (const std::string_view option : options) {
        if (option == "--help" || option == "--version")
            continue;
        std::fprintf(stderr, "quillbar: unknown argument: %s\nTry: quillbar --help\n",
                     option.data());
        return kBadUse;
    }
    if (options[0] == "--help")
        std::fputs(kHelp, stdout);
    else
        PrintVersion();
    return std::fflush(stdout) == 0 ? 0 : 1;
}

} // namespace

int main(int count, char** arguments) {
    if (const auto status = ReadOptions({arguments + std::min(count, 1), arguments + count}))
        return *status;
    set_app_resources(&kAppResources);
    // A second start ends in here, before it has done anything that takes time.
    QBApp app;
    // The digits on the bar: their font takes longest of all that the first picture needs.
    const auto font = prepare_font(*be_bold_font);
    if (connect_display() != B_OK)
        return 1;
    app.Run();
    return app.ExitStatus();
}
