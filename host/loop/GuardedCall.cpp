#include "host/loop/GuardedCall.h"

namespace host {

GuardedCall::GuardedCall(std::function<void()> function)
    : fFunction(std::move(function)) {}

void GuardedCall::Run() {
    // What the function holds is destroyed without the lock: its destructors may end other calls.
    std::function<void()> ended;
    std::lock_guard lock(fMutex);
    if (fHasEnded)
        return;
    fIsRunning = true;
    fFunction();
    fIsRunning = false;
    if (fHasEnded)
        ended.swap(fFunction);
}

void GuardedCall::End() {
    std::function<void()> ended;
    std::lock_guard lock(fMutex);
    fHasEnded = true;
    if (!fIsRunning)
        ended.swap(fFunction);
}

bool GuardedCall::HasEnded() const {
    std::lock_guard lock(fMutex);
    return fHasEnded;
}

} // namespace host
