#include "quillbar/app/Application.h"

#include <algorithm>
#include <cmath>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/interface/window/Screen.h"
#include "kits/storage/Path.h"
#include "quillbar/about/AboutWindow.h"
#include "quillbar/app/QuitFilters.h"
#include "quillbar/bar/MainWindow.h"
#include "quillbar/base/Commands.h"
#include "quillbar/base/Settings.h"

namespace {

// No screen reaches further; what lies beyond is not a place that a window was moved to.
constexpr float kFarthest = 32'000;

BPoint PlaceOnScreen(BPoint stored) {
    auto within = [](float value) {
        return std::isfinite(value) ? std::clamp(value, -kFarthest, kFarthest) : 0;
    };
    return {within(stored.x), within(stored.y)};
}

} // namespace

QBApp::QBApp()
    : BApplication(kAppSig)
    , fMainWindowActive(false) {}

QBApp::~QBApp() {
    if (!gSettings)
        return;
    gSettings->Save();
    delete gSettings;
    gSettings = nullptr;
}

void QBApp::ReadyToRun() {
    gSettings = new QBSettings(BPath(kSettingsPath));
    gSettings->Load();
    SetEmergencyAction(gSettings->EmergencySave());

    const BPoint place = PlaceOnScreen(gSettings->GetPos());
    auto* window = new QBMainWindow(BRect(place.x, place.y, 0, 0));
    window->Show();

    AddFilter(new QBRemoteFilter());
    AddFilter(new QBLocalFilter());
}

// In the middle of the main screen; the window knows its own size.
void QBApp::AboutRequested() {
    const BRect screen = BScreen().Frame();
    const float left = (screen.Width() - 365) * 0.5f;
    const float top = (screen.Height() - 204) * 0.5f;
    (new QBAboutWindow(BRect(left, top, 0, 0)))->Show();
}

bool QBApp::QuitRequested() {
    return BApplication::QuitRequested();
}

// The bar has been brought up. Another number, or none, asks for nothing else.
void QBApp::OpenFolder(int32 folder) {
    if (folder >= 1 && folder <= 10)
        QBMainWindow::fMsgWindow.Send(QBFolder[folder - 1]);
}

void QBApp::MessageReceived(BMessage* message) {
    switch (message->what) {
    case kQBWindowActive:
        fMainWindowActive = true;
        break;
    case kQBWindowInactive:
        fMainWindowActive = false;
        break;
    case B_SILENT_RELAUNCH:
        OpenFolder(message->GetInt32("folder", 0));
        break;
    case B_NODE_MONITOR:
        // The window refreshes; it does not get the fields of the message.
        QBMainWindow::fMsgWindow.Send(B_NODE_MONITOR);
        break;
    default:
        BApplication::MessageReceived(message);
    }
}
