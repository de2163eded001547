#pragma once

#include <functional>
#include <memory>

#include "base/Types.h"

namespace host {

// The one service thread: it waits for descriptors and timers and calls their functions. These must
// be short and must not wait for a looper; they post messages.
//
// It starts with the first use and lives as long as the process. Any thread may call.
class ServiceLoop {
public:
    static ServiceLoop& Shared();

    // Runs `task` on the service thread, later, in the order of the calls.
    void Invoke(std::function<void()> task);

    // The same, and returns when it has run. Runs it at once on the service thread itself.
    void InvokeAndWait(std::function<void()> task);

    bool IsCurrentThread() const;

    ServiceLoop(const ServiceLoop&) = delete;

private:
    ServiceLoop();

    struct State;
    std::unique_ptr<State> fState;
};

// While it lives, `onReadable` runs on the service thread whenever `descriptor` can be read (or has
// been hung up). When the destructor has returned, it is not running and never runs again; called
// from `onReadable` itself that holds from its return on. The descriptor stays the caller's.
class DescriptorWatch {
public:
    DescriptorWatch(int descriptor, std::function<void()> onReadable);
    ~DescriptorWatch();

    DescriptorWatch(const DescriptorWatch&) = delete;

private:
    struct State;
    std::shared_ptr<State> fState;
};

// While it lives, `onElapsed` runs on the service thread `delay` microseconds after construction
// and, unless `interval` is 0, every `interval` microseconds after that. Destruction as above.
class Timer {
public:
    Timer(bigtime_t delay, bigtime_t interval, std::function<void()> onElapsed);
    ~Timer();

    Timer(const Timer&) = delete;

private:
    struct State;
    std::shared_ptr<State> fState;
};

} // namespace host
