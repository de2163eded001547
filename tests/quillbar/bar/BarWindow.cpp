#include "tests/quillbar/bar/BarWindow.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <future>
#include <memory>
#include <thread>

#include "kits/app/AppDefs.h"
#include "kits/app/Application.h"

namespace fs = std::filesystem;

namespace {

// Records what it is sent and never quits.
class TestApp : public BApplication {
public:
    explicit TestApp(Recorder& recorder)
        : BApplication("application/x-Orvel.QuillbarTest")
        , fRecorder(recorder) {}
    bool QuitRequested() override {
        fRecorder.Add(B_QUIT_REQUESTED);
        return false;
    }
    void MessageReceived(BMessage* message) override { fRecorder.Add(message->what); }

private:
    Recorder& fRecorder;
};

// Asks about every message; true takes it away.
class TakingFilter : public BMessageFilter {
public:
    explicit TakingFilter(std::function<bool(uint32 code)> takes)
        : BMessageFilter(B_ANY_DELIVERY, B_ANY_SOURCE)
        , fTakes(std::move(takes)) {}
    filter_result Filter(BMessage* message, BHandler**) override {
        return fTakes(message->what) ? B_SKIP_MESSAGE : B_DISPATCH_MESSAGE;
    }

private:
    const std::function<bool(uint32 code)> fTakes;
};

// Everything that there is once in a process.
struct Session {
    test::TemporaryHome home;
    test::RecordedApps apps{home};
    test::PrivateDesktop& desktop = test::PrivateDesktop::Shared();
    Recorder messages;

    Session() {
        apps.InstallBrowser();
        apps.InstallOpera();
        std::promise<status_t> connected;
        std::thread([this, &connected] {
            auto* app = new TestApp(messages);
            connected.set_value(connect_display());
            app->Run();
        }).detach();
        if (connected.get_future().get() != B_OK)
            std::abort();
    }
};

Session& TheSession() {
    static auto* session = new Session;
    return *session;
}

} // namespace

void Recorder::Add(uint32 code) {
    std::lock_guard lock(fMutex);
    fCodes.push_back(code);
}

std::vector<uint32> Recorder::Codes() const {
    std::lock_guard lock(fMutex);
    return fCodes;
}

int Recorder::Count(uint32 what) const {
    const auto codes = Codes();
    return static_cast<int>(std::count(codes.begin(), codes.end(), what));
}

void Recorder::Clear() {
    std::lock_guard lock(fMutex);
    fCodes.clear();
}

test::TemporaryHome& BarTest::Home() {
    return TheSession().home;
}

test::RecordedApps& BarTest::Apps() {
    return TheSession().apps;
}

Recorder& BarTest::AppMessages() {
    return TheSession().messages;
}

void BarTest::SetUpTestSuite() {
    TheSession();
}

void BarTest::SetUp() {
    fs::remove_all(Home().Config() / "Quillbar");
    AppMessages().Clear();
    fRobot.MoveTo(900, 700);
    gSettings = new QBSettings(BPath("/boot/home/config/settings/Quillbar.settings"));
}

void BarTest::TearDown() {
    if (fWindow && fWindow->Lock())
        fWindow->Quit();
    delete gSettings;
    gSettings = nullptr;
}

void BarTest::Show() {
    fWindow = new QBMainWindow(BRect(200, 150, 0, 0));
    fWindow->Show();
    ASSERT_TRUE(test::WaitUntil([&] { return WindowBox().width > 0; }));
    Settle();
}

void BarTest::Hold(const std::vector<uint32>& codes) {
    auto hold = [this, codes](uint32 code) {
        const bool isHeld = std::find(codes.begin(), codes.end(), code) != codes.end();
        if (isHeld)
            fHeld.Add(code);
        return isHeld;
    };
    Locked([&] { fWindow->AddCommonFilter(new TakingFilter(hold)); });
}

void BarTest::Activate() {
    Locked([&] { fWindow->Activate(true); });
    ASSERT_TRUE(test::WaitUntil([&] { return AppMessages().Count(kQBWindowActive) > 0; }));
    Settle();
}

void BarTest::Locked(const std::function<void()>& work) {
    ASSERT_TRUE(fWindow->Lock());
    work();
    fWindow->Unlock();
}

