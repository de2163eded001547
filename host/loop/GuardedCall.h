#pragma once

#include <functional>
#include <mutex>

namespace host {

// A function that one thread calls until any thread ends it.
class GuardedCall {
public:
    explicit GuardedCall(std::function<void()> function);

    // Calls the function, unless it was ended.
    void Run();

    // When this has returned, the function is not running and never runs again, and what it holds
    // is gone. Called from the function itself that holds from its return on.
    void End();

    bool HasEnded() const;

private:
    // Held while the function runs, which may end itself.
    mutable std::recursive_mutex fMutex;
    std::function<void()> fFunction;
    bool fIsRunning = false;
    bool fHasEnded = false;
};

} // namespace host
