#pragma once

#include <functional>
#include <memory>
#include <mutex>

#include "host/loop/ServiceLoop.h"

// Ends the process when quitting takes too long, whatever its other threads are doing. Any thread.
class QuitWatchdog {
public:
    // `exitStatus` is asked, on the service thread, when the process is to be ended.
    explicit QuitWatchdog(std::function<int()> exitStatus);
    ~QuitWatchdog();

    QuitWatchdog(const QuitWatchdog&) = delete;

    // See BApplication::SetEmergencyAction().
    void SetAction(std::function<void()> action);

    // Five seconds from now the action runs and the process ends, unless it was cancelled.
    void Start();
    void Cancel();

private:
    void RunAction();

    const std::function<int()> fExitStatus;

    std::mutex fLock;
    // Guarded by fLock. The timer is deleted without it: that waits for the action.
    std::function<void()> fAction;
    std::unique_ptr<host::Timer> fTimer;
};
