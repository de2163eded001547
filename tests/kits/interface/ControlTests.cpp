#include "tests/kits/interface/InterfaceTest.h"

#include "kits/app/Message.h"
#include "kits/interface/controls/Button.h"

namespace {

constexpr uint32 kPressed = 'prss';

class ButtonTest : public InterfaceTest {
protected:
    ButtonTest() {
        window->AddChild(button);
        window->AddChild(other);
        Show(window);
    }

    bool IsPressed() { return button->Value() == B_CONTROL_ON; }
    // Of the first button. Its input has been handled once that of the second has.
    int64_t Pressed() {
        const auto count = [&](uint32 what) { return std::ranges::count(window->received, what); };
        int64_t before = 0;
        WithLock(window, [&] { before = count('othr'); });
        ClickAt(other, BPoint(20, 20));
        EXPECT_TRUE(WaitFor(window, [&] { return count('othr') == before + 1; }));
        int64_t pressed = 0;
        WithLock(window, [&] { pressed = count(kPressed); });
        return pressed;
    }

    RecordingWindow* const window = new RecordingWindow(BRect(50, 50, 249, 149));
    BButton* const button =
        new BButton(BRect(10, 10, 89, 39), "button", "Press", new BMessage(kPressed));
    BButton* const other =
        new BButton(BRect(100, 10, 179, 39), "other", "Other", new BMessage('othr'));
};

} // namespace

TEST_F(ButtonTest, IsInvokedOnceByAClickWhileEnabled) {
    ClickAt(button, BPoint(20, 15));
    EXPECT_EQ(Pressed(), 1);
    ClickAt(button, BPoint(20, 15), 3);
    WithLock(window, [&] { button->SetEnabled(false); });
    ClickAt(button, BPoint(20, 15));
    EXPECT_EQ(Pressed(), 1);
}

TEST_F(ButtonTest, LooksPressedWhileThePointerIsOverIt) {
    const uint32_t idle = PixelAt(button, BPoint(8, 8));
    MoveOver(button, BPoint(20, 15));
    robot.Press();
    EXPECT_TRUE(WaitFor(window, [&] { return IsPressed(); }));
    EXPECT_TRUE(test::WaitUntil([&] { return PixelAt(button, BPoint(8, 8)) != idle; }));
    MoveOver(other, BPoint(20, 15));
    EXPECT_TRUE(WaitFor(window, [&] { return !IsPressed(); }));
    EXPECT_TRUE(WaitForPixel(button, BPoint(8, 8), idle));
    robot.Release();
    EXPECT_EQ(Pressed(), 0) << "released outside, over a button that was not pressed";
}
