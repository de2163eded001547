#include "tests/kits/interface/InterfaceTest.h"

#include <cstdlib>

#include "kits/app/AppDefs.h"
#include "kits/app/Application.h"
#include "kits/interface/Alert.h"
#include "tests/support/TemporaryHome.h"

// Each in a process of its own, as a program of its own: it has one application object and ends.
namespace {

class Program {
public:
    explicit Program(const std::function<void(Program&)>& onceShown)
        : screen(desktop)
        , fApplication(new BApplication("application/x-Orvel.QuitTest")) {
        if (connect_display() != B_OK)
            _exit(10);
        bar = new BWindow(BRect(20, 20, 119, 49), "bar", B_BORDERED_WINDOW_LOOK,
                          B_NORMAL_WINDOW_FEEL, B_NOT_CLOSABLE);
        bar->Show();
        if (!test::WaitUntil([this] { return Shown().size() == 1; }))
            _exit(11);
        onceShown(*this);
        fApplication->Run();
        status = fApplication->ExitStatus();
        delete fApplication;
        if (!Shown().empty())
            status = 12;
    }

    std::vector<test::WindowInfo> Shown() {
        if (isDesktopGone)
            return {};
        return ShownWindows(screen);
    }

    test::TemporaryHome home;
    test::PrivateDesktop desktop{test::PrivateDesktop::Options{}};
    test::Screen screen;
    BWindow* bar = nullptr;
    bool isDesktopGone = false;
    int status = 0;

private:
    BApplication* const fApplication;
};

int RunProgram(const std::function<void(Program&)>& onceShown) {
    Program program(onceShown);
    return program.status;
}

// Waits for an alert on its own thread.
class AskingWindow : public BWindow {
public:
    AskingWindow()
        : BWindow(BRect(300, 300, 399, 349), "asking", B_TITLED_WINDOW, 0) {}

    void MessageReceived(BMessage*) override { answer = (new BAlert("", "Question", "OK"))->Go(); }
    bool QuitRequested() override { return answer == -1; }

    int32 answer = 5;
};

void CloseBarWhileAlertIsOpen() {
    std::exit(RunProgram([](Program& program) {
        auto* asking = new AskingWindow;
        asking->Show();
        asking->PostMessage('askq');
        if (!test::WaitUntil([&] { return program.Shown().size() == 3; }))
            _exit(13);
        for (const test::WindowInfo& window : program.Shown()) {
            if (window.title == "bar")
                program.screen.Close(window.id);
        }
    }));
}

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

void RefuseOnce() {
    const int status = RunProgram([](Program&) {
        (new RefusingWindow)->Show();
        be_app_messenger.SendMessage(B_QUIT_REQUESTED);
    });
    std::exit(RefusingWindow::sAsked == 2 ? status : 14);
}

void LoseDisplay() {
    std::exit(RunProgram([](Program& program) {
        program.isDesktopGone = true;
        program.desktop.KillServer();
    }));
}

class QuitTest : public ::testing::Test {
protected:
    QuitTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

} // namespace

TEST_F(QuitTest, TheBarsCloseEndsTheProgramWhateverWaits) {
    EXPECT_EXIT(CloseBarWhileAlertIsOpen(), ::testing::ExitedWithCode(0), "");
}

TEST_F(QuitTest, AWindowCanRefuse) {
    EXPECT_EXIT(RefuseOnce(), ::testing::ExitedWithCode(0), "");
}

TEST_F(QuitTest, ALostDisplayEndsTheProgramWithOne) {
    EXPECT_EXIT(LoseDisplay(), ::testing::ExitedWithCode(1), "");
}
