#include <X11/keysym.h>

#include <gtest/gtest.h>

#include "tests/host/x11/EventLog.h"
#include "tests/support/InputServer.h"

namespace host {
namespace {

using test::Desk;
using test::InputServer;
using test::WaitUntil;

class InputMethodTest : public testing::Test {
protected:
    InputMethodTest() {
        setenv("XMODIFIERS", "@im=testim", 1);
        fServer = std::make_unique<InputServer>(fDesk);
        fDisplay = std::make_unique<TestDisplay>(fDesk);
        fWindow = fDisplay->Create(NormalSpec({100, 100, 300, 300}));
        fWindow.events->OnEvent([this](const WindowEvent& event) { Record(event); });
        fWindow->Show();
        EXPECT_TRUE(WaitUntil([&] { return fDisplay->IsShown(fWindow); }));
        fWindow->Activate();
        EXPECT_TRUE(WaitUntil([&] { return fWindow.events->Last<FocusChanged>().active; }));
    }
    ~InputMethodTest() override { unsetenv("XMODIFIERS"); }

    void FocusField() {
        fWindow->SetTextCaret(PixelRect{20, 30, 21, 50});
        AwaitContext(1);
    }
    void AwaitContext(int count) {
        EXPECT_TRUE(WaitUntil([&] { return fServer->focuses == count; }));
    }

    // What the keys typed, one after the other; text that came without a key in brackets, releases
    // of keys that print as upper-case letters.
    void Record(const WindowEvent& event) {
        std::lock_guard lock(fLock);
        if (auto* key = std::get_if<KeyChanged>(&event)) {
            for (char byte : key->text)
                fTyped += key->down ? byte : static_cast<char>(std::toupper(byte));
        } else if (auto* text = std::get_if<TextCommitted>(&event)) {
            fTyped += '[' + text->text + ']';
        }
    }
    void ExpectTyped(const std::string& expected) {
        WaitUntil([&] {
            std::lock_guard lock(fLock);
            return fTyped.size() >= expected.size();
        });
        fDisplay->AwaitEvents();
        std::lock_guard lock(fLock);
        EXPECT_EQ(std::exchange(fTyped, {}), expected);
    }
    void Type(const std::string& letters) {
        for (char letter : letters)
            fDesk.Key(static_cast<uint32_t>(letter));
    }

    Desk& fDesk = Desk::Shared();
    std::mutex fLock;
    std::string fTyped;
    std::unique_ptr<InputServer> fServer;
    std::unique_ptr<TestDisplay> fDisplay;
    TestWindow fWindow;
};

TEST_F(InputMethodTest, TakesOnlyTheKeysOfATextField) {
    Type("ab");
    ExpectTyped("aAbB");
    EXPECT_EQ(fServer->focuses, 0);

    FocusField();
    EXPECT_TRUE(WaitUntil([&] { return fServer->spot == (20u << 16 | 50u); }));
    Type("bacaadb");
    ExpectTyped("bB[日本é]cC[日本é][日本é]dDbB");
    fDesk.Key(XK_Tab);
    fDesk.KeyDown(XK_Control_L);
    Type("c");
    fDesk.KeyUp(XK_Control_L);
    fDesk.Key(XK_Escape);
    ExpectTyped("\t\tcC\x1b\x1b");
    fWindow->SetTextCaret(PixelRect{120, 30, 121, 50});
    EXPECT_TRUE(WaitUntil([&] { return fServer->spot == (120u << 16 | 50u); }));

    int seen = fServer->keys;
    fWindow->SetTextCaret(std::nullopt);
    fDisplay->AwaitEvents();
    Type("ab");
    ExpectTyped("aAbB");
    EXPECT_EQ(fServer->keys, seen);

    // From one field to the next, typing on at once.
    for (int context : {2, 3}) {
        fWindow->SetTextCaret(std::nullopt);
        fWindow->SetTextCaret(PixelRect{20, 60, 21, 80});
        fDisplay->AwaitEvents();
        Type("a");
        AwaitContext(context);
        fWindow->SetTextCaret(PixelRect{30, 60, 31, 80});
        Type("b");
        ExpectTyped("[日本é]bB");
    }
}

TEST_F(InputMethodTest, KeysGoOnWithoutAServerThatAnswers) {
    FocusField();
    fServer->Pause();
    Type("bab");
    ExpectTyped("bBaAbB");
    Type("a");
    ExpectTyped("aA");
    fServer->Resume();
    AwaitContext(2);
    Type("ab");
    ExpectTyped("[日本é]bB");

    fServer->Pause();
    Type("ba");
    fDisplay->AwaitEvents();
    fServer.reset();
    ExpectTyped("bBaA");
    Type("a");
    ExpectTyped("aA");

    fServer = std::make_unique<InputServer>(fDesk);
    AwaitContext(1);
    Type("ba");
    ExpectTyped("bB[日本é]");
}

TEST_F(InputMethodTest, IsGivenUpAfterThreeFailures) {
    FocusField();
    for (int failure = 1; failure <= 3; failure++) {
        fServer->Pause();
        Type("a");
        ExpectTyped("aA");
        fServer->Resume();
        if (failure < 3)
            AwaitContext(failure + 1);
    }
    fWindow->SetTextCaret(std::nullopt);
    fWindow->SetTextCaret(PixelRect{20, 30, 21, 50});
    Type("a");
    ExpectTyped("aA");
    EXPECT_EQ(fServer->focuses, 3);
}

} // namespace
} // namespace host
