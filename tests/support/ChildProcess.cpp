#include "tests/support/ChildProcess.h"

#include <csignal>
#include <fcntl.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace test {

namespace {

std::vector<std::string> Environment(const std::map<std::string, std::string>& changes) {
    std::vector<std::string> result;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        if (!changes.contains(text.substr(0, text.find('='))))
            result.push_back(text);
    }
    for (const auto& [name, value] : changes)
        result.push_back(name + "=" + value);
    return result;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (std::string& text : texts)
        result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

int OpenForWriting(const std::string& path) {
    if (path.empty())
        return -1;
    return open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
}

} // namespace

ChildProcess::ChildProcess(const Options& options)
    : fEndsBy(options.endsBy) {
    // All memory is taken before the fork: other threads may hold the allocator's lock.
    std::vector<std::string> arguments = options.arguments;
    std::vector<std::string> variables = Environment(options.environment);
    const std::vector<char*> argv = Pointers(arguments);
    const std::vector<char*> envp = Pointers(variables);
    const int output = OpenForWriting(options.output);
    const int errors = OpenForWriting(options.errors);
    const pid_t parent = getpid();

    fPid = fork();
    if (fPid == 0) {
        const uid_t user = OrdinaryUser();
        if (options.ordinaryUser &&
            (setresgid(user, user, user) != 0 || setresuid(user, user, user) != 0))
            _exit(127);
        prctl(PR_SET_PDEATHSIG, fEndsBy); // after the change of user, which clears it
        if (getppid() != parent)
            _exit(127);
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        signal(SIGINT, SIG_DFL);  // which shells ignore for background jobs
        signal(SIGPIPE, SIG_DFL); // which the test program ignores
        if (output >= 0)
            dup2(output, STDOUT_FILENO);
        if (errors >= 0)
            dup2(errors, STDERR_FILENO);
        execvpe(argv[0], argv.data(), envp.data());
        _exit(127);
    }
    if (output >= 0)
        close(output);
    if (errors >= 0)
        close(errors);
    if (fPid < 0)
        throw std::runtime_error("cannot start " + options.arguments[0]);
}

uid_t ChildProcess::OrdinaryUser() {
    constexpr uid_t kNobody = 65534;
    return geteuid() == 0 ? kNobody : geteuid();
}

bool ChildProcess::IsRunning() {
    if (fStatus)
        return false;
    int status = 0;
    if (waitpid(fPid, &status, WNOHANG) != fPid)
        return true;
    fStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return false;
}

void ChildProcess::Signal(int number) {
    if (!IsRunning())
        return;
    kill(fPid, number);
    siginfo_t stopped;
    if (number == SIGSTOP)
        waitid(P_PID, static_cast<id_t>(fPid), &stopped, WSTOPPED);
}

std::optional<int> ChildProcess::Wait(std::chrono::milliseconds deadline) {
    WaitUntil([this] { return !IsRunning(); }, deadline);
    return fStatus;
}

void ChildProcess::Kill() {
    Signal(fEndsBy);
    if (Wait())
        return;
    Signal(SIGKILL);
    Wait();
}

} // namespace test
