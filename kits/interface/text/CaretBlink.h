#pragma once

#include <memory>

#include "kits/app/MessageRunner.h"

class BHandler;
class BMessage;

// When a caret is to be seen: it comes and goes for some seconds after the last thing the user did
// with it, then it stays. The looper of `handler` locked.
class CaretBlink {
public:
    static constexpr uint32 kTick = '_kcb';

    explicit CaretBlink(BHandler& handler);

    // Visible from now on, and again blinking.
    void Restart();
    void Stop();
    // For a message kTick that the handler got; false if nothing changes.
    bool Tick(const BMessage& message);

    bool IsVisible() const { return fIsVisible; }

private:
    BHandler& fHandler;
    std::unique_ptr<BMessageRunner> fRunner;
    int32 fRound = 0; // ticks of rounds before it may be waiting in the queue
    bool fIsVisible = true;
};
