#include <memory>

#include "kits/app/Application.h"
#include "kits/app/Message.h"
#include "kits/app/Messenger.h"
#include "quillbarctl/CommandLine.h"

namespace {

constexpr const char* kBar = "application/x-Orvel.Quillbar";
constexpr bigtime_t kPatience = 2'000'000;

int Send(const BMessage& request) {
    switch (const status_t status = BMessenger(kBar).SendMessage(&request, kPatience)) {
    case B_OK:
        return 0;
    case B_BAD_PORT_ID:
        return Fail("Quillbar does not run. Start it: quillbar");
    case B_TIMED_OUT:
    case B_BUSY:
        return Fail("Quillbar does not answer.");
    default:
        return Fail("Quillbar cannot be reached: %s", StatusText(status));
    }
}

int OpenMenu(int32 folder) {
    BMessage request = BApplication::Relaunch();
    request.AddInt32("folder", folder + 1);
    return Send(request);
}

} // namespace

void AddActivateCommands(CommandLine& line) {
    CLI::App* activate = line.app.add_subcommand(
        "activate", "bring the running bar to the front, with the keyboard");
    activate->callback([&line] { line.status = Send(BApplication::Relaunch()); });

    const auto folder = std::make_shared<int32>(0);
    CLI::App* menu = line.app.add_subcommand("menu", "open a folder's menu on the running bar");
    menu->add_option("FOLDER", *folder, "the folder's digit")->required()->check(CLI::Range(0, 9));
    menu->callback([&line, folder] { line.status = OpenMenu(*folder); });
}
