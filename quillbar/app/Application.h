#pragma once

#include "kits/app/Application.h"

inline constexpr const char* kAppSig = "application/x-Orvel.Quillbar";

// The program: reads the settings, opens the bar, decides which quit requests are obeyed, and
// writes the settings when it ends.
class QBApp : public BApplication {
public:
    QBApp();
    ~QBApp() override;

    void MessageReceived(BMessage* message) override;
    bool QuitRequested() override;
    void ReadyToRun() override;
    void AboutRequested() override;

    // As the bar window reported it, with the delay of the message queue. Application's thread.
    bool IsMainWindowActive() const { return fMainWindowActive; }

private:
    static void OpenFolder(int32 folder);

    bool fMainWindowActive;
};
