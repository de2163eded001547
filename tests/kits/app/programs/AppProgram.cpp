// A program for the tests of the application object: app_program SIGNATURE OPTION...
// It writes a line to standard output for what happens to it.

#include <unistd.h>

#include <semaphore>
#include <set>
#include <string>

#include "kits/app/AppDefs.h"
#include "kits/app/AppResources.h"
#include "kits/app/Application.h"
#include "kits/app/Message.h"
#include "kits/app/SessionHooks.h"

namespace {

std::set<std::string> sOptions;
std::counting_semaphore<> sDismissed{0};

bool Has(const char* option) {
    return sOptions.contains(option);
}

void Say(std::string line) {
    line += '\n';
    if (write(STDOUT_FILENO, line.data(), line.size()) < 0)
        _exit(99);
}

[[noreturn]] void Hang() {
    for (;;)
        pause();
}

filter_result SaySource(BMessage* message, BHandler**, BMessageFilter*) {
    Say(message->IsSourceRemote() ? "remote quit" : "local quit");
    return B_DISPATCH_MESSAGE;
}

class Program : public BApplication {
public:
    explicit Program(const char* signature)
        : BApplication(signature) {
        for (const message_source source : {B_REMOTE_SOURCE, B_LOCAL_SOURCE})
            AddFilter(new BMessageFilter(B_ANY_DELIVERY, source, B_QUIT_REQUESTED, SaySource));
    }
    ~Program() override { Say("destroyed"); }

    void ReadyToRun() override {
        Say("ready");
        if (Has("hang"))
            Hang();
        if (Has("block"))
            sDismissed.acquire();
    }
    void AboutRequested() override { Say("about"); }
    void MessageReceived(BMessage* message) override {
        if (message->what == 'test')
            Say(message->IsSourceRemote() ? "remote test" : "local test");
        else
            BApplication::MessageReceived(message);
    }
};

void SetHooks() {
    session_hooks hooks;
    hooks.dismiss = [] {
        Say("dismiss");
        sDismissed.release();
    };
    hooks.allow = [] { Say("allow"); };
    hooks.wake = [](const std::string&) {
        Say("wake");
        return true;
    };
    hooks.quit_windows = [] {
        Say("quit windows");
        return sOptions.erase("refuse") == 0;
    };
    set_session_hooks(hooks);
}

} // namespace

int main(int argc, char** argv) {
    sOptions.insert(argv + 2, argv + argc);
    app_resources resources;
    resources.signature = argv[1];
    resources.launch_flags = Has("exclusive") ? B_EXCLUSIVE_LAUNCH : B_MULTIPLE_LAUNCH;
    set_app_resources(&resources);

    Program program(argv[1]);
    Say("built");
    program.PostMessage('test');
    char byte;
    if (Has("wait") && read(STDIN_FILENO, &byte, 1) < 0)
        return 98;
    SetHooks();
    program.SetEmergencyAction([] {
        Say("saved");
        if (Has("hang-save"))
            Hang();
    });
    program.Run();
    return program.ExitStatus();
}
