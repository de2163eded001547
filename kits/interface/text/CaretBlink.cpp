#include "kits/interface/text/CaretBlink.h"

#include "kits/app/Message.h"

namespace {

constexpr bigtime_t kInterval = 530'000;
constexpr int32 kTicks = 20; // even: it ends visible

} // namespace

CaretBlink::CaretBlink(BHandler& handler)
    : fHandler(handler) {}

void CaretBlink::Restart() {
    fIsVisible = true;
    BMessage tick(kTick);
    tick.AddInt32("round", ++fRound);
    fRunner = std::make_unique<BMessageRunner>(BMessenger(&fHandler), &tick, kInterval, kTicks);
}

void CaretBlink::Stop() {
    fIsVisible = true;
    fRound++;
    fRunner.reset();
}

bool CaretBlink::Tick(const BMessage& message) {
    if (message.GetInt32("round", 0) != fRound)
        return false;
    fIsVisible = !fIsVisible;
    return true;
}
