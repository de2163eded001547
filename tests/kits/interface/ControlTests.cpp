#include "tests/kits/interface/InterfaceTest.h"

#include "kits/app/Message.h"
#include "kits/interface/Button.h"

namespace {

constexpr uint32 kPressed = 'prss';

class ButtonTest : public InterfaceTest {
protected:
    ButtonTest()
        : window(new RecordingWindow(BRect(50, 50, 249, 149)))
        , button(new BButton(BRect(10, 10, 89, 39), "button", "Press", new BMessage(kPressed)))
        , other(new BButton(BRect(100, 10, 179, 39), "other", "Other", new BMessage('othr'))) {
        auto* panel = new BView(window->Bounds(), "panel", B_FOLLOW_ALL, B_WILL_DRAW);
        panel->SetViewColor(216, 216, 216);
        panel->AddChild(button);
        panel->AddChild(other);
        window->AddChild(panel);
        window->onMessage = [this](BMessage& message) {
            void* source = nullptr;
            message.FindPointer("source", &source);
            if (source == static_cast<BControl*>(button) && message.HasInt64("when"))
                fromButton++;
        };
        Show(window);
    }

    bool IsPressed() { return button->Value() == B_CONTROL_ON; }
    int Count(uint32 what) {
        int count = 0;
        WithLock(window, [&] {
            count = static_cast<int>(
                std::count(window->received.begin(), window->received.end(), what));
        });
        return count;
    }
    // Input of the first button has been handled once that of the second has.
    void PassInput() {
        const int before = Count('othr');
        ClickAt(other, BPoint(20, 20));
        EXPECT_TRUE(test::WaitUntil([&] { return Count('othr') == before + 1; }));
    }

    RecordingWindow* const window;
    BButton* const button;
    BButton* const other;
    int fromButton = 0;
};

} // namespace

TEST_F(ButtonTest, IsInvokedOnceByAClickWhileEnabled) {
    ClickAt(button, BPoint(20, 15));
    PassInput();
    EXPECT_EQ(Count(kPressed), 1);
    EXPECT_EQ(fromButton, 1);
    ClickAt(button, BPoint(20, 15), 3);
    WithLock(window, [&] { button->SetEnabled(false); });
    ClickAt(button, BPoint(20, 15));
    PassInput();
    EXPECT_EQ(Count(kPressed), 1);
}

TEST_F(ButtonTest, LooksPressedWhileThePointerIsOverIt) {
    const uint32_t idle = PixelAt(button, BPoint(8, 8));
    MoveOver(button, BPoint(20, 15));
    robot.Press();
    EXPECT_TRUE(WaitFor(window, [&] { return IsPressed(); }));
    EXPECT_TRUE(test::WaitUntil([&] { return PixelAt(button, BPoint(8, 8)) != idle; }));
    MoveOver(window->ChildAt(0), BPoint(20, 80));
    EXPECT_TRUE(WaitFor(window, [&] { return !IsPressed(); }));
    EXPECT_TRUE(WaitForPixel(button, BPoint(8, 8), idle));
    MoveOver(button, BPoint(22, 15));
    EXPECT_TRUE(WaitFor(window, [&] { return IsPressed(); }));
    MoveOver(other, BPoint(20, 15));
    robot.Release();
    PassInput();
    EXPECT_EQ(Count(kPressed), 0) << "released outside";
    EXPECT_EQ(Count('othr'), 1) << "another button was not pressed";
}
