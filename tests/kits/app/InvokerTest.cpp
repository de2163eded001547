#include <gtest/gtest.h>

#include "kits/app/Invoker.h"
#include "tests/kits/app/TestLooper.h"

namespace test {
namespace {

using InvokerTest = LooperTest;

TEST_F(InvokerTest, SendsItsMessageOrTheGivenOne) {
    BInvoker invoker(new BMessage('call'), looper);
    std::atomic<void*> source = nullptr;
    std::atomic<int64> when = 0;
    looper->call = [&](BMessage* message) {
        void* pointer = nullptr;
        message->FindPointer("source", &pointer);
        source = pointer;
        when = message->GetInt64("when", 0);
        log.Add('call');
    };
    looper->Run();
    const bigtime_t start = system_time();
    EXPECT_EQ('call', invoker.Command());
    EXPECT_EQ(B_OK, invoker.Invoke());
    ASSERT_TRUE(log.Reach(1));
    EXPECT_EQ(&invoker, source);
    EXPECT_GE(when, start);
    EXPECT_TRUE(invoker.Message()->IsEmpty());

    BMessage given('call');
    given.AddPointer("source", this);
    EXPECT_EQ(B_OK, invoker.Invoke(&given));
    ASSERT_TRUE(log.Reach(2));
    EXPECT_EQ(this, source);

    BLooper* found = nullptr;
    EXPECT_EQ(looper, invoker.Target(&found));
    EXPECT_EQ(looper, found);
    invoker.SetMessage(nullptr);
    EXPECT_EQ(B_BAD_VALUE, invoker.Invoke());
    EXPECT_EQ(B_BAD_VALUE, invoker.SetTarget(nullptr));
    EXPECT_EQ(nullptr, invoker.Target());
    EXPECT_EQ(B_BAD_PORT_ID, invoker.Invoke(&given));
}

} // namespace
} // namespace test
