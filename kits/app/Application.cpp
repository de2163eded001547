#include "kits/app/Application.h"

#include "kits/app/AppDefs.h"
#include "kits/app/ApplicationSession.h"
#include "kits/app/Message.h"
#include "kits/app/SessionHooks.h"

BApplication* be_app = nullptr;
BMessenger be_app_messenger;

BApplication::BApplication(const char* signature)
    : BLooper(signature)
    , fSignature(signature ? signature : "")
    , fSession(std::make_unique<ApplicationSession>(*this, fSignature)) {
    be_app = this;
    be_app_messenger = BMessenger(this);
}

BApplication::~BApplication() {
    be_app_messenger = BMessenger();
    be_app = nullptr;
}

// Whoever asked to quit before there was a window to dismiss anything in is heard here.
thread_id BApplication::Run() {
    const session_hooks hooks = get_session_hooks();
    if (fSession->IsQuitWaiting() && hooks.dismiss)
        hooks.dismiss();
    BMessage ready(B_READY_TO_RUN);
    DispatchMessage(&ready, this);
    Loop();
    return Thread();
}

void BApplication::Quit() {
    fSession->StopReceiving();
    EndLoop();
}

bool BApplication::QuitRequested() {
    const session_hooks hooks = get_session_hooks();
    if (hooks.dismiss)
        hooks.dismiss();
    if (!hooks.quit_windows || hooks.quit_windows())
        return true;
    if (hooks.allow)
        hooks.allow();
    return false;
}

void BApplication::ReadyToRun() {}

void BApplication::AboutRequested() {}

void BApplication::MessageReceived(BMessage* message) {
    BLooper::MessageReceived(message);
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

void BApplication::HandleQuit(bool isRemote) {
    if (isRemote)
        fSession->QuitIsHandled();
    if (QuitRequested())
        Quit();
    else if (isRemote)
        fSession->QuitWasRefused();
}

BMessenger BApplication::WindowAt(int32 index) const {
    const session_hooks hooks = get_session_hooks();
    return hooks.window_at ? hooks.window_at(index) : BMessenger();
}

const char* BApplication::Signature() const {
    return fSignature.c_str();
}

void BApplication::QuitFromOutside(bool displayLost) {
    fSession->QuitFromOutside(displayLost);
}

void BApplication::SetEmergencyAction(std::function<void()> action) {
    fSession->Watchdog().SetAction(std::move(action));
}

int BApplication::ExitStatus() const {
    return fSession->ExitStatus();
}
