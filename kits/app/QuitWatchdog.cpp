#include "kits/app/QuitWatchdog.h"

#include <chrono>
#include <cstdlib>
#include <semaphore>

#include "kits/kernel/OS.h"

namespace {

constexpr bigtime_t kLongestQuit = 5'000'000;
constexpr std::chrono::seconds kLongestAction(1);

struct Emergency {
    std::function<void()> action;
    std::binary_semaphore done{0};
};

status_t RunEmergency(void* data) {
    auto* emergency = static_cast<Emergency*>(data);
    emergency->action();
    emergency->done.release();
    return B_OK;
}

} // namespace

QuitWatchdog::QuitWatchdog(std::function<int()> exitStatus)
    : fExitStatus(std::move(exitStatus)) {}

QuitWatchdog::~QuitWatchdog() {
    Cancel();
}

void QuitWatchdog::SetAction(std::function<void()> action) {
    const std::lock_guard guard(fLock);
    fAction = std::move(action);
}

void QuitWatchdog::Start() {
    const std::lock_guard guard(fLock);
    if (fTimer)
        return;
    fTimer = std::make_unique<host::Timer>(kLongestQuit, 0, [this] {
        RunAction();
        std::_Exit(fExitStatus());
    });
}

void QuitWatchdog::Cancel() {
    std::unique_ptr<host::Timer> timer;
    {
        const std::lock_guard guard(fLock);
        timer = std::move(fTimer);
    }
}

// On a thread of its own: what hangs the program, a disk say, may hang the action too. The process
// ends after it, so nobody joins the thread or frees what it uses.
void QuitWatchdog::RunAction() {
    auto* emergency = new Emergency;
    {
        const std::lock_guard guard(fLock);
        emergency->action = fAction;
    }
    if (!emergency->action)
        return;
    const thread_id thread = spawn_thread(RunEmergency, "emergency", B_NORMAL_PRIORITY, emergency);
    if (resume_thread(thread) == B_OK)
        static_cast<void>(emergency->done.try_acquire_for(kLongestAction));
}
