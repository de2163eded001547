#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "kits/app/Looper.h"
#include "kits/app/Message.h"
#include "kits/app/Messenger.h"

// The application object: the program's first looper, whose loop runs on the thread that calls
// Run(). There is at most one at a time, built in main() before any other thread is started and
// before any window.
//
// Quit requests from outside the program (a signal, another program, a display that is gone, a
// window manager) are remote messages to message filters; those posted by the program itself are
// local ones.
class BApplication : public BLooper {
public:
    // Registers the program under `signature`, with the launch flags of the program's resources
    // (see AppResources.h), sets `be_app` and `be_app_messenger`, and from here on takes SIGTERM,
    // SIGINT and SIGHUP as quit requests from outside; SIGPIPE is ignored.
    //
    // For B_EXCLUSIVE_LAUNCH, when the program already runs, the running one is woken and this
    // process ends here: with status 0, or, when the other does not answer within two seconds,
    // with a line on standard error and status 1. A program that cannot be registered runs on,
    // after a line on standard error.
    explicit BApplication(const char* signature);

    // The other programs of this signature can start only when this has returned.
    ~BApplication() override;

    // Runs the message loop until the application has quit, and then returns; the object stays
    // the caller's. ReadyToRun() is called first, before any message of the queue. Returns the
    // calling thread's number.
    thread_id Run() override;

    // Ends Run() after the current message. The application's thread, or any that holds the lock.
    void Quit() override;

    // Asks the windows: see session_hooks. Menus and alerts are dismissed meanwhile, and allowed
    // again if a window refuses. True if the application may quit; the windows have quit then.
    bool QuitRequested() override;

    // The start of the application, and a request for its "about" window. Both do nothing here.
    virtual void ReadyToRun() {}
    virtual void AboutRequested() {}

    void DispatchMessage(BMessage* message, BHandler* target) override;

    // Whether ReadyToRun() has yet to return. Any thread.
    bool IsLaunching() const { return fIsLaunching; }

    // The program's windows in the order of their construction; IsTargetLocal() is false behind the
    // last. By address, since a window may be gone the next moment. Any thread.
    static BMessenger WindowAt(int32 index);

    const char* Signature() const;

    // Starts to end the program for a request from outside: dismisses menus and alerts at once,
    // posts a remote B_QUIT_REQUESTED, which is handled when the application's thread gets to it,
    // even if Run() has not been called yet, and sets a watchdog: after five seconds it runs the
    // emergency action and ends the process with ExitStatus(), if it is still there. While the
    // request waits, further calls only remember a lost display. Does nothing before the object is
    // built and from its destruction on. Any thread, at any time; waits for no looper.
    static void QuitFromOutside(bool displayLost);

    // The message that a second start sends to the running program, which brings its main window up
    // and then gets it. "startup_id", if it is there, is the desktop's name for the click or key
    // that started this process. An addition to the platform, for programs that do the same; before
    // another thread is started.
    static BMessage Relaunch();

    // Gives memory that has been freed back to the system: for a moment when the program has done
    // much and waits for its user. An addition to the platform. Any thread.
    static void ReleaseFreeMemory();

    // Sets the function that the watchdog runs, on a thread of its own, before it ends the process
    // while other threads may hang: the last moment to save something. It must wait for no lock of
    // the program; after a second the watchdog goes on without it. May be empty. Any thread.
    void SetEmergencyAction(std::function<void()> action);

    // The status that main() should return: 0, or 1 after the display was lost. Any thread.
    int ExitStatus() const;

private:
    class Session;

    void HandleQuit(bool isRemote);

    const std::string fSignature;
    std::atomic<bool> fIsLaunching = true;
    const std::unique_ptr<Session> fSession;
};

// The application object, or null.
extern BApplication* be_app;

// Sends to the application object. Not valid when there is none.
extern BMessenger be_app_messenger;
