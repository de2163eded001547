// The helper's threads, against windows and texts that come and go.

#include <gtest/gtest.h>
#include <thread>

#include "kits/app/Application.h"
#include "kits/interface/window/View.h"
#include "kits/interface/window/Window.h"
#include "quillbar/bubbles/BubbleHelper.h"
#include "tests/quillbar/RunningApplication.h"
#include "tests/support/Desk.h"
#include "tests/support/Wait.h"

using test::WaitUntil;

namespace {

// A window at (400, 300) with a view in it.
class BubbleHelperTest : public testing::Test {
protected:
    BubbleHelperTest()
        : window(new BWindow(BRect(400, 300, 599, 399), "Views", B_TITLED_WINDOW_LOOK,
                             B_NORMAL_WINDOW_FEEL, 0))
        , view(new BView(BRect(10, 10, 49, 49), "view", B_FOLLOW_NONE, 0)) {
        window->AddChild(view);
        window->Show();
    }
    ~BubbleHelperTest() override {
        if (window->Lock())
            window->Quit();
    }

    const test::TemporaryHome& home = RunApplication();
    test::Desk& desk = test::Desk::Shared();
    BWindow* window;
    BView* view;
};

// Its waits for a lock end at once, so the texts are not its to look at.
TEST_F(BubbleHelperTest, AThreadThatIsAskedToStopLeavesTheTextsAloneWhileTheyChange) {
    struct Reader {
        BView* view;
        BubbleHelper helper{};
        std::atomic<bool> isRefused = false, isDone = false;
    } reader{view};
    reader.helper.SetHelp(view, "some help");
    const auto read = [](void* data) -> status_t {
        auto& self = *static_cast<Reader*>(data);
        self.isRefused = WaitUntil([&] { return self.helper.GetHelp(self.view) == nullptr; });
        self.isDone = true;
        return B_OK;
    };
    const thread_id thread = spawn_thread(read, "reader", B_NORMAL_PRIORITY, &reader);
    resume_thread(thread);
    ask_thread_to_stop(thread);
    BView other(BRect(), "other", B_FOLLOW_NONE, 0);
    const std::string longText(32 << 20, 'x'); // is copied with the lock held
    while (!reader.isDone)
        reader.helper.SetHelp(&other, longText.c_str());
    wait_for_thread(thread, nullptr);
    EXPECT_TRUE(reader.isRefused);
}

// At any moment: before the bubble's window is made, while it is, while a bubble is up.
TEST_F(BubbleHelperTest, CanBeDestroyedHundredsOfTimesWithABubbleUp) {
    desk.MoveTo(415, 315);
    const auto countWindows = [] {
        int32 count = 0;
        while (BApplication::WindowAt(count).IsTargetLocal())
            count++;
        return count;
    };
    ASSERT_TRUE(WaitUntil([&] { return countWindows() == 1; }));
    for (int round = 0; round < 300; round++) {
        BubbleHelper helper(50);
        helper.SetHelp(view, "some help");
        if (round % 4 == 0)
            continue;
        while (countWindows() == 1)
            std::this_thread::yield();
        helper.DisplayHelp("some other help", BPoint(round, round));
    }
    EXPECT_TRUE(WaitUntil([&] { return countWindows() == 1 && desk.Shown("TOOLTIP").empty(); }));
}

} // namespace