void BarTest::Send(const BMessage& message) {
    fWindow->PostMessage(&message);
    Settle();
}

void BarTest::SendKey(uint32 what, int32 key) {
    BMessage message(what);
    message.AddInt32("key", key);
    Send(message);
}

// A message that passes through the queue behind the others.
void BarTest::Settle() {
    static std::atomic<uint32> next = 'mrk\0';
    const uint32 code = next++;
    auto seen = std::make_shared<std::atomic<bool>>(false);
    auto mark = [seen, code](uint32 what) {
        *seen = *seen || what == code;
        return what == code;
    };
    Locked([&] { fWindow->AddCommonFilter(new TakingFilter(mark)); });
    fWindow->PostMessage(code);
    ASSERT_TRUE(test::WaitUntil([&] { return seen->load(); }));
    Locked([] {});
    test::PrivateDesktop::Shared().Sync();
}

BView* BarTest::View(const char* name, int index) {
    BView* parent = fWindow->ChildAt(0);
    if (std::string(name) == "qb_main_view")
        return parent;
    for (int32 i = 0; i < parent->CountChildren(); ++i) {
        BView* child = parent->ChildAt(i);
        if (std::string(child->Name()) == name && index-- == 0)
            return child;
    }
    return parent->FindView(name);
}

BRect BarTest::FrameOf(const char* name, int index) {
    BRect frame;
    Locked([&] { frame = View(name, index)->Frame(); });
    return frame;
}

test::Box BarTest::WindowBox() {
    const auto windows = fScreen.Windows([](const test::WindowInfo& window) {
        return window.title == "Quillbar" && window.viewable && !window.overrideRedirect;
    });
    if (windows.empty())
        return {};
    const test::Box whole = windows.front().frame;
    return {whole.x + 1, whole.y + 1, whole.width - 2, whole.height - 2};
}

rgb_color BarTest::PixelAt(float x, float y) {
    const uint32_t pixel = fScreen.Pixel(X(x), Y(y));
    return {static_cast<uint8>(pixel >> 16), static_cast<uint8>(pixel >> 8),
            static_cast<uint8>(pixel), 255};
}

testing::AssertionResult BarTest::PixelBecomes(float x, float y, rgb_color color) {
    color.alpha = 255;
    if (test::WaitUntil([&] { return PixelAt(x, y) == color; }))
        return testing::AssertionSuccess();
    const rgb_color seen = PixelAt(x, y);
    return testing::AssertionFailure()
           << "(" << x << ", " << y << ") is " << int(seen.red) << " " << int(seen.green) << " "
           << int(seen.blue) << " instead of " << int(color.red) << " " << int(color.green) << " "
           << int(color.blue);
}

bool BarTest::IsMarked(const char* label) {
    bool marked = false;
    Locked([&] { marked = fWindow->SettingsMenu()->FindItem(label)->IsMarked(); });
    return marked;
}

std::vector<test::WindowInfo> BarTest::Menus() {
    return fScreen.Windows([](const test::WindowInfo& window) {
        return window.viewable && window.HasType("_NET_WM_WINDOW_TYPE_POPUP_MENU");
    });
}

std::vector<test::WindowInfo> BarTest::Alerts() {
    return fScreen.Windows([](const test::WindowInfo& window) {
        return window.viewable && window.HasType("_NET_WM_WINDOW_TYPE_DIALOG");
    });
}

// Keys that come before that would not be the menu's.
bool BarTest::KeyboardIsGrabbed() {
    auto& desktop = test::PrivateDesktop::Shared();
    const auto cookie = xcb_grab_keyboard(desktop.Connection(), 0, desktop.Root(), XCB_CURRENT_TIME,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    auto* reply = xcb_grab_keyboard_reply(desktop.Connection(), cookie, nullptr);
    const bool isGrabbed = reply && reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
    free(reply);
    if (!isGrabbed)
        xcb_ungrab_keyboard(desktop.Connection(), XCB_CURRENT_TIME);
    desktop.Sync();
    return isGrabbed;
}

bool BarTest::MenuOpens() {
    return test::WaitUntil([&] { return !Menus().empty() && KeyboardIsGrabbed(); });
}

bool BarTest::MenuCloses() {
    return test::WaitUntil([&] { return Menus().empty(); });
}
