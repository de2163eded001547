#include <fcntl.h>
#include <gmock/gmock.h>

#include <atomic>
#include <csignal>
#include <fstream>
#include <sstream>

#include "host/loop/Descriptor.h"
#include "host/loop/ServiceLoop.h"
#include "host/session/programs/Launcher.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Wait.h"

namespace fs = std::filesystem;
using namespace host;
using testing::HasSubstr;

namespace {

// The content of a file, as soon as it has some.
std::string Read(const fs::path& path) {
    std::string content;
    test::WaitUntil([&] {
        std::ifstream file(path);
        content.assign(std::istreambuf_iterator(file), {});
        return !content.empty();
    });
    return content;
}

TEST(Launcher, AChildHasNothingOfOursAndLeavesNoZombie) {
    const test::TemporaryHome home;
    sigset_t blocked;
    sigset_t old;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, &old);
    const auto oldPipe = signal(SIGPIPE, SIG_IGN);
    const Descriptor leaking(open("/dev/null", O_RDONLY));
    const Descriptor high(fcntl(leaking.Get(), F_DUPFD, 200));
    // Programs that look at themselves: a shell changes its mask and opens files of its own.
    const std::string folder = home.Path();
    LaunchDetached({"/bin/cp", {"cp", "/proc/self/status", "/proc/self/stat", folder}, "/"});
    LaunchDetached({"/usr/bin/find",
                    {"find", "/proc/self/fd", "-type", "l", "-fprintf", "files", "<%f %l>"},
                    folder});
    signal(SIGPIPE, oldPipe);
    pthread_sigmask(SIG_SETMASK, &old, nullptr);

    const std::string status = Read(home.Path() / "status");
    EXPECT_THAT(status, HasSubstr("SigBlk:\t0000000000000000\n"));
    EXPECT_THAT(status, HasSubstr("SigIgn:\t0000000000000000\n"));
    const std::string files = Read(home.Path() / "files");
    EXPECT_THAT(files, HasSubstr("<0 /dev/null>"));
    for (const char* ours : {"<200 ", "eventfd"})
        EXPECT_THAT(files, testing::Not(HasSubstr(ours)));
    std::istringstream stat(Read(home.Path() / "stat"));
    std::string name, state;
    pid_t child, parent, group, session;
    stat >> child >> name >> state >> parent >> group >> session;
    EXPECT_EQ(child, session);
    EXPECT_TRUE(test::WaitUntil([&] { return kill(child, 0) != 0 && errno == ESRCH; }));
}

TEST(Launcher, OnlyAnErrorAtOnceIsAFailure) {
    const test::TemporaryHome home;
    std::atomic<int> failures = 0;
    const auto launch = [&](const std::string& script) {
        EXPECT_EQ(B_OK, LaunchDetached({"/bin/sh", {"sh", "-c", script}, home.Path()},
                                       [&] { ++failures; }));
    };
    launch("exit 0");
    launch("sleep 2; echo >late; exit 1");
    launch("exit 1");
    launch("kill -TERM $$");
    EXPECT_EQ("\n", Read(home.Path() / "late"));
    ServiceLoop::Shared().InvokeAndWait([] {});
    EXPECT_EQ(2, failures);
}

} // namespace
