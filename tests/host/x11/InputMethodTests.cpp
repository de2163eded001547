#include "tests/host/x11/X11Test.h"
#include "tests/support/InputServer.h"

namespace host {
namespace {

class InputMethodTest : public testing::Test {
protected:
    InputMethodTest() {
        MoveCaret(20);
        window->Activate();
        EXPECT_TRUE(window.BecomesActive());
    }
    ~InputMethodTest() override { unsetenv("XMODIFIERS"); }

    // A text field has the focus, or none.
    void MoveCaret(int x) { window->SetTextCaret(PixelRect{x, 30, x + 1, 50}); }
    void LeaveField() { window->SetTextCaret(std::nullopt); }
    void AwaitContext(int count) {
        EXPECT_TRUE(WaitUntil([&] { return server->focuses == count; }));
    }
    void Type(const std::string& letters) {
        for (char letter : letters)
            desk.Key(static_cast<uint32_t>(letter));
    }

    // What the keys typed, one after the other; text that came without a key in brackets, releases
    // of keys as upper-case letters.
    std::string Typed() const {
        std::string typed;
        for (const WindowEvent& event : window.events->All()) {
            if (auto* key = std::get_if<KeyChanged>(&event)) {
                for (char byte : key->text)
                    typed += key->down ? byte : static_cast<char>(std::toupper(byte));
            } else if (auto* text = std::get_if<TextCommitted>(&event)) {
                typed += '[' + text->text + ']';
            }
        }
        return typed;
    }
    void ExpectTyped(const std::string& letters, const std::string& expected) {
        Type(letters);
        ExpectTyped(expected);
    }
    void ExpectTyped(const std::string& expected) {
        WaitUntil([&] { return Typed().size() >= expected.size(); });
        display.AwaitEvents();
        EXPECT_EQ(Typed(), expected);
        window.events->Take();
    }

    const int named = setenv("XMODIFIERS", "@im=testim", 1);
    Desk& desk = Desk::Shared();
    TestDisplay display{desk};
    std::unique_ptr<test::InputServer> server = std::make_unique<test::InputServer>(desk);
    TestWindow window = display.CreateShown({.frame = {100, 100, 300, 300}});
};

TEST_F(InputMethodTest, TakesOnlyTheKeysOfATextFieldInTheirOrder) {
    AwaitContext(1);
    EXPECT_EQ(server->spot, 20u << 16 | 50u);
    ExpectTyped("bacaadb", "bB[日本é]cC[日本é][日本é]dDbB");
    LeaveField();
    ExpectTyped("ab", "aAbB");
    // In the next field, typing on at once.
    MoveCaret(120);
    display.AwaitEvents();
    Type("a");
    AwaitContext(2);
    EXPECT_EQ(server->spot, 120u << 16 | 50u);
    ExpectTyped("[日本é]");
}

TEST_F(InputMethodTest, KeysGoOnWithoutAServerThatAnswers) {
    AwaitContext(1);
    server->Pause();
    ExpectTyped("bab", "bBaAbB");
    server->Resume();
    AwaitContext(2);
    ExpectTyped("ab", "[日本é]bB");

    server->Pause();
    Type("ba");
    display.AwaitEvents();
    server.reset();
    ExpectTyped("bBaA");

    server = std::make_unique<test::InputServer>(desk);
    AwaitContext(1);
    ExpectTyped("ba", "bB[日本é]");
}

TEST_F(InputMethodTest, IsGivenUpAfterThreeFailures) {
    for (int failure = 1; failure <= 3; failure++) {
        AwaitContext(failure);
        server->Pause();
        ExpectTyped("a", "aA");
        server->Resume();
    }
    LeaveField();
    MoveCaret(20);
    ExpectTyped("a", "aA");
    EXPECT_EQ(server->focuses, 3);
}

} // namespace
} // namespace host
