#include "host/session/programs/Launcher.h"

#include <glib.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <map>
#include <memory>

#include "host/loop/Descriptor.h"
#include "host/loop/ServiceLoop.h"

namespace host {

namespace {

// A second, and the time that a start takes.
constexpr gint64 kAtOnce = 1'250'000;

// Runs in the child, where another thread's locks, the allocator's among them, may be held for
// ever: only system calls.
void SetUpChild(gpointer data) {
    const char* directory = static_cast<const Command*>(data)->directory.c_str();
    if (chdir(directory) != 0 && chdir("/") != 0)
        _exit(127);
    setsid();
    for (int number = 1; number < NSIG; number++)
        signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the child has one thread
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

// The variables that identify the start of this program to the desktop do not identify the other.
char** Environment() {
    char** variables = g_get_environ();
    variables = g_environ_unsetenv(variables, "DESKTOP_STARTUP_ID");
    return g_environ_unsetenv(variables, "XDG_ACTIVATION_TOKEN");
}

status_t StatusOf(const GError& error) {
    switch (error.code) {
    case G_SPAWN_ERROR_NOENT:
        return B_ENTRY_NOT_FOUND;
    case G_SPAWN_ERROR_ACCES:
    case G_SPAWN_ERROR_PERM:
        return B_PERMISSION_DENIED;
    case G_SPAWN_ERROR_TOO_BIG:
        return B_BAD_DATA;
    case G_SPAWN_ERROR_NOMEM:
        return B_NO_MEMORY;
    default:
        return B_ERROR;
    }
}

// A program that was started, until it ends: its parent has to take its exit status. Service
// thread only.
struct Child {
    const Descriptor process;
    const gint64 start;
    const std::function<void()> onFailure;
    const DescriptorWatch watch;
};

std::map<pid_t, std::unique_ptr<Child>>& Children() {
    static auto& children = *new std::map<pid_t, std::unique_ptr<Child>>; // outlives main()
    return children;
}

void ChildEnded(pid_t process) {
    int status = 0;
    if (waitpid(process, &status, WNOHANG) == 0)
        return;
    const std::unique_ptr<Child> child = std::move(Children()[process]);
    Children().erase(process);
    if (status != 0 && child->onFailure && g_get_monotonic_time() - child->start < kAtOnce)
        child->onFailure();
}

void Watch(pid_t process, std::function<void()> onFailure) {
    const gint64 start = g_get_monotonic_time();
    ServiceLoop::Shared().Invoke([=] {
        Descriptor descriptor(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
        const int number = descriptor.Get();
        if (number >= 0)
            Children()[process].reset(
                new Child{std::move(descriptor), start, onFailure,
                          DescriptorWatch(number, [=] { ChildEnded(process); })});
    });
}

} // namespace

std::string FindProgram(const std::string& name) {
    // GLib would look for a relative path from the working directory.
    if (!name.starts_with('/') && name.find('/') != std::string::npos)
        return {};
    char* found = g_find_program_in_path(name.c_str());
    std::string path = found && found[0] == '/' ? found : "";
    g_free(found);
    return path;
}

status_t LaunchDetached(const Command& command, std::function<void()> onFailure) {
    std::vector<char*> arguments{const_cast<char*>(command.program.c_str())};
    for (const std::string& argument : command.arguments)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    char** environment = Environment();
    GPid process = 0;
    GError* error = nullptr;
    const auto flags =
        static_cast<GSpawnFlags>(G_SPAWN_FILE_AND_ARGV_ZERO | G_SPAWN_DO_NOT_REAP_CHILD);
    const bool isRunning = g_spawn_async(nullptr, arguments.data(), environment, flags, SetUpChild,
                                         const_cast<Command*>(&command), &process, &error);
    g_strfreev(environment);
    if (isRunning) {
        Watch(process, std::move(onFailure));
        return B_OK;
    }
    const status_t status = StatusOf(*error);
    g_error_free(error);
    return status;
}

} // namespace host
