#include "host/session/instance/SignalWatch.h"

#include <sys/signalfd.h>

#include <csignal>

namespace host {

namespace {

bool IsIgnored(int number) {
    struct sigaction action;
    return sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

// A blocked signal arrives although it is ignored.
int OpenSignals() {
    sigset_t ending;
    sigemptyset(&ending);
    for (int number : {SIGTERM, SIGINT, SIGHUP}) {
        if (!IsIgnored(number))
            sigaddset(&ending, number);
    }
    pthread_sigmask(SIG_BLOCK, &ending, nullptr);
    signal(SIGPIPE, SIG_IGN);
    return signalfd(-1, &ending, SFD_NONBLOCK | SFD_CLOEXEC);
}

} // namespace

SignalWatch::SignalWatch(std::function<void()> onSignal)
    : fSignals(OpenSignals()) {
    fWatch = std::make_unique<DescriptorWatch>(
        fSignals.Get(), [descriptor = fSignals.Get(), onSignal = std::move(onSignal)] {
            signalfd_siginfo received;
            while (read(descriptor, &received, sizeof received) > 0)
                onSignal();
        });
}

} // namespace host
