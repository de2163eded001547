#include "kits/app/Application.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <semaphore>
#include <string_view>

#include <malloc.h>

#include "host/loop/ServiceLoop.h"
#include "host/session/instance/InstanceSocket.h"
#include "host/session/instance/SignalWatch.h"
#include "kits/app/AppDefs.h"
#include "kits/app/AppResources.h"
#include "kits/app/Message.h"
#include "kits/app/SessionHooks.h"

BApplication* be_app = nullptr;
BMessenger be_app_messenger;

namespace {

constexpr bigtime_t kLongestRegistration = 2'000'000;
constexpr bigtime_t kRetryPause = 10'000;
constexpr bigtime_t kLongestQuit = 5'000'000;
constexpr std::chrono::seconds kLongestAction(1);

// How many messages may wait before those of other programs are dropped.
constexpr int32 kMostWaiting = 256;

constinit std::mutex sHooksLock;

session_hooks& Hooks() {
    static session_hooks& hooks = *new session_hooks; // the service thread outlives main()
    return hooks;
}

// The service thread and the display thread outlive the application object: they reach it only
// with this lock held, and find null from the beginning of its destruction on.
constinit std::mutex sReachableLock;
constinit BApplication* sReachable = nullptr;

void SetReachable(BApplication* application) {
    const std::lock_guard guard(sReachableLock);
    sReachable = application;
}

// Ends the process when quitting takes too long, whatever its other threads are doing. Any thread.
class QuitWatchdog {
public:
    // `exitStatus` is called on the service thread, when the process is to end.
    explicit QuitWatchdog(std::function<int()> exitStatus)
        : fExitStatus(std::move(exitStatus)) {}
    ~QuitWatchdog() { Cancel(); }

    // See BApplication::SetEmergencyAction().
    void SetAction(std::function<void()> action) {
        const std::lock_guard guard(fLock);
        fAction = std::move(action);
    }
    // Five seconds from now the action runs and the process ends, unless Cancel() comes first.
    void Start() {
        const std::lock_guard guard(fLock);
        if (fTimer)
            return;
        fTimer = std::make_unique<host::Timer>(kLongestQuit, 0, [this] {
            RunAction();
            std::_Exit(fExitStatus());
        });
    }
    void Cancel() {
        std::unique_ptr<host::Timer> timer;
        const std::lock_guard guard(fLock);
        timer.swap(fTimer);
    }

private:
    void RunAction();

    const std::function<int()> fExitStatus;
    std::mutex fLock;
    // Guarded by fLock. The timer is deleted without it: that waits for the action.
    std::function<void()> fAction;
    std::unique_ptr<host::Timer> fTimer;
};

struct Emergency {
    std::function<void()> action;
    std::binary_semaphore done{0};

