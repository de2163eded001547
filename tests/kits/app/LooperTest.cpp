#include <gtest/gtest.h>

#include <thread>

#include "kits/app/AppDefs.h"
#include "tests/kits/app/TestLooper.h"

namespace test {
namespace {

TEST_F(LooperTest, HandlesMessagesInOrderAlsoThoseFromBeforeItRan) {
    for (uint32 what = 0; what < 50; ++what)
        EXPECT_EQ(B_OK, looper->PostMessage(what));
    EXPECT_GT(looper->Run(), 0);
    for (uint32 what = 50; what < 100; ++what)
        EXPECT_EQ(B_OK, messenger.SendMessage(what));
    ASSERT_TRUE(log.Reach(100));
    for (uint32 what = 0; what < 100; ++what)
        EXPECT_EQ(what, log.Seen()[what]);
}

TEST_F(LooperTest, RefusesTargetsThatAreNotThere) {
    BHandler stranger;
    status_t status = B_OK;
    EXPECT_EQ(B_MISMATCHED_VALUES, looper->PostMessage('xxxx', &stranger));
    EXPECT_FALSE(BMessenger(&stranger, nullptr, &status).IsValid());
    EXPECT_EQ(B_BAD_HANDLER, status);
    BLooper* const other = new BLooper;
    looper->AddHandler(&stranger);
    EXPECT_FALSE(BMessenger(&stranger, other, &status).IsValid());
    EXPECT_EQ(B_MISMATCHED_VALUES, status);
    const BMessenger gone(other);
    other->Quit();
    EXPECT_EQ(B_BAD_HANDLER, gone.SendMessage('xxxx'));
    EXPECT_FALSE(gone.LockTarget());
    BLooper* found = looper;
    EXPECT_EQ(nullptr, gone.Target(&found));
    EXPECT_EQ(nullptr, found);
    EXPECT_EQ(B_BAD_PORT_ID, BMessenger().SendMessage('xxxx'));
}

TEST_F(LooperTest, QuitsOnRequestIfItAgrees) {
    looper->agreesToQuit = false;
    looper->PostMessage(B_QUIT_REQUESTED);
    looper->Run();
    Settle();
    EXPECT_TRUE(messenger.IsValid());
    looper->Lock();
    looper->agreesToQuit = true;
    looper->PostMessage(B_QUIT_REQUESTED);
    looper->PostMessage('late');
    looper->Unlock();
    ASSERT_TRUE(log.Reach(2));
    EXPECT_EQ(Codes({'mark', 'gone'}), log.Seen());
}

TEST_F(LooperTest, ALooperInTheMiddleOfAMessageIsWaitedFor) {
    std::atomic<bool> isBusy = false;
    looper->call = [&](BMessage*) {
        isBusy = true;
        snooze(20'000);
        log.Add('busy');
    };
    looper->PostMessage('call');
    looper->PostMessage('lost');
    looper->Run();
    while (!isBusy)
        snooze(500);
    ASSERT_TRUE(looper->Lock());
    looper->Lock();
    looper->Quit();
    EXPECT_EQ(Codes({'busy', 'gone'}), log.Seen());
}

TEST_F(LooperTest, WhoWaitsForItsLockLearnsThatItWasDeleted) {
    BHandler handler;
    looper->AddHandler(&handler);
    const BMessenger toHandler(&handler);
    std::atomic<int> waiting = 0;
    std::atomic<bool> isBusy = false;
    looper->call = [&](BMessage*) {
        isBusy = true;
        while (waiting < 4)
            snooze(500);
        looper->Quit();
        log.Add('quit');
    };
    looper->PostMessage('call');
    looper->PostMessage('lost');
    looper->Run();
    while (!isBusy)
        snooze(500);
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
    ASSERT_TRUE(log.Reach(2));
    EXPECT_EQ(Codes({'quit', 'gone'}), log.Seen());
}

// Gives the looper time to keep up.
void PostUntilRefused(const BMessenger& messenger) {
    while (messenger.SendMessage('post') == B_OK)
        snooze(20);
}

TEST(LooperRaces, ManyThreadsPostAndLockUntilItIsGone) {
    for (int round = 0; round < 20; ++round) {
        Log log;
        auto* const looper = new TestLooper(log);
        const BMessenger messenger(looper);
        looper->Run();
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&, i] {
                if (i < 2)
                    PostUntilRefused(messenger);
                while (messenger.LockTarget())
                    looper->Unlock();
                EXPECT_FALSE(messenger.IsValid());
            });
        }
        log.Reach(20);
        if (round % 2 == 0)
            messenger.SendMessage(B_QUIT_REQUESTED);
        else if (messenger.LockTarget())
            looper->Quit();
        for (std::thread& thread : threads)
            thread.join();
        while (log.Seen().back() != 'gone')
            snooze(500);
    }
}

TEST(LooperRaces, HandlersAreDeletedWhileMessagesAreUnderWay) {
    Log log;
    auto* const looper = new TestLooper(log);
    looper->Run();
    for (int round = 0; round < 100; ++round) {
        Log other;
        looper->Lock();
        auto handler = std::make_unique<LoggingHandler>(other);
        looper->AddHandler(handler.get());
        const BMessenger messenger(handler.get());
        looper->Unlock();
        std::thread sender([&] { PostUntilRefused(messenger); });
        other.Reach(1);
        ASSERT_TRUE(messenger.LockTarget());
        handler.reset();
        looper->Unlock();
        sender.join();
    }
    looper->Lock();
    looper->Quit();
}

TEST(LooperRaces, AFloodedLooperStillGivesItsLockAway) {
    Log log;
    auto* const looper = new TestLooper(log);
    looper->call = [&](BMessage*) { looper->PostMessage('call'); };
    looper->PostMessage('call');
    looper->Run();
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(B_OK, looper->LockWithTimeout(10'000'000));
        looper->Unlock();
    }
    looper->Lock();
    looper->Quit();
}

} // namespace
} // namespace test
