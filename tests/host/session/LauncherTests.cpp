#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/loop/Descriptor.h"
#include "host/loop/ServiceLoop.h"
#include "host/session/programs/Launcher.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Wait.h"

namespace fs = std::filesystem;
using namespace host;

namespace {

std::string Read(const fs::path& path) {
    std::ostringstream content;
    content << std::ifstream(path).rdbuf();
    return content.str();
}

class LauncherTest : public testing::Test {
protected:
    test::TemporaryHome fHome;
};

TEST_F(LauncherTest, ChildHasDefaultSignalsAndNoDescriptorsOfOurs) {
    sigset_t blocked;
    sigset_t old;
    sigemptyset(&blocked);
    for (int number : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&blocked, number);
    pthread_sigmask(SIG_BLOCK, &blocked, &old);
    const auto oldPipe = signal(SIGPIPE, SIG_IGN);
    const Descriptor leaking(open("/dev/null", O_RDONLY));
    const Descriptor high(fcntl(leaking.Get(), F_DUPFD, 200));
    // Programs that look at themselves: a shell changes its mask and opens files of its own. Both
    // write what they found at once.
    const fs::path signals = fHome.Path() / "signals";
    const fs::path files = fHome.Path() / "files";
    EXPECT_EQ(B_OK, LaunchDetached({"/bin/cp", {"cp", "/proc/self/status", signals}, "/"}));
    EXPECT_EQ(B_OK,
              LaunchDetached({"/usr/bin/find",
                              {"find", "/proc/self/fd", "-type", "l", "-fprintf", files, "<%f %l>"},
                              "/"}));
    signal(SIGPIPE, oldPipe);
    pthread_sigmask(SIG_SETMASK, &old, nullptr);
    EXPECT_TRUE(test::WaitUntil([&] { return !Read(signals).empty() && !Read(files).empty(); }));

    EXPECT_THAT(Read(signals), testing::HasSubstr("SigBlk:\t0000000000000000\n"));
    EXPECT_THAT(Read(signals), testing::HasSubstr("SigIgn:\t0000000000000000\n"));
    EXPECT_THAT(Read(files), testing::HasSubstr("<0 /dev/null>"));
    for (const char* theirs : {"<200 ", "eventfd"})
        EXPECT_THAT(Read(files), testing::Not(testing::HasSubstr(theirs)));
}

TEST_F(LauncherTest, ChildIsInASessionOfItsOwnAndLeavesNoZombie) {
    // The report takes its name when it is whole.
    const std::string script =
        "{ echo $$; cut -d' ' -f6 /proc/$$/stat; } >writing; mv writing report";
    EXPECT_EQ(B_OK, LaunchDetached({"/bin/sh", {"sh", "-c", script}, fHome.Path()}));
    EXPECT_TRUE(test::WaitUntil([&] { return fs::exists(fHome.Path() / "report"); }));
    std::istringstream report(Read(fHome.Path() / "report"));
    pid_t child = 0;
    pid_t session = 0;
    report >> child >> session;
    EXPECT_NE(0, session);
    EXPECT_EQ(child, session);
    EXPECT_TRUE(test::WaitUntil([&] { return kill(child, 0) != 0 && errno == ESRCH; }));
}

TEST_F(LauncherTest, OnlyAnErrorAtOnceIsAFailure) {
    std::atomic<int> failures = 0;
    const auto launch = [&](const std::string& script) {
        EXPECT_EQ(B_OK,
                  LaunchDetached({"/bin/sh", {"sh", "-c", script}, "/"}, [&] { ++failures; }));
    };
    const fs::path late = fHome.Path() / "late";
    launch("exit 0");
    launch("sleep 2; >" + late.string() + "; exit 1");
    launch("exit 1");
    launch("kill -TERM $$");
    EXPECT_TRUE(test::WaitUntil([&] { return failures == 2; }));
    EXPECT_TRUE(test::WaitUntil([&] { return fs::exists(late); }));
    ServiceLoop::Shared().InvokeAndWait([] {});
    EXPECT_EQ(2, failures);
}

TEST_F(LauncherTest, SaysWhyAProgramCannotRun) {
    EXPECT_EQ(B_ENTRY_NOT_FOUND, LaunchDetached({"/nowhere/program", {"program"}, "/"}));
    EXPECT_EQ(B_PERMISSION_DENIED, LaunchDetached({"/etc/passwd", {"program"}, "/"}));
    EXPECT_NE(B_OK, LaunchDetached({"/bin/true", {"true", std::string(4 << 20, 'x')}, "/"}));
}

TEST_F(LauncherTest, FindsProgramsOnThePath) {
    const fs::path place = fHome.Path() / "place";
    fs::create_directory(place);
    std::ofstream(place / "tool") << "";
    const std::string old = getenv("PATH");
    setenv("PATH", ("relative::/nowhere:" + place.string()).c_str(), 1);
    EXPECT_EQ("", FindProgram("tool")) << "not executable yet";
    fs::permissions(place / "tool", fs::perms::owner_all);
    EXPECT_EQ((place / "tool").string(), FindProgram("tool"));
    EXPECT_EQ((place / "tool").string(), FindProgram((place / "tool").string()));
    EXPECT_EQ("", FindProgram("place/tool"));
    EXPECT_EQ("", FindProgram(""));
    EXPECT_EQ("", FindProgram(place.string())) << "a directory is no program";
    setenv("PATH", old.c_str(), 1);
}

} // namespace
