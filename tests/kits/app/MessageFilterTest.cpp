#include <gtest/gtest.h>

#include "tests/kits/app/TestLooper.h"

namespace test {
namespace {

using MessageFilterTest = LooperTest;

// Adds a code to the log and gives a fixed answer.
class LoggingFilter : public BMessageFilter {
public:
    template <typename... Conditions>
    LoggingFilter(Log& log, uint32 entry, filter_result result, Conditions... conditions)
        : BMessageFilter(conditions...)
        , fLog(log)
        , fEntry(entry)
        , fResult(result) {}

    filter_result Filter(BMessage*, BHandler**) override {
        fLog.Add(fEntry);
        return fResult;
    }

private:
    Log& fLog;
    const uint32 fEntry;
    const filter_result fResult;
};

TEST_F(MessageFilterTest, AsksThoseWhoseConditionsAreMetTheCommonOnesFirst) {
    const auto add = [&](uint32 entry, message_delivery delivery, message_source source) {
        looper->AddFilter(
            new LoggingFilter(log, entry, B_DISPATCH_MESSAGE, delivery, source, uint32('abcd')));
    };
    add('remo', B_ANY_DELIVERY, B_REMOTE_SOURCE);
    add('loca', B_ANY_DELIVERY, B_LOCAL_SOURCE);
    add('drop', B_DROPPED_DELIVERY, B_ANY_SOURCE);
    add('prog', B_PROGRAMMED_DELIVERY, B_ANY_SOURCE);
    looper->AddFilter(new LoggingFilter(log, 'skip', B_SKIP_MESSAGE, uint32('abcd')));
    looper->AddFilter(new LoggingFilter(log, 'last', B_DISPATCH_MESSAGE, uint32('abcd')));
    looper->AddCommonFilter(new LoggingFilter(log, 'comm', B_DISPATCH_MESSAGE, uint32('abcd')));
    BMessage message('abcd');
    looper->PostMessage(&message);
    message.SetSourceRemote(true);
    message.SetWasDropped(true);
    looper->PostMessage(&message);
    looper->PostMessage('else');
    looper->Run();
    ASSERT_TRUE(log.Reach(9));
    EXPECT_EQ(Codes({'comm', 'loca', 'prog', 'skip', 'comm', 'remo', 'drop', 'skip', 'else'}),
              log.Seen());
}

} // namespace
} // namespace test
