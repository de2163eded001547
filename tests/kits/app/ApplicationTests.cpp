// Whole programs: requests to quit at any moment, what hangs, and what other programs may ask for.
// Each is this program once more, and writes a line to standard error for what happens to it.

#include <csignal>
#include <filesystem>
#include <thread>
#include <unistd.h>

#include <gmock/gmock.h>

#include "host/loop/ServiceLoop.h"
#include "host/session/instance/InstanceSocket.h"
#include "kits/app/AppDefs.h"
#include "kits/app/AppResources.h"
#include "kits/app/Application.h"
#include "kits/app/Message.h"
#include "kits/app/SessionHooks.h"

namespace fs = std::filesystem;
using testing::ExitedWithCode;

namespace {

constexpr char kSignature[] = "application/x-vnd.test-program";

bool sRefuses = false; // the next request to quit

void Say(std::string line) {
    line += '\n';
    if (write(STDERR_FILENO, line.data(), line.size()) < 0)
        _exit(99);
}

void Terminate() {
    kill(getpid(), SIGTERM);
}

void Hang() {
    for (;;)
        pause();
}

filter_result SaySource(BMessage* message, BHandler**, BMessageFilter*) {
    Say(message->IsSourceRemote() ? "remote quit" : "local quit");
    return B_DISPATCH_MESSAGE;
}

// Does its work for the first message.
class Program : public BApplication {
public:
    explicit Program(void (*work)())
        : BApplication(kSignature)
        , fWork(work) {
        for (const message_source source : {B_REMOTE_SOURCE, B_LOCAL_SOURCE})
            AddFilter(new BMessageFilter(B_ANY_DELIVERY, source, B_QUIT_REQUESTED, SaySource));
    }
    ~Program() override { Say("destroyed"); }

    void ReadyToRun() override { Say("ready"); }
    void AboutRequested() override { Say("about"); }
    void MessageReceived(BMessage* message) override {
        if (message->what != 'work')
            return BApplication::MessageReceived(message);
        Say(message->IsSourceRemote() ? "remote work" : "local work");
        fWork();
    }

private:
    void (*const fWork)();
};

[[noreturn]] void Live(
    void (*work)(), void (*beforeRun)() = [] {}) {
    app_resources resources;
    resources.signature = kSignature;
    resources.launch_flags = B_EXCLUSIVE_LAUNCH;
    set_app_resources(&resources);
    int status = 0;
    {
        Program program(work);
        program.PostMessage('work');
        beforeRun();
        session_hooks hooks;
        hooks.dismiss = [] { Say("dismiss"); };
        hooks.allow = [] { Say("allow"); };
        hooks.quit_windows = [] {
            Say("quit windows");
            return !std::exchange(sRefuses, false);
        };
        set_session_hooks(hooks);
        program.SetEmergencyAction([] {
            Say("saved");
            Hang();
        });
        program.Run();
        status = program.ExitStatus();
    }
    _exit(status);
}

class ApplicationTest : public testing::Test {
protected:
    ApplicationTest() {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        setenv("XDG_RUNTIME_DIR", fRuntime.c_str(), 1);
    }
    ~ApplicationTest() override { fs::remove_all(fRuntime / "quillbar"); }

    const fs::path fRuntime = fs::temp_directory_path();
};

TEST_F(ApplicationTest, ASignalBeforeRunIsKept) {
    const auto terminate = [] {
        Terminate();
        for (int round = 0; round < 2; round++)
            host::ServiceLoop::Shared().InvokeAndWait([] {});
    };
    EXPECT_EXIT(Live([] {}, terminate), ExitedWithCode(0),
                "^dismiss\nready\nlocal work\nremote quit\ndismiss\nquit windows\ndestroyed\n$");
}

TEST_F(ApplicationTest, TheWatchdogEndsWhatHangsEvenInItsSave) {
    const auto hang = [] {
        Terminate();
        Hang();
    };
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EXIT(Live(hang), ExitedWithCode(0), "^ready\nlocal work\ndismiss\nsaved\n$");
    EXPECT_GT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
}

TEST_F(ApplicationTest, TheWatchdogLeavesWhatRefuses) {
    const auto refuse = [] {
        sRefuses = true;
        Terminate();
        std::thread([] {
            std::this_thread::sleep_for(std::chrono::milliseconds(5500));
            Terminate();
        }).detach();
    };
    EXPECT_EXIT(Live(refuse), ExitedWithCode(0),
                "^ready\nlocal work\ndismiss\nremote quit\ndismiss\nquit windows\nallow\n"
                "dismiss\nremote quit\ndismiss\nquit windows\ndestroyed\n$");
}

TEST_F(ApplicationTest, OtherProgramsMayAskAndQuitButNotStartItAgain) {
    const auto send = [] {
        EXPECT_EQ(B_OK, host::SendToInstance(kSignature, "{garbage", 10'000'000));
        for (const uint32 what : {B_READY_TO_RUN, B_ABOUT_REQUESTED, B_QUIT_REQUESTED}) {
            std::string text;
            BMessage(what).Flatten(&text);
            EXPECT_EQ(B_OK, host::SendToInstance(kSignature, text, 10'000'000));
        }
    };
    EXPECT_EXIT(Live(send), ExitedWithCode(0),
                "^ready\nlocal work\ndismiss\nabout\nremote quit\ndismiss\nquit windows\n"
                "destroyed\n$");
}

} // namespace
