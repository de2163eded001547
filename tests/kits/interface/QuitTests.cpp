#include "tests/kits/interface/InterfaceTest.h"

#include <cstdlib>
#include <memory>

#include "kits/app/AppDefs.h"
#include "kits/app/Application.h"
#include "tests/support/TemporaryHome.h"

namespace {

// Refuses the first time, and has the program asked again.
class RefusingWindow : public BWindow {
public:
    RefusingWindow()
        : BWindow(BRect(300, 300, 399, 349), "refusing", B_TITLED_WINDOW, 0) {}

    bool QuitRequested() override {
        if (++sAsked == 1)
            be_app_messenger.SendMessage(B_QUIT_REQUESTED);
        return sAsked > 1;
    }

    static inline int sAsked = 0;
};

// In a process of its own, as a program of its own: it has one application object and ends.
void RefuseOnce() {
    test::TemporaryHome home;
    test::PrivateDesktop desktop{test::PrivateDesktop::Options{}};
    auto application = std::make_unique<BApplication>("application/x-Orvel.QuitTest");
    if (connect_display() != B_OK)
        _exit(10);
    (new BWindow(BRect(20, 20, 119, 49), "other", B_TITLED_WINDOW, 0))->Show();
    (new RefusingWindow)->Show();
    be_app_messenger.SendMessage(B_QUIT_REQUESTED);
    application->Run();
    int status = application->ExitStatus();
    application.reset();
    if (RefusingWindow::sAsked != 2)
        status = 11;
    if (!ShownWindows(test::Screen(desktop)).empty())
        status = 12;
    std::exit(status);
}

} // namespace

TEST(QuitTest, AWindowCanRefuse) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(RefuseOnce(), ::testing::ExitedWithCode(0), "");
}
