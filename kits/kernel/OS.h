#pragma once

#include "base/Types.h"

// A thread of this process; never given to another thread again.
using thread_id = int32;
using thread_func = status_t (*)(void* data);

inline constexpr bigtime_t B_INFINITE_TIMEOUT = INT64_MAX;

// Accepted where the platform's calls take them; all threads are scheduled alike.
enum : int32 {
    B_NORMAL_PRIORITY = 10,
};

// Makes a thread that will run `function(data)` after resume_thread or wait_for_thread. Returns its
// id, B_BAD_VALUE without a function. Tools show the first 15 bytes of `name`. Any thread, as all
// calls here.
thread_id spawn_thread(thread_func function, const char* name, int32 priority, void* data);

// Starts a spawned thread. B_BAD_THREAD_ID if there is none of this id or it runs already,
// B_NO_MEMORY if the system gives no thread.
status_t resume_thread(thread_id thread);

// Starts the thread if it has not been, and waits until it has ended. `result` (may be null) gets
// what its function returned. B_BAD_THREAD_ID if there is none, if it has ended before, if another
// thread waits for it already, or if it is the caller.
status_t wait_for_thread(thread_id thread, status_t* result);

// Asks a spawned thread to stop, and returns at once. From then on should_stop() is true in it, and
// its snooze() and its waits for a BLocker end at once; it returns from its function by itself.
// B_BAD_THREAD_ID if there is none.
status_t ask_thread_to_stop(thread_id thread);

// Whether the calling thread has been asked to stop.
bool should_stop();

// B_BAD_THREAD_ID if there is none.
status_t rename_thread(thread_id thread, const char* name);

// The calling thread for null, else a spawned thread of this name; B_NAME_NOT_FOUND if there is
// none.
thread_id find_thread(const char* name);

// Reports a mistake of the program: `message` is written to standard error, and the program goes
// on.
void debugger(const char* message);

// Sleeps. B_INTERRUPTED if the thread was asked to stop.
status_t snooze(bigtime_t microseconds);

// Microseconds since the machine was started; never goes back.
bigtime_t system_time();
