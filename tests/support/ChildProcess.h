#pragma once

#include <chrono>
#include <csignal>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

#include "tests/support/Wait.h"

namespace test {

// A program that runs beside the test. It is killed when the object goes and also when the thread
// that started it ends, so that a crashed test leaves nothing behind.
class ChildProcess {
public:
    struct Options {
        std::vector<std::string> arguments{};             // the program's path or name first
        std::map<std::string, std::string> environment{}; // on top of this process's own
        std::string output{};                             // file for standard output; "" keeps ours
        std::string errors{};                             // file for standard error; "" keeps ours
        bool ordinaryUser = false;                        // without root's rights, if we have them
        int endsBy = SIGKILL; // the signal of Kill() and of this thread's end
    };

    explicit ChildProcess(const Options& options);
    ~ChildProcess() { Kill(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // The user that such an ordinary user's program runs as: ours, or if that is root, nobody.
    static uid_t OrdinaryUser();

    pid_t Pid() const { return fPid; }
    bool IsRunning();
    // SIGSTOP: all its threads have stopped when this returns.
    void Signal(int number);

    // The exit status, 128 + N after a death by signal N; nothing if it still runs at the deadline.
    std::optional<int> Wait(std::chrono::milliseconds deadline = kDeadline);

    void Kill();

private:
    const int fEndsBy;
    pid_t fPid = -1;
    std::optional<int> fStatus;
};

} // namespace test
