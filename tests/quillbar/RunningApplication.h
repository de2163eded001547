#pragma once

#include <cstdlib>
#include <future>
#include <thread>

#include "kits/app/Application.h"

// Never quits: windows come and go beside it.
class PatientApplication : public BApplication {
public:
    PatientApplication()
        : BApplication("application/x-Orvel.QuillbarTest") {}
    bool QuitRequested() override { return false; }
};

// Runs the application object on a thread of its own until the process ends, on the display that
// is connected then. Once in a process.
inline void RunApplication() {
    std::promise<status_t> connected;
    std::thread([&connected] {
        auto* application = new PatientApplication;
        connected.set_value(connect_display());
        application->Run();
    }).detach();
    if (connected.get_future().get() != B_OK)
        std::abort();
}
