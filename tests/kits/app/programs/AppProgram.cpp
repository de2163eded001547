// A program for the tests of the application object: app_program SIGNATURE OPTION...
// It writes a line to standard output for what happens to it.

#include <csignal>
#include <unistd.h>

#include <set>
#include <string>

#include "kits/app/AppDefs.h"
#include "kits/app/AppResources.h"
#include "kits/app/Application.h"
#include "kits/app/Message.h"
#include "kits/app/SessionHooks.h"
#include "kits/kernel/OS.h"

namespace {

std::set<std::string> sOptions;

bool Has(const char* option) {
    return sOptions.contains(option);
}

void Say(std::string line) {
    line += '\n';
    if (write(STDOUT_FILENO, line.data(), line.size()) < 0)
        _exit(99);
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
        while (Has("hang"))
            pause();
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
    hooks.dismiss = [] { Say("dismiss"); };
    hooks.allow = [] { Say("allow"); };
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
    if (Has("early")) {
        kill(getpid(), SIGTERM);
        snooze(100'000); // the service thread gets it
    }
    SetHooks();
    program.SetEmergencyAction([] {
        Say("saved");
        while (Has("hang-save"))
            pause();
    });
    program.Run();
    return program.ExitStatus();
}
