#include "kits/app/ApplicationSession.h"

#include <cstdio>
#include <cstdlib>

#include "kits/app/AppDefs.h"
#include "kits/app/AppResources.h"
#include "kits/app/Application.h"
#include "kits/app/Message.h"
#include "kits/app/SessionHooks.h"

namespace {

constexpr bigtime_t kLongestRegistration = 2'000'000;
constexpr bigtime_t kRetryPause = 10'000;

// How many messages may wait before those of other programs are dropped.
constexpr int32 kMostWaiting = 256;

std::string RelaunchText() {
    std::string text;
    BMessage(B_SILENT_RELAUNCH).Flatten(&text);
    return text;
}

// Tries to be the one running program, until another one has taken over this start. B_OK: this is
// the one. B_ALREADY_RUNNING: the other was woken. B_TIMED_OUT: it does not answer. Both sides of
// a race come here, and a start while the other is about to end.
status_t TakeOrHandOver(host::InstanceLock& lock, const std::string& signature) {
    const std::string relaunch = RelaunchText();
    const bigtime_t deadline = system_time() + kLongestRegistration;
    for (;;) {
        const status_t status = lock.Acquire();
        if (status != B_ALREADY_RUNNING)
            return status;
        const bigtime_t left = deadline - system_time();
        if (left <= 0)
            return B_TIMED_OUT;
        if (host::SendToInstance(signature, relaunch, left) == B_OK)
            return B_ALREADY_RUNNING;
        snooze(kRetryPause);
    }
}

} // namespace

// The signals are blocked before the first other thread, the service thread, is started.
ApplicationSession::ApplicationSession(BApplication& application, const std::string& signature)
    : fApplication(application)
    , fWatchdog([this] { return ExitStatus(); }) {
    if (get_app_resources()->launch_flags == B_EXCLUSIVE_LAUNCH)
        Register(signature);
    fSignals.emplace([this] { QuitFromOutside(false); });
    if (fLock)
        fSocket.emplace(*fLock, [this](std::string_view bytes) { Receive(bytes); });
    if (fSocket && fSocket->InitCheck() != B_OK)
        fprintf(stderr, "%s: other programs cannot reach it: %s\n", signature.c_str(),
                StatusText(fSocket->InitCheck()));
}

void ApplicationSession::Register(const std::string& signature) {
    fLock.emplace(signature);
    const status_t status = TakeOrHandOver(*fLock, signature);
    if (status == B_OK)
        return;
    if (status == B_ALREADY_RUNNING)
        exit(0);
    if (status == B_TIMED_OUT) {
        fprintf(stderr, "%s: already running, but it does not answer\n", signature.c_str());
        exit(1);
    }
    fprintf(stderr, "%s: cannot tell whether it is already running: %s: %s\n", signature.c_str(),
            fLock->Directory().Path().c_str(), StatusText(status));
    fLock.reset();
}

void ApplicationSession::Receive(std::string_view bytes) {
    BMessage message;
    if (message.Unflatten(bytes.data(), bytes.size()) != B_OK ||
        fApplication.MessageQueue()->CountMessages() >= kMostWaiting)
        return;
    if (message.what == B_QUIT_REQUESTED) {
        QuitFromOutside(false);
        return;
    }
    if (message.what == B_SILENT_RELAUNCH) {
        const session_hooks hooks = get_session_hooks();
        if (hooks.wake)
            hooks.wake();
    }
    message.SetSourceRemote(true);
    fApplication.PostMessage(&message);
}

void ApplicationSession::QuitFromOutside(bool displayLost) {
    if (displayLost)
        fDisplayLost = true;
    if (fIsQuitWaiting.exchange(true))
        return;
    fWatchdog.Start();
    const session_hooks hooks = get_session_hooks();
    if (hooks.dismiss)
        hooks.dismiss();
    BMessage request(B_QUIT_REQUESTED);
    request.SetSourceRemote(true);
    fApplication.PostMessage(&request);
}

void ApplicationSession::QuitWasRefused() {
    if (!fDisplayLost && !fIsQuitWaiting)
        fWatchdog.Cancel();
}
