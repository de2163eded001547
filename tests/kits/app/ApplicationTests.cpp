// Whole programs: signals at any moment, what hangs, and starts beside each other.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <list>

#include "host/session/instance/InstanceSocket.h"
#include "kits/app/AppDefs.h"
#include "kits/app/Messenger.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryHome.h"

using testing::Contains;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace {

constexpr const char* kSignature = "application/x-vnd.test-program";

using Lines = std::vector<std::string>;

// A start of the program beside this one.
struct Program : test::ChildProcess {
    explicit Program(const Options& start)
        : ChildProcess(start)
        , output(start.output) {}

    Lines Said() const {
        std::ifstream file(output);
        Lines lines;
        for (std::string line; std::getline(file, line);)
            lines.push_back(line);
        return lines;
    }
    // Whether it says this, now or soon.
    bool Says(const std::string& line) const {
        return test::WaitUntil([&] { return testing::Value(Said(), Contains(line)); });
    }

    const std::string output;
};

class ApplicationTest : public testing::Test {
protected:
    Program& Start(const Lines& options) {
        Lines command = {APP_PROGRAM, kSignature};
        command.insert(command.end(), options.begin(), options.end());
        return fPrograms.emplace_back(test::ChildProcess::Options{
            .arguments = command, .output = fHome.Path() / std::to_string(fPrograms.size())});
    }

    test::TemporaryHome fHome;
    std::list<Program> fPrograms;
};

TEST_F(ApplicationTest, ASignalBeforeRunIsKept) {
    Program& program = Start({"early"});
    EXPECT_EQ(0, program.Wait());
    EXPECT_THAT(program.Said(), ElementsAre("built", "dismiss", "ready", "local test",
                                            "remote quit", "dismiss", "quit windows", "destroyed"));
}

TEST_F(ApplicationTest, TheWatchdogEndsWhatHangsAndNotWhatRefuses) {
    Program& refusing = Start({"refuse"});
    Program& hanging = Start({"hang"});
    Program& savingForEver = Start({"hang", "hang-save"});
    for (Program& program : fPrograms) {
        ASSERT_TRUE(program.Says("ready"));
        program.Signal(SIGTERM);
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(0, hanging.Wait());
    EXPECT_GT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
    EXPECT_EQ(0, savingForEver.Wait());
    for (const Program* program : {&hanging, &savingForEver})
        EXPECT_THAT(program->Said(), ElementsAre("built", "ready", "dismiss", "saved"));
    EXPECT_TRUE(refusing.Says("allow"));
    refusing.Signal(SIGTERM);
    EXPECT_EQ(0, refusing.Wait());
    EXPECT_THAT(refusing.Said(),
                ElementsAre("built", "ready", "local test", "dismiss", "remote quit", "dismiss",
                            "quit windows", "allow", "dismiss", "remote quit", "dismiss",
                            "quit windows", "destroyed"));
}

TEST_F(ApplicationTest, OtherProgramsMayAskAndQuitButNotStartItAgain) {
    Program& program = Start({"exclusive"});
    ASSERT_TRUE(program.Says("ready"));
    EXPECT_EQ(B_OK, host::SendToInstance(kSignature, "{garbage", 10'000'000));
    const BMessenger messenger(kSignature);
    for (uint32 what : {B_READY_TO_RUN, B_ABOUT_REQUESTED, B_QUIT_REQUESTED})
        EXPECT_EQ(B_OK, messenger.SendMessage(what));
    EXPECT_EQ(0, program.Wait());
    EXPECT_THAT(program.Said(),
                UnorderedElementsAre("built", "ready", "local test", "dismiss", "about",
                                     "remote quit", "dismiss", "quit windows", "destroyed"));
}

} // namespace
