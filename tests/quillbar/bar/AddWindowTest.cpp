// The Add Bookmark window beside the bar, in this process.

#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <thread>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/interface/text/TextControl.h"
#include "quillbar/addbookmark/BookmarkWindow.h"
#include "quillbar/bar/MainWindow.h"
#include "quillbar/base/Settings.h"
#include "tests/quillbar/RunningApplication.h"
#include "tests/support/Bookmarks.h"
#include "tests/support/Desk.h"
#include "tests/support/RecordedApps.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Wait.h"

namespace fs = std::filesystem;
using test::WaitUntil;

namespace {

BView* ViewNamed(BView& top, std::string_view name) {
    if (top.Name() == name)
        return &top;
    for (int32 i = 0; i < top.CountChildren(); ++i) {
        if (BView* view = ViewNamed(*top.ChildAt(i), name))
            return view;
    }
    return nullptr;
}

class AddWindowTest : public testing::Test {
protected:
    void SetUp() override {
        fs::remove_all(Root());
        fApps.InstallBrowser();
        gSettings = new QBSettings(BPath("/boot/home/config/settings/Quillbar.settings"));
    }
    void TearDown() override {
        if (fWindow && fWindow->Lock())
            fWindow->Quit();
        delete gSettings;
        gSettings = nullptr;
    }

    static fs::path Root() { return RunApplication().Config() / "Quillbar"; }
    static bool IsOpen() { return QBBookmarkWindow::fMsgWindow.Get().IsValid(); }

    void Show() {
        fWindow = new QBMainWindow(BRect(200, 150, 0, 0));
        fWindow->Show();
    }
    static void SendToIt(uint32 what) { QBBookmarkWindow::fMsgWindow.Get().SendMessage(what); }
    static std::string Url() {
        const BMessenger target = QBBookmarkWindow::fMsgWindow.Get();
        BLooper* looper = nullptr;
        if (!target.LockTarget() || !target.Target(&looper))
            return "the window is gone";
        BView& top = *static_cast<QBBookmarkWindow*>(looper)->ChildAt(0);
        std::string url = dynamic_cast<BTextControl&>(*ViewNamed(top, "qb_editinfo_url")).Text();
        looper->Unlock();
        return url;
    }

    test::RecordedApps fApps{RunApplication()};
    QBMainWindow* fWindow = nullptr;
};

// A menu that is open still offers what has gone meanwhile: this is what its item sends.
TEST_F(AddWindowTest, ASlotThatWasEmptiedUnderItsOpenMenuLaunchesNothing) {
    test::MakeBookmark(Root() / "2 - News" / "7 - Paper", "http://paper");
    Show();
    for (const int32 slot : {5, 8}) {
        BMessage choice(QBFolder[2]);
        choice.AddInt32("slot", slot);
        fWindow->PostMessage(&choice);
    }
    EXPECT_EQ(fApps.WaitForLaunches(1),
              (std::vector<test::RecordedApps::Launch>{{"browser", {"http://paper"}}}));
}

// The bar tells the window of each change while the window comes and goes, and one that is sent a
// dropped link may be closing.
TEST_F(AddWindowTest, ADroppedLinkFindsAWindowInAStorm) {
    const fs::path file = Root() / "2 - News" / "7 - Paper";
    test::MakeBookmark(file, "http://paper", "daily");
    Show();
    std::atomic<bool> ended = false;
    std::thread storm([&] {
        for (int i = 0; !ended; ++i) {
            test::SetUrl(file, "http://" + std::to_string(i));
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    bool isThere = true;
    for (int i = 0; i < 300 && isThere; ++i) {
        const std::string url = "http://" + std::to_string(i) + "/";
        BMessage link(B_MIME_DATA);
        link.AddString("be:url", url.c_str());
        link.AddString("be:clip_name", "Name");
        link.SetWasDropped(true);
        fWindow->PostMessage(&link);
        isThere = WaitUntil([&] { return Url() == url; });
        EXPECT_TRUE(isThere) << url;
        SendToIt(B_QUIT_REQUESTED);
    }
    ended = true;
    storm.join();
    // The bar may go while the window is there.
    EXPECT_TRUE(WaitUntil([] { return !IsOpen(); }));
    fWindow->PostMessage(kQBAddBookmark);
    EXPECT_TRUE(WaitUntil(IsOpen));
}

} // namespace
