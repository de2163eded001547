#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <string_view>

#include "host/session/instance/InstanceLock.h"
#include "host/session/instance/InstanceSocket.h"
#include "host/session/instance/SignalWatch.h"
#include "kits/app/QuitWatchdog.h"

class BApplication;

// What connects the application object to the desktop: its place as the one running program, the
// signals and messages from outside, and the way a quit from outside takes.
class ApplicationSession {
public:
    // Ends the process when the program runs already: see BApplication().
    ApplicationSession(BApplication& application, const std::string& signature);

    ApplicationSession(const ApplicationSession&) = delete;

    // No messages of other programs from here on: a second start waits until this process has
    // ended. Any thread.
    void StopReceiving() { fSocket.reset(); }

    // See BApplication. Any thread.
    void QuitFromOutside(bool displayLost);
    int ExitStatus() const { return fDisplayLost ? 1 : 0; }
    QuitWatchdog& Watchdog() { return fWatchdog; }

    // Whether a quit request from outside waits to be handled. Any thread.
    bool IsQuitWaiting() const { return fIsQuitWaiting; }
    // The request is being handled: another one is a new one.
    void QuitIsHandled() { fIsQuitWaiting = false; }
    // The program goes on, unless its display is gone.
    void QuitWasRefused();

private:
    void Register(const std::string& signature);
    void Receive(std::string_view bytes);

    BApplication& fApplication;
    std::atomic<bool> fIsQuitWaiting = false;
    std::atomic<bool> fDisplayLost = false;
    QuitWatchdog fWatchdog;
    std::optional<host::InstanceLock> fLock;
    std::optional<host::SignalWatch> fSignals;
    std::optional<host::InstanceSocket> fSocket;
};
