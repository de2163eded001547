#pragma once

#include <gtest/gtest.h>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <vector>

#include "kits/app/Looper.h"
#include "kits/app/Message.h"
#include "kits/app/Messenger.h"

namespace test {

// The codes that handlers saw, in order; the test's thread waits for them.
class Log {
public:
    void Add(uint32 what) {
        std::lock_guard lock(fMutex);
        fSeen.push_back(what);
        fChanged.notify_all();
    }
    bool Reach(size_t count) {
        std::unique_lock lock(fMutex);
        return fChanged.wait_for(lock, std::chrono::seconds(10),
                                 [&] { return fSeen.size() >= count; });
    }
    std::vector<uint32> Seen() {
        std::lock_guard lock(fMutex);
        return fSeen;
    }

private:
    std::mutex fMutex;
    std::condition_variable fChanged;
    std::vector<uint32> fSeen;
};

using Codes = std::vector<uint32>;

class LoggingHandler : public BHandler {
public:
    explicit LoggingHandler(Log& log)
        : fLog(log) {}

    void MessageReceived(BMessage* message) override { fLog.Add(message->what); }

private:
    Log& fLog;
};

// Logs messages, and answers 'call' by calling what the test gave it.
class TestLooper : public BLooper {
public:
    explicit TestLooper(Log& log)
        : BLooper("test looper")
        , fLog(log) {}
    ~TestLooper() override { fLog.Add('gone'); }

    void MessageReceived(BMessage* message) override {
        EXPECT_EQ(message, CurrentMessage());
        EXPECT_EQ(Thread(), find_thread(nullptr));
        if (message->what == 'call')
            call(message);
        else
            fLog.Add(message->what);
    }
    bool QuitRequested() override { return agreesToQuit; }

    std::function<void(BMessage*)> call = [](BMessage*) {};
    bool agreesToQuit = true;

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

    // Waits until the looper has handled what was posted before.
    void Settle() {
        const size_t before = log.Seen().size();
        messenger.SendMessage('mark');
        ASSERT_TRUE(log.Reach(before + 1));
        while (log.Seen().back() != 'mark')
            snooze(500);
        ASSERT_TRUE(looper->Lock());
        looper->Unlock();
    }

    Log log;
    TestLooper* const looper = new TestLooper(log);
    const BMessenger messenger{looper};
};

} // namespace test
