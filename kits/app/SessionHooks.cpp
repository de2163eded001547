#include "kits/app/SessionHooks.h"

#include <mutex>

namespace {

constinit std::mutex sLock;

session_hooks& Hooks() {
    static session_hooks& hooks = *new session_hooks; // the service thread outlives main()
    return hooks;
}

} // namespace

void set_session_hooks(session_hooks hooks) {
    const std::lock_guard guard(sLock);
    Hooks() = std::move(hooks);
}

session_hooks get_session_hooks() {
    const std::lock_guard guard(sLock);
    return Hooks();
}
