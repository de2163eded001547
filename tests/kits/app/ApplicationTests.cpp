#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>

#include "host/session/instance/InstanceSocket.h"
#include "kits/app/AppDefs.h"
#include "kits/app/Messenger.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Wait.h"

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::UnorderedElementsAre;

namespace {

constexpr const char* kSignature = "application/x-vnd.test-program";

using Lines = std::vector<std::string>;

// A start of the program beside this one, and what it has said so far.
class Program {
public:
    Program(const test::TemporaryHome& home, const Lines& options, const Lines& before = {}) {
        static int count = 0;
        const std::string stem = (home.Path() / std::to_string(++count)).string();
        test::ChildProcess::Options start;
        start.arguments = before;
        start.arguments.insert(start.arguments.end(), {APP_PROGRAM, kSignature});
        start.arguments.insert(start.arguments.end(), options.begin(), options.end());
        start.output = fOutput = stem + ".out";
        start.errors = fErrors = stem + ".err";
        fProcess = std::make_unique<test::ChildProcess>(start);
    }

    test::ChildProcess& Process() { return *fProcess; }
    Lines Said() const { return Read(fOutput); }
    Lines Errors() const { return Read(fErrors); }

    // Whether it says this, now or soon.
    bool Says(const std::string& line) const {
        return test::WaitUntil([&] {
            const Lines said = Said();
            return std::find(said.begin(), said.end(), line) != said.end();
        });
    }
    std::optional<int> End(int signal) {
        fProcess->Signal(signal);
        return fProcess->Wait();
    }

private:
    static Lines Read(const std::string& path) {
        std::ifstream file(path);
        Lines lines;
        for (std::string line; std::getline(file, line);)
            lines.push_back(line);
        return lines;
    }

    std::string fOutput;
    std::string fErrors;
    std::unique_ptr<test::ChildProcess> fProcess;
};

class ApplicationTest : public testing::Test {
protected:
    test::TemporaryHome fHome;
};

TEST_F(ApplicationTest, IsReadyBeforeAnyMessageAndQuitsOnItsOwnRequest) {
    Program program(fHome, {"quit"});
    EXPECT_EQ(0, program.Process().Wait());
    EXPECT_THAT(program.Said(), ElementsAre("built", "ready", "local test", "local quit", "dismiss",
                                            "quit windows", "destroyed"));
}

TEST_F(ApplicationTest, ASignalBeforeRunIsKept) {
    const fs::path fifo = fHome.Path() / "go";
    ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
    Program program(fHome, {"wait", "block"},
                    {"/bin/sh", "-c", "exec \"$@\" <" + fifo.string(), "sh"});
    std::ofstream go(fifo);
    ASSERT_TRUE(program.Says("built"));
    program.Process().Signal(SIGTERM);
    go << "x" << std::flush;
    EXPECT_EQ(0, program.Process().Wait());
    EXPECT_THAT(program.Said(), Contains("remote quit"));
    EXPECT_EQ("destroyed", program.Said().back());
}

TEST_F(ApplicationTest, ARefusedQuitGoesOnAndTheNextOneCounts) {
    Program program(fHome, {"refuse"});
    ASSERT_TRUE(program.Says("ready"));
    program.Process().Signal(SIGTERM);
    ASSERT_TRUE(program.Says("allow"));
    EXPECT_EQ(0, program.End(SIGTERM));
    EXPECT_THAT(program.Said(),
                ElementsAre("built", "ready", "local test", "dismiss", "remote quit", "dismiss",
                            "quit windows", "allow", "dismiss", "remote quit", "dismiss",
                            "quit windows", "destroyed"));
}

TEST_F(ApplicationTest, TheWatchdogEndsWhatHangs) {
    Program hanging(fHome, {"hang"});
    Program savingForEver(fHome, {"hang", "hang-save"});
    Program refusing(fHome, {"refuse"});
    for (Program* program : {&refusing, &hanging, &savingForEver}) {
        ASSERT_TRUE(program->Says("ready"));
        program->Process().Signal(SIGTERM);
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(0, hanging.Process().Wait());
    EXPECT_GT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
    EXPECT_THAT(hanging.Said(), ElementsAre("built", "ready", "dismiss", "saved"));
    EXPECT_EQ(0, savingForEver.Process().Wait());
    EXPECT_THAT(savingForEver.Said(), ElementsAre("built", "ready", "dismiss", "saved"));
    EXPECT_TRUE(refusing.Process().IsRunning());
    EXPECT_THAT(refusing.Said(), Not(Contains("saved")));
}

TEST_F(ApplicationTest, OfManyStartsAtOnceOneRuns) {
    std::vector<std::unique_ptr<Program>> starts;
    for (int i = 0; i < 8; i++)
        starts.push_back(std::make_unique<Program>(fHome, Lines{"exclusive"}));
    const auto running = [&] {
        return std::count_if(starts.begin(), starts.end(),
                             [](const auto& start) { return start->Process().IsRunning(); });
    };
    EXPECT_TRUE(test::WaitUntil([&] { return running() == 1; }));
    int winners = 0;
    for (const auto& start : starts) {
        winners += start->Process().IsRunning();
        EXPECT_TRUE(start->Process().IsRunning() || start->Process().Wait() == 0);
    }
    EXPECT_EQ(1, winners);
}

TEST_F(ApplicationTest, AStartBesideOneThatDoesNotAnswerSaysSo) {
    Program first(fHome, {"exclusive"});
    ASSERT_TRUE(first.Says("ready"));
    first.Process().Signal(SIGSTOP);
    Program second(fHome, {"exclusive"});
    EXPECT_EQ(1, second.Process().Wait());
    EXPECT_EQ(1u, second.Errors().size());
    first.Process().Signal(SIGCONT);
    EXPECT_EQ(0, first.End(SIGTERM));
}

TEST_F(ApplicationTest, OtherProgramsMayAskAndQuitButNotStartItAgain) {
    Program program(fHome, {"exclusive"});
    ASSERT_TRUE(program.Says("ready"));
    EXPECT_EQ(B_OK, host::SendToInstance(kSignature, "{garbage", 10'000'000));
    const BMessenger messenger(kSignature);
    for (uint32 what : {B_READY_TO_RUN, B_ABOUT_REQUESTED, B_QUIT_REQUESTED})
        EXPECT_EQ(B_OK, messenger.SendMessage(what));
    EXPECT_EQ(0, program.Process().Wait());
    EXPECT_THAT(program.Said(),
                UnorderedElementsAre("built", "ready", "local test", "dismiss", "about",
                                     "remote quit", "dismiss", "quit windows", "destroyed"));
}

TEST_F(ApplicationTest, RunsWithAWarningWhereItCannotBeRegistered) {
    std::ofstream(fHome.Runtime() / "quillbar") << "in the way";
    Program program(fHome, {"exclusive"});
    ASSERT_TRUE(program.Says("ready"));
    EXPECT_EQ(1u, program.Errors().size());
    EXPECT_EQ(0, program.End(SIGTERM));
}

} // namespace
