#include "host/loop/ServiceLoop.h"

#include <glib.h>
#include <pthread.h>

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace host {

// GLib is used on the service thread alone. Everything reaches it through `tasks`.
struct ServiceLoop::State {
    GMainContext* context = g_main_context_new();
    GSource* wakeUp = nullptr;
    std::thread::id thread;

    std::mutex mutex;
    std::vector<std::function<void()>> tasks;

    // Not under the lock, so that tasks may add tasks.
    void RunTasks() {
        std::vector<std::function<void()>> due;
        {
            std::lock_guard lock(mutex);
            g_source_set_ready_time(wakeUp, -1);
            due.swap(tasks);
        }
        for (const auto& task : due)
            task();
    }
};

namespace {

gboolean RunCallback(GSource*, GSourceFunc callback, gpointer data) {
    return callback(data);
}

GSourceFuncs sSourceFunctions = {nullptr, nullptr, RunCallback, nullptr, nullptr, nullptr};

// A source of our own that calls `callback(data)` when its time or its descriptor is ready.
GSource* NewSource(GSourceFunc callback, void* data) {
    GSource* source = g_source_new(&sSourceFunctions, sizeof(GSource));
    g_source_set_callback(source, callback, data, nullptr);
    return source;
}

} // namespace

ServiceLoop& ServiceLoop::Shared() {
    // Never destroyed: its thread lives as long as the process.
    static ServiceLoop* const loop = new ServiceLoop;
    return *loop;
}

ServiceLoop::ServiceLoop()
    : fState(std::make_unique<State>()) {
    State* const state = fState.get();
    state->wakeUp = NewSource(
        [](gpointer data) -> gboolean {
            static_cast<State*>(data)->RunTasks();
            return G_SOURCE_CONTINUE;
        },
        state);
    g_source_attach(state->wakeUp, state->context);
    std::thread thread([state] {
        pthread_setname_np(pthread_self(), "service");
        g_main_context_push_thread_default(state->context);
        for (;;)
            g_main_context_iteration(state->context, TRUE);
    });
    state->thread = thread.get_id();
    thread.detach();
}

void ServiceLoop::Invoke(std::function<void()> task) {
    std::lock_guard lock(fState->mutex);
    fState->tasks.push_back(std::move(task));
    g_source_set_ready_time(fState->wakeUp, 0);
}

void ServiceLoop::InvokeAndWait(std::function<void()> task) {
    if (IsCurrentThread()) {
        task();
        return;
    }
    std::mutex mutex;
    std::condition_variable changed;
    bool isDone = false;
    Invoke([&] {
        task();
        std::lock_guard lock(mutex);
        isDone = true;
        changed.notify_one();
    });
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return isDone; });
}

bool ServiceLoop::IsCurrentThread() const {
    return std::this_thread::get_id() == fState->thread;
}

namespace {

// A function that one thread calls until any thread ends it.
class GuardedCall {
public:
    explicit GuardedCall(std::function<void()> function);

    // Calls the function, unless it was ended.
    void Run();

    // When this has returned, the function is not running, never runs again and is destroyed.
    // Called from the function itself, that holds from its return on.
    void End();

    bool HasEnded() const;

private:
    // Held while the function runs, which may end itself.
    mutable std::recursive_mutex fMutex;
    std::function<void()> fFunction;
    bool fIsRunning = false;
    bool fHasEnded = false;
};

GuardedCall::GuardedCall(std::function<void()> function)
    : fFunction(std::move(function)) {}

void GuardedCall::Run() {
    // The function is destroyed without the lock: destructors of its captures may end other calls.
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

// A source on the service thread and its function.
struct Watch : std::enable_shared_from_this<Watch> {
    explicit Watch(std::function<void()> function)
        : call(std::move(function)) {}

    GuardedCall call;
    // Service thread only.
    GSource* source = nullptr;
    bigtime_t interval = 0;

    void Attach(GSource* newSource) {
        source = newSource;
        g_source_attach(source, g_main_context_get_thread_default());
    }

    void Detach() {
        if (!source)
            return;
        g_source_destroy(source);
        g_source_unref(source);
        source = nullptr;
    }

    // The caller may be inside the call: what it calls stays until it has returned.
    void End() {
        call.End();
        ServiceLoop& loop = ServiceLoop::Shared();
        if (loop.IsCurrentThread())
            Detach();
        else
            loop.Invoke([self = shared_from_this()] { self->Detach(); });
    }

    static gboolean OnReady(gpointer data) {
        // The call may end this watch, and with it the last reference.
        const auto self = static_cast<Watch*>(data)->shared_from_this();
        self->call.Run();
        return G_SOURCE_CONTINUE;
    }

    static gboolean OnElapsed(gpointer data) {
        const auto self = static_cast<Watch*>(data)->shared_from_this();
        const bigtime_t now = g_get_monotonic_time();
        const bigtime_t due = g_source_get_ready_time(self->source) + self->interval;
        // Times missed are missed: they are not made up for by a burst.
        g_source_set_ready_time(self->source, self->interval == 0 ? -1 : std::max(due, now));
        self->call.Run();
        return G_SOURCE_CONTINUE;
    }
};

} // namespace

struct DescriptorWatch::State : Watch {
    using Watch::Watch;
};

DescriptorWatch::DescriptorWatch(int descriptor, std::function<void()> onReadable)
    : fState(std::make_shared<State>(std::move(onReadable))) {
    ServiceLoop::Shared().Invoke([state = fState, descriptor] {
        // It may have been destroyed already, and the descriptor closed.
        if (state->call.HasEnded())
            return;
        GSource* source = NewSource(Watch::OnReady, state.get());
        g_source_add_unix_fd(source, descriptor,
                             static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR));
        state->Attach(source);
    });
}

DescriptorWatch::~DescriptorWatch() {
    fState->End();
}

struct Timer::State : Watch {
    using Watch::Watch;
};

Timer::Timer(bigtime_t delay, bigtime_t interval, std::function<void()> onElapsed)
    : fState(std::make_shared<State>(std::move(onElapsed))) {
    const bigtime_t now = g_get_monotonic_time();
    const bigtime_t due = delay < INT64_MAX - now ? now + std::max<bigtime_t>(delay, 0) : INT64_MAX;
    ServiceLoop::Shared().Invoke([state = fState, due, interval] {
        if (state->call.HasEnded())
            return;
        GSource* source = NewSource(Watch::OnElapsed, state.get());
        g_source_set_ready_time(source, due);
        state->interval = interval;
        state->Attach(source);
    });
}

Timer::~Timer() {
    fState->End();
}

} // namespace host
