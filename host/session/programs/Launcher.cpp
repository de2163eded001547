#include "host/session/programs/Launcher.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "host/loop/Descriptor.h"

namespace host {

namespace {

constexpr const char* kDefaultPath = "/usr/local/bin:/usr/bin:/bin";

bool IsProgram(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           access(path.c_str(), X_OK) == 0;
}

// What named the start of this program to the desktop does not name the start of the other.
bool BelongsToThisStart(std::string_view variable) {
    return variable.starts_with("DESKTOP_STARTUP_ID=") ||
           variable.starts_with("XDG_ACTIVATION_TOKEN=");
}

std::vector<char*> Environment() {
    std::vector<char*> variables;
    for (char** variable = environ; variable && *variable; variable++) {
        if (!BelongsToThisStart(*variable))
            variables.push_back(*variable);
    }
    variables.push_back(nullptr);
    return variables;
}

// All that the child needs, made before the fork: afterwards another thread's locks, the
// allocator's among them, may be held for ever.
struct Start {
    const char* program;
    char* const* arguments;
    char* const* environment;
    const char* directory;
    int report;
};

[[noreturn]] void Fail(int report, int error) {
    while (write(report, &error, sizeof error) < 0 && errno == EINTR) {
    }
    _exit(127);
}

void ResetSignals() {
    for (int number = 1; number < NSIG; number++)
        signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

// The report moves to the first number after the standard ones; it closes by itself when the
// program runs.
int KeepStandardDescriptors(int report) {
    constexpr int kReport = 3;
    if (report != kReport)
        dup2(report, kReport);
    fcntl(kReport, F_SETFD, FD_CLOEXEC);
    dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
    close_range(kReport + 1, ~0U, 0);
    return kReport;
}

[[noreturn]] void RunGrandchild(const Start& start) {
    const int report = KeepStandardDescriptors(start.report);
    if (chdir(start.directory) != 0 && chdir("/") != 0)
        Fail(report, errno);
    ResetSignals();
    execve(start.program, start.arguments, start.environment);
    Fail(report, errno);
}

// The program is the child's child: with its parent gone at once, the system reaps it.
[[noreturn]] void RunChild(const Start& start) {
    setsid();
    const pid_t grandchild = fork();
    if (grandchild == 0)
        RunGrandchild(start);
    if (grandchild < 0)
        Fail(start.report, errno);
    _exit(0);
}

// No handler of this program may run in the child.
pid_t ForkWithSignalsBlocked() {
    sigset_t all;
    sigset_t old;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &old);
    const pid_t child = fork();
    const int error = errno;
    if (child != 0)
        pthread_sigmask(SIG_SETMASK, &old, nullptr);
    errno = error;
    return child;
}

int ReadReport(int report) {
    int error = 0;
    ssize_t count;
    do {
        count = read(report, &error, sizeof error);
    } while (count < 0 && errno == EINTR);
    return count == sizeof error ? error : 0;
}

} // namespace

std::string FindProgram(const std::string& name) {
    if (name.find('/') != std::string::npos)
        return name[0] == '/' && IsProgram(name) ? name : std::string();
    const char* variable = getenv("PATH");
    std::string_view places = variable ? variable : kDefaultPath;
    while (!name.empty() && !places.empty()) {
        const std::string_view place = places.substr(0, places.find(':'));
        places.remove_prefix(std::min(places.size(), place.size() + 1));
        const std::string path = std::string(place) + "/" + name;
        if (place.starts_with('/') && IsProgram(path))
            return path;
    }
    return {};
}

status_t LaunchDetached(const Command& command) {
    std::vector<char*> arguments;
    for (const std::string& argument : command.arguments)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    const std::vector<char*> environment = Environment();

    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return StatusFromErrno(errno);
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);

    const Start start{command.program.c_str(), arguments.data(), environment.data(),
                      command.directory.c_str(), writing.Get()};
    const pid_t child = ForkWithSignalsBlocked();
    if (child < 0)
        return StatusFromErrno(errno);
    if (child == 0)
        RunChild(start);
    writing.Close();
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    const int error = ReadReport(reading.Get());
    return error == 0 ? B_OK : StatusFromErrno(error);
}

} // namespace host
