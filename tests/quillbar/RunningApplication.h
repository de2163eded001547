#pragma once

#include <cstdlib>
#include <future>
#include <thread>

#include "kits/app/Application.h"
#include "tests/support/Desk.h"
#include "tests/support/TemporaryHome.h"

// Never quits: windows come and go beside it.
class PatientApplication : public BApplication {
public:
    PatientApplication()
        : BApplication("application/x-Orvel.QuillbarTest") {}
    bool QuitRequested() override { return false; }
};

// The home folder of this process, in which an application object runs on a thread of its own and
// on the shared desk until the process ends.
inline const test::TemporaryHome& RunApplication() {
    static const test::TemporaryHome home;
    static const status_t connected = [] {
        test::Desk::Shared();
        std::promise<status_t> result;
        std::thread([&result] {
            auto* application = new PatientApplication;
            result.set_value(connect_display());
            application->Run();
        }).detach();
        return result.get_future().get();
    }();
    if (connected != B_OK)
        std::abort();
    return home;
}
