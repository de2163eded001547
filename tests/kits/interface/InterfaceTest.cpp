#include "tests/kits/interface/InterfaceTest.h"

#include <algorithm>
#include <unistd.h>

#include "host/x11/Display.h"
#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"

namespace {

constexpr uint32 kMarker = 'mark';

test::Desk& ConnectedDesk() {
    test::Desk& desk = test::Desk::Shared();
    if (host::Display::Shared() == nullptr && connect_display() != B_OK)
        ADD_FAILURE() << "no display";
    return desk;
}

} // namespace

RecordingView::RecordingView(BRect frame, rgb_color color)
    : BView(frame, "recording", B_FOLLOW_NONE, B_WILL_DRAW) {
    SetViewColor(color);
}

void RecordingView::Draw(BRect updateRect) {
    draws.push_back(updateRect);
    if (onDraw)
        onDraw(*this);
}

void RecordingView::MouseMoved(BPoint where, uint32, const BMessage*) {
    moves.push_back(where);
}

RecordingWindow::RecordingWindow(BRect frame, window_look look)
    : BWindow(frame, "Recording", look, B_NORMAL_WINDOW_FEEL, B_NOT_RESIZABLE) {}

void RecordingWindow::DispatchMessage(BMessage* message, BHandler* handler) {
    releases += message->what == B_MOUSE_UP;
    fMarks += message->what == kMarker;
    BWindow::DispatchMessage(message, handler);
}

void RecordingWindow::MessageReceived(BMessage* message) {
    if (message->what != kMarker)
        received.push_back(message->what);
    BWindow::MessageReceived(message);
}

bool RecordingWindow::Settle() {
    const int before = fMarks;
    PostMessage(kMarker);
    if (!test::WaitUntil([&] { return fMarks > before; }) || !Lock())
        return false;
    Unlock(); // what it invalidated has been drawn now
    return true;
}

long RecordingWindow::CountReceived(uint32 what) {
    EXPECT_TRUE(Lock());
    const long count = std::ranges::count(received, what);
    Unlock();
    return count;
}

InterfaceTest::InterfaceTest()
    : desk(ConnectedDesk()) {
    desk.MoveTo(1270, 890);
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

void InterfaceTest::Show(RecordingWindow* window) {
    fWindows.emplace_back(window);
    const size_t before = ShownWindows().size();
    window->Show();
    EXPECT_TRUE(test::WaitUntil([&] { return ShownWindows().size() > before; }));
    window->Settle();
}

void InterfaceTest::Activate(BWindow* window) {
    WithLock(window, [&] { window->Activate(); });
    EXPECT_TRUE(WaitFor(window, [&] { return window->IsActive(); }));
}

std::vector<test::WindowInfo> InterfaceTest::ShownWindows() const {
    return desk.Windows(
        [](const test::WindowInfo& info) { return info.viewable && info.pid == getpid(); });
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
    const BPoint place = OnScreen(view, where);
    desk.MoveTo(static_cast<int>(place.x), static_cast<int>(place.y));
}

// The window manager holds a press back for a moment; the server gives what is held back the place
// where the pointer is by then, so it must not move on before the click has arrived.
void InterfaceTest::ClickAt(BView* view, BPoint where, int button) {
    auto& window = dynamic_cast<RecordingWindow&>(*view->Window());
    const int before = window.releases;
    MoveOver(view, where);
    desk.Press(button);
    desk.Release(button);
    EXPECT_TRUE(test::WaitUntil([&] { return window.releases > before; }));
}

uint32_t InterfaceTest::PixelAt(BView* view, BPoint where) {
    const BPoint place = OnScreen(view, where);
    return desk.Pixel(static_cast<int>(place.x), static_cast<int>(place.y));
}

bool InterfaceTest::WaitForPixel(BView* view, BPoint where, uint32_t color) {
    return test::WaitUntil([&] { return PixelAt(view, where) == color; });
}

bool InterfaceTest::WaitForMenus(size_t count) {
    return test::WaitUntil([&] { return desk.Shown("POPUP_MENU").size() == count; });
}
