// The helper beside real windows: its texts, when a bubble comes and goes, and where.

#include <chrono>
#include <gtest/gtest.h>
#include <thread>

#include "kits/app/Application.h"
#include "kits/interface/window/View.h"
#include "kits/interface/window/Window.h"
#include "quillbar/bubbles/BubbleHelper.h"
#include "tests/quillbar/RunningApplication.h"
#include "tests/support/Desk.h"
#include "tests/support/Peer.h"
#include "tests/support/Wait.h"

using namespace std::chrono_literals;
using test::Box;
using test::WaitUntil;

namespace {

constexpr bigtime_t kQuickCycle = 5'000;
constexpr auto kCycleTime = 5ms;

// A window at (400, 300) with two views that overlap.
class BubbleHelperTest : public testing::Test {
protected:
    BubbleHelperTest()
        : window(new BWindow(BRect(400, 300, 599, 399), "Views", B_TITLED_WINDOW_LOOK,
                             B_NORMAL_WINDOW_FEEL, 0))
        , lower(new BView(BRect(10, 10, 49, 49), "lower", B_FOLLOW_NONE, 0))
        , upper(new BView(BRect(30, 10, 69, 49), "upper", B_FOLLOW_NONE, 0)) {
        desk.MoveTo(1000, 800);
        watch.Watch(desk.Root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
        window->AddChild(lower);
        window->AddChild(upper);
        window->Show();
        EXPECT_TRUE(WaitUntil([&] { return desk.Describe(desk.ActiveWindow()).title == "Views"; }));
    }
    ~BubbleHelperTest() override {
        if (window->Lock())
            window->Quit();
    }

    // Waits until the bubble appears or disappears; no event is missed on a busy machine.
    template <typename Event>
    bool Await(uint8_t type, std::chrono::milliseconds deadline = test::kDeadline) {
        const auto isBubble = [this](const Event& event) {
            return desk.Describe(event.window).HasType("_NET_WM_WINDOW_TYPE_TOOLTIP");
        };
        return watch.Await<Event>(type, isBubble, deadline) != nullptr;
    }
    bool StaysAway() { return !Await<xcb_map_notify_event_t>(XCB_MAP_NOTIFY, 20 * kCycleTime); }
    // The content of a bubble that is shown with the pointer at that place.
    Box Displayed(BubbleHelper& helper, int x, int y) {
        std::vector<test::WindowInfo> shown;
        // The bubble's window may not be made yet.
        EXPECT_TRUE(WaitUntil([&] {
            helper.DisplayHelp("some help", BPoint(x, y));
            shown = desk.Shown("TOOLTIP");
            return !shown.empty();
        }));
        const Box outer = shown.at(0).frame;
        helper.HideBubble();
        EXPECT_TRUE(WaitUntil([&] { return desk.Shown("TOOLTIP").empty(); }));
        return {outer.x + 1, outer.y + 1, outer.width - 2, outer.height - 2};
    }
    // From the pointer's coming to the bubble's going: seven cycles and the bubble's own.
    std::chrono::steady_clock::duration TimeAt(int x, int y) {
        const auto start = std::chrono::steady_clock::now();
        desk.MoveTo(x, y);
        EXPECT_TRUE(Await<xcb_map_notify_event_t>(XCB_MAP_NOTIFY));
        EXPECT_TRUE(Await<xcb_unmap_notify_event_t>(XCB_UNMAP_NOTIFY));
        return std::chrono::steady_clock::now() - start;
    }
    const test::TemporaryHome& home = RunApplication();
    test::Desk& desk = test::Desk::Shared();
    test::Peer watch{desk};
    BWindow* window;
    BView* lower;
    BView* upper;
};

// Its waits for a lock end at once, so the texts are not its to look at.
TEST_F(BubbleHelperTest, AThreadThatIsAskedToStopLeavesTheTextsAloneWhileTheyChange) {
    struct Reader {
        BView* view;
        BubbleHelper helper{};
        std::atomic<bool> isRefused = false, isDone = false;
    } reader{upper};
    reader.helper.SetHelp(upper, "some help");
    const auto read = [](void* data) -> status_t {
        auto& self = *static_cast<Reader*>(data);
        self.isRefused = WaitUntil([&] { return self.helper.GetHelp(self.view) == nullptr; });
        self.isDone = true;
        return B_OK;
    };
    const thread_id thread = spawn_thread(read, "reader", B_NORMAL_PRIORITY, &reader);
    resume_thread(thread);
    ask_thread_to_stop(thread);
    const std::string longText(32 << 20, 'x'); // is copied with the lock held
    while (!reader.isDone)
        reader.helper.SetHelp(lower, longText.c_str());
    wait_for_thread(thread, nullptr);
    EXPECT_TRUE(reader.isRefused);
}

TEST_F(BubbleHelperTest, ComesOnceForAPlaceWhileHelpIsWantedAndStaysAsLongAsItsText) {
    BubbleHelper helper(kQuickCycle);
    helper.SetHelp(lower, "short");
    helper.SetHelp(upper, std::string(160, 'i').c_str());
    const auto shortTime = TimeAt(415, 315);
    EXPECT_GE(shortTime, (7 + 21) * kCycleTime);
    EXPECT_LT(shortTime, (7 + 161) * kCycleTime);
    EXPECT_TRUE(StaysAway());
    EXPECT_GE(TimeAt(435, 315), (7 + 161) * kCycleTime) << "it covers the other one";
    helper.SetHelp(upper, nullptr);
    desk.MoveTo(436, 315);
    EXPECT_TRUE(StaysAway());
    helper.EnableHelp(false);
    desk.MoveTo(415, 315);
    EXPECT_TRUE(StaysAway());
}

TEST_F(BubbleHelperTest, StandsInsideThePointersMonitor) {
    BubbleHelper helper(kQuickCycle);
    const Box plain = Displayed(helper, 100, 100);
    EXPECT_EQ((Box{plain.x, plain.y, 0, 0}), (Box{100, 120, 0, 0}));
    const int w = plain.width - 1, h = plain.height - 1;
    EXPECT_EQ(Displayed(helper, 1270, 100), (Box{1279 - w, 120, w + 1, h + 1}));
    // Three pixels at the bottom are kept free.
    EXPECT_EQ(Displayed(helper, 10, 896 - 20 - h).y, 896 - h);
    EXPECT_EQ(Displayed(helper, 10, 897 - 20 - h).y, 897 - 20 - h - h - 4);

    desk.SetMonitors({{0, 0, 800, 900}, {800, 0, 480, 500}});
    EXPECT_TRUE(WaitUntil([&] { return Displayed(helper, 790, 100).x == 799 - w; }));
    EXPECT_EQ(Displayed(helper, 1270, 495), (Box{1279 - w, 491 - h, w + 1, h + 1}));
    EXPECT_EQ(Displayed(helper, 10, 495).y, 515);
    desk.SetMonitors({desk.Frame()});
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
        helper.SetHelp(lower, "some help");
        if (round % 4 == 0)
            continue;
        while (countWindows() == 1)
            std::this_thread::yield();
        helper.DisplayHelp("some other help", BPoint(round, round));
    }
    EXPECT_TRUE(WaitUntil([&] { return countWindows() == 1 && desk.Shown("TOOLTIP").empty(); }));
}

} // namespace
