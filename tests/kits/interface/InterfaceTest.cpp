#include "tests/kits/interface/InterfaceTest.h"

#include <algorithm>
#include <atomic>
#include <unistd.h>

#include "host/x11/Display.h"
#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/app/MessageFilter.h"

namespace {

test::PrivateDesktop& ConnectedDesktop() {
    test::PrivateDesktop& desktop = test::PrivateDesktop::Shared();
    if (host::Display::Shared() == nullptr && connect_display() != B_OK)
        ADD_FAILURE() << "no display";
    return desktop;
}

const char* TransitName(uint32 transit) {
    switch (transit) {
    case B_ENTERED_VIEW:
        return "entered";
    case B_INSIDE_VIEW:
        return "inside";
    case B_EXITED_VIEW:
        return "exited";
    default:
        return "outside";
    }
}

class ReleaseCounter : public BMessageFilter {
public:
    explicit ReleaseCounter(std::atomic<int>& count)
        : BMessageFilter(B_MOUSE_UP)
        , fCount(count) {}

    filter_result Filter(BMessage*, BHandler**) override {
        fCount++;
        return B_DISPATCH_MESSAGE;
    }

private:
    std::atomic<int>& fCount;
};

} // namespace

RecordingView::RecordingView(BRect frame, const char* name, rgb_color color)
    : BView(frame, name, B_FOLLOW_NONE, B_WILL_DRAW) {
    SetViewColor(color);
}

void RecordingView::Draw(BRect updateRect) {
    draws.push_back(updateRect);
    if (onDraw)
        onDraw(*this);
}

void RecordingView::MouseDown(BPoint where) {
    events.push_back("down");
    lastWhere = where;
    if (mask != 0)
        SetMouseEventMask(mask);
    if (onMouseDown)
        onMouseDown(*this);
}

void RecordingView::MouseUp(BPoint where) {
    events.push_back("up");
    lastWhere = where;
}

void RecordingView::MouseMoved(BPoint where, uint32 transit, const BMessage*) {
    events.push_back(TransitName(transit));
    lastWhere = where;
}

int RecordingView::CountOf(const std::string& event) const {
    return static_cast<int>(std::count(events.begin(), events.end(), event));
}

RecordingWindow::RecordingWindow(BRect frame, window_look look, uint32 flags)
    : BWindow(frame, "Recording", look, B_NORMAL_WINDOW_FEEL, flags) {}

void RecordingWindow::MessageReceived(BMessage* message) {
    received.push_back(message->what);
    if (onMessage)
        onMessage(*message);
    BWindow::MessageReceived(message);
}

std::vector<test::WindowInfo> ShownWindows(const test::Screen& screen) {
    return screen.Windows(
        [](const test::WindowInfo& info) { return info.viewable && info.pid == getpid(); });
}

// The pointer starts each test in a corner without windows.
InterfaceTest::InterfaceTest()
    : desktop(ConnectedDesktop())
    , robot(desktop)
    , screen(desktop) {
    robot.MoveTo(1270, 890);
}

InterfaceTest::~InterfaceTest() {
    for (const BMessenger& messenger : fWindows) {
        if (!messenger.LockTarget())
            continue;
        BLooper* looper = nullptr;
        messenger.Target(&looper);
        looper->Quit();
    }
}

void InterfaceTest::Show(BWindow* window) {
    fWindows.emplace_back(window);
    window->AddCommonFilter(new ReleaseCounter(fReleases));
    const size_t before = ShownWindows(screen).size();
    window->Show();
    EXPECT_TRUE(test::WaitUntil([&] { return ShownWindows(screen).size() > before; }));
    Settle(window);
}

bool InterfaceTest::Settle(BWindow* window) {
    std::atomic<bool> seen = false;
    static constexpr uint32 kMarker = 'mark';
    class Marker : public BHandler {
    public:
        explicit Marker(std::atomic<bool>& flag)
            : fFlag(flag) {}
        void MessageReceived(BMessage*) override { fFlag = true; }

    private:
        std::atomic<bool>& fFlag;
    } marker(seen);
    WithLock(window, [&] { window->AddHandler(&marker); });
    BMessenger(&marker).SendMessage(kMarker);
    const bool settled = test::WaitUntil([&] { return seen.load(); });
    WithLock(window, [&] { window->RemoveHandler(&marker); });
    return settled;
}

void InterfaceTest::WithLock(BWindow* window, const std::function<void()>& action) {
    ASSERT_TRUE(window->Lock());
    action();
    window->Unlock();
}

bool InterfaceTest::WaitFor(BWindow* window, const std::function<bool()>& holds) {
    return test::WaitUntil([&] {
        bool result = false;
        WithLock(window, [&] { result = holds(); });
        return result;
    });
}

BPoint InterfaceTest::OnScreen(BView* view, BPoint where) {
    BPoint place;
    WithLock(view->Window(), [&] { place = view->ConvertToScreen(where); });
    return place;
}

void InterfaceTest::MoveOver(BView* view, BPoint where) {
    BPoint place = OnScreen(view, where);
    robot.MoveTo(static_cast<int>(place.x), static_cast<int>(place.y));
}

// The window manager holds a press back for a moment; the server gives what is held back the place
// where the pointer is by then, so it must not move on before the click has arrived.
void InterfaceTest::ClickAt(BView* view, BPoint where, int button) {
    BPoint place = OnScreen(view, where);
    const int before = fReleases;
    robot.Click(static_cast<int>(place.x), static_cast<int>(place.y), button);
    EXPECT_TRUE(test::WaitUntil([&] { return fReleases > before; }));
}

uint32_t InterfaceTest::PixelAt(BView* view, BPoint where) {
    BPoint place = OnScreen(view, where);
    return screen.Pixel(static_cast<int>(place.x), static_cast<int>(place.y));
}

bool InterfaceTest::WaitForPixel(BView* view, BPoint where, uint32_t color) {
    return test::WaitUntil([&] { return PixelAt(view, where) == color; });
}
