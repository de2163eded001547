#include <gtest/gtest.h>

#include "kits/app/MessageRunner.h"
#include "tests/kits/app/TestLooper.h"

namespace test {
namespace {

using MessageRunnerTest = LooperTest;

TEST_F(MessageRunnerTest, SendAsOftenAsAsked) {
    looper->Run();
    BMessage message('tick');
    const bigtime_t start = system_time();
    const BMessageRunner runner(messenger, &message, 5000, 3);
    EXPECT_EQ(B_OK, runner.InitCheck());
    ASSERT_TRUE(log.Reach(3));
    EXPECT_GE(system_time() - start, 15'000);
    const BMessage end('last');
    const BMessageRunner later(messenger, &end, 20'000, 1);
    ASSERT_TRUE(log.Reach(4));
    EXPECT_EQ(Codes({'tick', 'tick', 'tick', 'last'}), log.Seen());
}

TEST_F(MessageRunnerTest, StopWithTheirDestructorOrTheirTarget) {
    const BMessage message('tick');
    looper->Run();
    for (int i = 0; i < 50; ++i) {
        auto runner = std::make_unique<BMessageRunner>(messenger, &message, 100);
        snooze(i * 20);
        runner.reset();
        Settle();
        const size_t count = log.Seen().size();
        Settle();
        EXPECT_EQ(count + 1, log.Seen().size());
    }
    const BMessageRunner orphan(messenger, &message, 100);
    looper->Lock();
    looper->Quit();
    const size_t count = log.Seen().size();
    snooze(5000);
    EXPECT_EQ(count, log.Seen().size());
}

} // namespace
} // namespace test
