#include "kits/kernel/OS.h"

#include <pthread.h>

#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>

#include "kits/kernel/StopToken.h"

namespace {

struct Thread {
    const thread_func function;
    void* const data;
    std::stop_source stop;
    // Guarded by the table's lock.
    std::string name;
    std::thread running;
    // Written by the thread, read after it was joined.
    status_t result = B_OK;
};

// The spawned threads that nobody waits for yet. It is never destroyed: threads may outlive main().
struct Table {
    std::mutex mutex;
    std::map<thread_id, std::shared_ptr<Thread>> threads;

    static Table& Shared() {
        static Table* const table = new Table;
        return *table;
    }

    std::shared_ptr<Thread> Find(thread_id id) {
        const auto found = threads.find(id);
        return found == threads.end() ? nullptr : found->second;
    }
};

thread_id NextId() {
    static std::atomic<thread_id> last = 0;
    return ++last;
}

thread_local thread_id sCurrentId = 0;
thread_local Thread* sCurrent = nullptr;

void SetSystemName(pthread_t thread, const std::string& name) {
    pthread_setname_np(thread, name.substr(0, 15).c_str());
}

// The thread that nobody waits for ends unseen.
void Forget(thread_id id) {
    Table& table = Table::Shared();
    std::lock_guard lock(table.mutex);
    if (const auto thread = table.Find(id)) {
        thread->running.detach();
        table.threads.erase(id);
    }
}

void RunThread(thread_id id, std::shared_ptr<Thread> thread) {
    sCurrentId = id;
    sCurrent = thread.get();
    {
        // It may have been renamed since it was started.
        std::lock_guard lock(Table::Shared().mutex);
        SetSystemName(pthread_self(), thread->name);
    }
    thread->result = thread->function(thread->data);
    sCurrent = nullptr;
    Forget(id);
}

// Table locked.
status_t Start(thread_id id, const std::shared_ptr<Thread>& thread) {
    try {
        thread->running = std::thread(RunThread, id, thread);
    } catch (const std::system_error&) {
        return B_NO_MEMORY;
    }
    return B_OK;
}

} // namespace

thread_id spawn_thread(thread_func function, const char* name, int32, void* data) {
    if (!function)
        return B_BAD_VALUE;
    Table& table = Table::Shared();
    const thread_id id = NextId();
    std::lock_guard lock(table.mutex);
    table.threads[id] =
        std::shared_ptr<Thread>(new Thread{function, data, {}, name ? name : "", {}});
    return id;
}

status_t resume_thread(thread_id id) {
    Table& table = Table::Shared();
    std::lock_guard lock(table.mutex);
    const auto thread = table.Find(id);
    if (!thread || thread->running.joinable())
        return B_BAD_THREAD_ID;
    return Start(id, thread);
}

status_t wait_for_thread(thread_id id, status_t* result) {
    Table& table = Table::Shared();
    std::shared_ptr<Thread> thread;
    {
        std::lock_guard lock(table.mutex);
        thread = table.Find(id);
        if (!thread || id == sCurrentId)
            return B_BAD_THREAD_ID;
        if (!thread->running.joinable()) {
            const status_t status = Start(id, thread);
            if (status != B_OK)
                return status;
        }
        table.threads.erase(id);
    }
    thread->running.join();
    if (result)
        *result = thread->result;
    return B_OK;
}

status_t ask_thread_to_stop(thread_id id) {
    Table& table = Table::Shared();
    std::shared_ptr<Thread> thread;
    {
        std::lock_guard lock(table.mutex);
        thread = table.Find(id);
    }
    if (!thread)
        return B_BAD_THREAD_ID;
    // Wakes its waits, which take locks of their own: not under the table's.
    thread->stop.request_stop();
    return B_OK;
}

std::stop_token current_stop_token() {
    return sCurrent ? sCurrent->stop.get_token() : std::stop_token();
}

bool should_stop() {
    return sCurrent && sCurrent->stop.stop_requested();
}

status_t rename_thread(thread_id id, const char* name) {
    if (!name)
        return B_BAD_VALUE;
    Table& table = Table::Shared();
    std::lock_guard lock(table.mutex);
    const auto thread = table.Find(id);
    if (thread)
        thread->name = name;
    if (id == sCurrentId && id != 0)
        SetSystemName(pthread_self(), name);
    else if (thread && thread->running.joinable())
        SetSystemName(thread->running.native_handle(), name);
    else if (!thread)
        return B_BAD_THREAD_ID;
    return B_OK;
}

thread_id find_thread(const char* name) {
    if (!name) {
        if (sCurrentId == 0)
            sCurrentId = NextId();
        return sCurrentId;
    }
    Table& table = Table::Shared();
    std::lock_guard lock(table.mutex);
    for (const auto& [id, thread] : table.threads) {
        if (thread->name == name)
            return id;
    }
    return B_NAME_NOT_FOUND;
}

void debugger(const char* message) {
    std::fprintf(stderr, "debugger: %s\n", message ? message : "");
}

status_t snooze(bigtime_t microseconds) {
    if (microseconds <= 0)
        return should_stop() ? B_INTERRUPTED : B_OK;
    if (!sCurrent) {
        std::this_thread::sleep_for(wait_duration(microseconds));
        return B_OK;
    }
    std::mutex mutex;
    std::condition_variable_any never;
    std::unique_lock lock(mutex);
    const std::stop_token token = current_stop_token();
    never.wait_for(lock, token, wait_duration(microseconds), [] { return false; });
    return token.stop_requested() ? B_INTERRUPTED : B_OK;
}

bigtime_t system_time() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}
