// Loopers, messengers and runners while threads come and go.

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "kits/app/AppDefs.h"
#include "kits/app/Application.h"
#include "kits/app/Looper.h"
#include "kits/app/Message.h"
#include "kits/app/MessageRunner.h"
#include "kits/app/Messenger.h"
#include "tests/support/Recorded.h"

namespace test {
namespace {

using Codes = std::vector<uint32>;

// The codes that a looper saw.
using Log = Recorded<uint32>;

// Logs messages, and handles 'call' by calling what the test gave it.
class TestLooper : public BLooper {
public:
    explicit TestLooper(Log& log)
        : BLooper("test looper")
        , fLog(log) {}
    ~TestLooper() override { fLog.Add('gone'); }

    void MessageReceived(BMessage* message) override {
        if (message->what == 'call')
            call(*this);
        else
            fLog.Add(message->what);
    }

    std::function<void(TestLooper&)> call;

private:
    Log& fLog;
};

class LooperTest : public testing::Test {
protected:
    ~LooperTest() override {
        if (messenger.LockTarget())
            looper->Quit();
        EXPECT_FALSE(messenger.IsValid());
    }

    // The number of codes when the looper has handled what was posted before.
    size_t Settled() {
        const size_t before = log.All().size();
        messenger.SendMessage('mark');
        EXPECT_TRUE(log.Reaches(before + 1));
        EXPECT_TRUE(WaitUntil([&] { return log.All().back() == 'mark'; }));
        return log.All().size();
    }

    Log log;
    TestLooper* looper = new TestLooper(log);
    BMessenger messenger{looper};
};

TEST_F(LooperTest, ThreadsThatWaitForItsLockAreRefusedWhenItIsDeleted) {
    BHandler handler;
    looper->AddHandler(&handler);
    const BMessenger toHandler(&handler);
    std::atomic<bool> isBusy = false;
    std::atomic<int> waiting = 0;
    looper->call = [&](TestLooper&) {
        isBusy = true;
        while (waiting < 4)
            snooze(500);
        looper->Quit();
        log.Add('quit');
    };
    looper->PostMessage('call');
    looper->PostMessage('lost');
    looper->Run();
    ASSERT_TRUE(WaitUntil([&] { return isBusy.load(); }));
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&, i] {
            ++waiting;
            EXPECT_FALSE((i % 2 ? messenger : toHandler).LockTarget());
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(nullptr, handler.Looper());
    ASSERT_TRUE(log.Reaches(2));
    EXPECT_EQ(Codes({'quit', 'gone'}), log.All());
}

TEST_F(LooperTest, AFloodedLooperStillGivesItsLockAway) {
    looper->call = [](TestLooper& self) { self.PostMessage('call'); };
    looper->PostMessage('call');
    looper->Run();
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(B_OK, looper->LockWithTimeout(10'000'000));
        looper->Unlock();
    }
}

TEST_F(LooperTest, RunnersStopAfterTheirCountAndWithTheirDestructor) {
    const BMessage tick('tick');
    looper->Run();
    const BMessageRunner counted(messenger, &tick, 1000, 3);
    ASSERT_TRUE(log.Reaches(3));
    snooze(5000);
    EXPECT_EQ(4u, Settled());
    for (int i = 0; i < 50; ++i) {
        {
            const BMessageRunner runner(messenger, &tick, 100);
            snooze(i * 20L);
        }
        const size_t count = Settled();
        EXPECT_EQ(count + 1, Settled());
    }
}

// The display's thread works until the process ends, and may lose its display at any moment.
TEST(ApplicationRaces, AQuitFromOutsideMayComeWhileItIsDestroyed) {
    std::atomic<bool> isEnding = false;
    std::thread display([&] {
        while (!isEnding)
            BApplication::QuitFromOutside(true);
    });
    for (int i = 0; i < 2000; i++)
        BApplication application("application/x-vnd.test-race");
    isEnding = true;
    display.join();
}

} // namespace
} // namespace test