    static status_t Run(void* data) {
        auto* emergency = static_cast<Emergency*>(data);
        emergency->action();
        emergency->done.release();
        return B_OK;
    }
};

// On a thread of its own: a disk that hangs the program may hang the action too. The process ends
// after it, so nobody joins the thread or frees what it uses.
void QuitWatchdog::RunAction() {
    auto* emergency = new Emergency;
    {
        const std::lock_guard guard(fLock);
        emergency->action = fAction;
    }
    if (!emergency->action)
        return;
    const thread_id thread =
        spawn_thread(Emergency::Run, "emergency", B_NORMAL_PRIORITY, emergency);
    if (resume_thread(thread) == B_OK)
        static_cast<void>(emergency->done.try_acquire_for(kLongestAction));
}

// Tries to be the one running program, until another one has taken over this start. B_OK: this is
// the one. B_ALREADY_RUNNING: the other was woken. B_TIMED_OUT: it does not answer. Both sides of
// a race come here, and a start while the other is about to end.
status_t TakeOrHandOver(host::InstanceSocket& instance, const std::string& signature) {
    std::string relaunch;
    BApplication::Relaunch().Flatten(&relaunch);
    const bigtime_t deadline = system_time() + kLongestRegistration;
    for (;;) {
        const status_t status = instance.Acquire();
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

void set_session_hooks(session_hooks hooks) {
    const std::lock_guard guard(sHooksLock);
    Hooks() = std::move(hooks);
}

session_hooks get_session_hooks() {
    const std::lock_guard guard(sHooksLock);
    return Hooks();
}

// Connects the application object to the desktop: its place as the one running program, the
// signals and messages from outside, and the way a quit from outside takes.
class BApplication::Session {
public:
    // Ends the process when the program runs already: see BApplication().
    Session(BApplication& application, const std::string& signature);

    void QuitFromOutside(bool displayLost);
    void QuitWasRefused();

    BApplication& application;
    std::atomic<bool> isQuitWaiting = false;
    std::atomic<bool> isDisplayLost = false;
    QuitWatchdog watchdog{[this] { return isDisplayLost ? 1 : 0; }};
    // Closed at the quit: a second start then waits until this process has ended.
    std::optional<host::InstanceSocket> instance;

private:
    void Register(const std::string& signature);
    void Receive(std::string_view bytes);

    std::optional<host::SignalWatch> fSignals;
};

// The first is the one for programs of this display server.
BMessage BApplication::Relaunch() {
    BMessage message(B_SILENT_RELAUNCH);
    for (const char* variable : {"DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN"}) {
        const char* id = getenv(variable); // NOLINT(concurrency-mt-unsafe): nobody sets it
        if (id && *id && !message.HasData("startup_id", B_STRING_TYPE))
            message.AddString("startup_id", id);
    }
    return message;
}

void BApplication::ReleaseFreeMemory() {
    malloc_trim(0);
}

// The signals are blocked before the first other thread, the service thread, is started.
// NOLINTBEGIN(concurrency-mt-unsafe)
BApplication::Session::Session(BApplication& application_, const std::string& signature)
    : application(application_) {
    // With an arena for each thread, memory that one thread frees cannot be used by the others.
    // With one for all, reading the fonts and the bookmarks at the start takes twice as long.
    mallopt(M_ARENA_MAX, 2);
    // Else the first picture that is freed raises it, and later ones stay in the heap.
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);
    if (get_app_resources()->launch_flags == B_EXCLUSIVE_LAUNCH)
        Register(signature);
    fSignals.emplace([this] { QuitFromOutside(false); });
    if (!instance)
        return;
    const status_t status = instance->Listen([this](std::string_view bytes) { Receive(bytes); });
    if (status != B_OK)
        fprintf(stderr, "%s: other programs cannot reach it: %s\n", program_invocation_short_name,
                StatusText(status));
}

void BApplication::Session::Register(const std::string& signature) {
    instance.emplace(signature);
    const status_t status = TakeOrHandOver(*instance, signature);
    if (status == B_OK)
        return;
    if (status == B_ALREADY_RUNNING)
        exit(0);
    if (status == B_TIMED_OUT) {
        fprintf(stderr, "%s: already running, but it does not answer\n",
                program_invocation_short_name);
        exit(1);
    }
    fprintf(stderr, "%s: cannot tell whether it is already running: %s: %s\n",
            program_invocation_short_name, instance->Directory().c_str(), StatusText(status));
    instance.reset();
}
// NOLINTEND(concurrency-mt-unsafe)

void BApplication::Session::Receive(std::string_view bytes) {
    BMessage message;
    if (message.Unflatten(bytes.data(), bytes.size()) != B_OK ||
        application.MessageQueue()->CountMessages() >= kMostWaiting)
        return;
    if (message.what == B_QUIT_REQUESTED) {
        QuitFromOutside(false);
        return;
    }
    if (message.what == B_SILENT_RELAUNCH &&
        !get_session_hooks().wake(message.GetString("startup_id", "")))
        return;
    message.SetSourceRemote(true);
    application.PostMessage(&message);
}

void BApplication::Session::QuitFromOutside(bool displayLost) {
    if (displayLost)
        isDisplayLost = true;
    if (isQuitWaiting.exchange(true))
        return;
    watchdog.Start();
    get_session_hooks().dismiss();
    BMessage request(B_QUIT_REQUESTED);
    request.SetSourceRemote(true);
    application.PostMessage(&request);
}

// The program goes on, unless its display is gone.
void BApplication::Session::QuitWasRefused() {
    if (!isDisplayLost && !isQuitWaiting)
        watchdog.Cancel();
}

BApplication::BApplication(const char* signature)
    : BLooper(signature)
    , fSignature(signature ? signature : "")
    , fSession(std::make_unique<Session>(*this, fSignature)) {
    be_app = this;
    be_app_messenger = BMessenger(this);
    SetReachable(this);
}

BApplication::~BApplication() {
    SetReachable(nullptr);
    be_app_messenger = BMessenger();
    be_app = nullptr;
}

// A request to quit that came before there was a window to dismiss anything in is heard here.
thread_id BApplication::Run() {
    if (fSession->isQuitWaiting)
        get_session_hooks().dismiss();
    BMessage ready(B_READY_TO_RUN);
    DispatchMessage(&ready, this);
    Loop();
    return Thread();
}

void BApplication::Quit() {
    if (fSession->instance)
        fSession->instance->Close();
    EndLoop();
}

bool BApplication::QuitRequested() {
    const session_hooks hooks = get_session_hooks();
    hooks.dismiss();
    if (hooks.quit_windows())
        return true;
    hooks.allow();
    return false;
}

void BApplication::DispatchMessage(BMessage* message, BHandler* target) {
    if (target != this) {
        BLooper::DispatchMessage(message, target);
        return;
    }
    switch (message->what) {
    case B_READY_TO_RUN:
        if (message->IsSourceRemote())
            break;
        ReadyToRun();
        fIsLaunching = false;
        break;
    case B_ABOUT_REQUESTED:
        AboutRequested();
        break;
    case B_QUIT_REQUESTED:
        HandleQuit(message->IsSourceRemote());
        break;
    default:
        BLooper::DispatchMessage(message, target);
    }
}

// Another request from outside is a new one while this one is handled.
void BApplication::HandleQuit(bool isRemote) {
    if (isRemote)
        fSession->isQuitWaiting = false;
    if (QuitRequested())
        Quit();
    else if (isRemote)
        fSession->QuitWasRefused();
}

BMessenger BApplication::WindowAt(int32 index) {
    return get_session_hooks().window_at(index);
}

const char* BApplication::Signature() const {
    return fSignature.c_str();
}

void BApplication::QuitFromOutside(bool displayLost) {
    const std::lock_guard guard(sReachableLock);
    if (sReachable)
        sReachable->fSession->QuitFromOutside(displayLost);
}

void BApplication::SetEmergencyAction(std::function<void()> action) {
    fSession->watchdog.SetAction(std::move(action));
}

int BApplication::ExitStatus() const {
    return fSession->isDisplayLost ? 1 : 0;
}
