// The Add Bookmark window beside the bar, in this process.

#include <atomic>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/interface/controls/Box.h"
#include "kits/interface/controls/Button.h"
#include "kits/interface/menus/Menu.h"
#include "kits/interface/menus/MenuField.h"
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

    static BMessage Preset(int32 folder, int32 slot) {
        BMessage preset(kQBAddBookmarkHere);
        preset.AddInt32("folder", folder);
        preset.AddInt32("slot", slot);
        return preset;
    }
    void Show() {
        fWindow = new QBMainWindow(BRect(200, 150, 0, 0));
        fWindow->Show();
    }
    void Open(const BMessage& message = BMessage(kQBAddBookmark)) {
        Show();
        fWindow->PostMessage(&message);
        ASSERT_TRUE(WaitUntil(IsOpen));
    }
    static void SendToIt(uint32 what) { QBBookmarkWindow::fMsgWindow.Get().SendMessage(what); }
    static void InIt(const std::function<void(QBBookmarkWindow&)>& work) {
        const BMessenger target = QBBookmarkWindow::fMsgWindow.Get();
        ASSERT_TRUE(target.LockTarget());
        BLooper* looper = nullptr;
        target.Target(&looper);
        work(*static_cast<QBBookmarkWindow*>(looper));
        looper->Unlock();
    }
    static std::string Text(const char* name) {
        std::string text;
        InIt([&](QBBookmarkWindow& window) {
            text = dynamic_cast<BTextControl&>(*ViewNamed(*window.ChildAt(0), name)).Text();
        });
        return text;
    }
    static void SetText(const char* name, const std::string& text) {
        InIt([&](QBBookmarkWindow& window) {
            dynamic_cast<BTextControl&>(*ViewNamed(*window.ChildAt(0), name)).SetText(text.c_str());
        });
    }
    static std::string Marked(const char* name) {
        std::string label;
        InIt([&](QBBookmarkWindow& window) {
            label = dynamic_cast<BMenuField&>(*ViewNamed(*window.ChildAt(0), name)).ShownLabel();
        });
        return label;
    }
    static bool TextBecomes(const char* name, const std::string& text) {
        return WaitUntil([&] { return Text(name) == text; });
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

// Its label is not cut, also where a logical pixel is two.
void ExpectLabelFits(BView& view, const char* label, float room) {
    BFont font;
    view.GetFont(&font);
    EXPECT_LE(font.StringWidth(label), room) << label;
    font.SetSize(2 * font.Size());
    EXPECT_LE(font.StringWidth(label), 2 * room) << label;
    EXPECT_GE(font.Size(), 2 * 8) << label << " is hard to read";
}

// A view's label and the room for it; empty if it has none.
std::pair<std::string, float> LabelAndRoom(BView& view) {
    if (auto* text = dynamic_cast<BTextControl*>(&view))
        return {text->Label(), text->Divider() - 1};
    if (auto* field = dynamic_cast<BMenuField*>(&view))
        return {field->Label(), field->Divider() - 1};
    if (auto* button = dynamic_cast<BButton*>(&view))
        return {button->Label(), view.Bounds().Width() - 11};
    if (auto* box = dynamic_cast<BBox*>(&view))
        return {box->Label(), view.Bounds().Width() - 16};
    return {};
}

void ExpectFits(BView& view, std::set<std::string>& labels) {
    if (const auto [label, room] = LabelAndRoom(view); !label.empty()) {
        ExpectLabelFits(view, label.c_str(), room);
        labels.insert(label);
    }
    if (auto* field = dynamic_cast<BMenuField*>(&view))
        ExpectLabelFits(*field->Menu(), field->Menu()->Name(), field->RoomForShownLabel());
    for (int32 i = 0; i < view.CountChildren(); ++i) {
        BView& child = *view.ChildAt(i);
        EXPECT_EQ(child.Frame(), view.Bounds() & child.Frame());
        if (dynamic_cast<BTextControl*>(&view) == nullptr)
            ExpectFits(child, labels);
    }
}

TEST_F(AddWindowTest, EverythingHasItsPlaceAndRoomForItsLabel) {
    Open();
    InIt([](QBBookmarkWindow& window) {
        EXPECT_EQ(window.Bounds(), BRect(0, 0, 330, 380));
        EXPECT_EQ(window.Frame().LeftTop(), BPoint(474.5, 259.5));
        EXPECT_EQ(static_cast<BView*>(window.DefaultButton()),
                  ViewNamed(*window.ChildAt(0), "qb_abview_add"));
        std::set<std::string> labels;
        ExpectFits(*ViewNamed(*window.ChildAt(0), "qb_abview"), labels);
        EXPECT_EQ(labels.size(), 3 + 10 + 3 + 4 + 2);
    });
}

TEST_F(AddWindowTest, WhatIsWrongIsNoChoice) {
    test::MakeBookmark(Root() / "2 - News" / "7 - Paper", "http://paper", "daily");
    Open(Preset(3, 5));
    EXPECT_EQ(Marked("qb_location_slot"), "4 - ");
    EXPECT_EQ(Text("qb_location_keyword"), "News");
    SendToIt(QBSlot[7]);
    EXPECT_TRUE(TextBecomes("qb_editinfo_keywords", "daily"));
    const BMessage wrong = Preset(3, 11);
    QBBookmarkWindow::fMsgWindow.Get().SendMessage(&wrong);
    SendToIt(kQBAddBookmarkHere);
    SendToIt(QBFolder[5]);
    EXPECT_TRUE(TextBecomes("qb_location_keyword", ""));
    EXPECT_TRUE(TextBecomes("qb_editinfo_url", "")) << "the same slot of the new folder";
}

TEST_F(AddWindowTest, ItFollowsChangesOfTheStore) {
    test::MakeBookmark(Root() / "2 - News" / "7 - Paper", "http://paper", "daily");
    fs::create_directory(Root() / "1 - Other");
    Open();
    SendToIt(QBFolder[2]);
    SendToIt(QBSlot[7]);
    ASSERT_TRUE(TextBecomes("qb_editinfo_name", "Paper"));
    fs::rename(Root() / "2 - News" / "7 - Paper", Root() / "2 - News" / "7 - Journal");
    EXPECT_TRUE(TextBecomes("qb_editinfo_name", "Journal"));
    EXPECT_TRUE(WaitUntil([] { return Marked("qb_location_slot") == "7 - Journal"; }));
    fs::rename(Root() / "2 - News", Root() / "2 - Press");
    EXPECT_TRUE(TextBecomes("qb_location_keyword", "Press"));
    SetText("qb_editinfo_url", "typed");
    fs::rename(Root() / "1 - Other", Root() / "1 - Another");
    EXPECT_TRUE(TextBecomes("qb_editinfo_url", "http://paper"));
    fs::remove_all(Root() / "2 - Press");
    EXPECT_TRUE(TextBecomes("qb_editinfo_url", ""));
    EXPECT_TRUE(TextBecomes("qb_location_keyword", ""));
}

TEST_F(AddWindowTest, WhatCannotBeSavedIsReportedAndNotLost) {
    // The bar makes none of them then: that would take away what is typed.
    for (int digit = 0; digit < 10; ++digit)
        fs::create_directories(Root() / (std::to_string(digit) + " -"));
    Open(Preset(3, 8));
    SetText("qb_editinfo_name", "Long");
    SetText("qb_editinfo_url", std::string(100'000, 'u'));
    SendToIt(kQBAddIt);
    const test::Desk& desk = test::Desk::Shared();
    ASSERT_TRUE(WaitUntil([&] { return desk.Shown("DIALOG").size() == 1; }));
    EXPECT_FALSE(test::GetAttribute(Root() / "2 -" / "7 - Long", "META:url"));
    desk.Close(desk.Shown("DIALOG")[0].id);
    EXPECT_TRUE(WaitUntil([&] { return desk.Shown("DIALOG").empty(); }));
    const std::string url = Text("qb_editinfo_url");
    EXPECT_GE(url.size(), 4000u);
    // Nor does a change on disk take it away.
    test::MakeBookmark(Root() / "5 -" / "1 - marker", "http://marker");
    EXPECT_TRUE(WaitUntil([&] { return fWindow->LockWithTimeout(0) == B_OK; }));
    fWindow->Unlock();
    SendToIt(B_NODE_MONITOR);
    InIt([](QBBookmarkWindow&) {});
    EXPECT_TRUE(IsOpen());
    EXPECT_EQ(Text("qb_editinfo_url"), url);
}

// The bar tells the window of each change while the window comes and goes.
TEST_F(AddWindowTest, OpensAndClosesHundredsOfTimesInAStorm) {
    test::MakeBookmark(Root() / "2 - News" / "7 - Paper", "http://paper", "daily");
    Show();
    std::atomic<bool> ended = false;
    std::thread storm([&] {
        const fs::path file = Root() / "2 - News" / "7 - Paper";
        for (int i = 0; !ended; ++i) {
            test::SetUrl(file, "http://" + std::to_string(i));
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    const BMessage preset = Preset(3, 8);
    int rounds = 0;
    for (; rounds < 300; ++rounds) {
        // Ignored while the bar has not heard that the last one is gone.
        const auto opens = [&] {
            fWindow->PostMessage(&preset);
            return IsOpen();
        };
        if (!WaitUntil(opens))
            break;
        SendToIt(B_QUIT_REQUESTED);
        if (!WaitUntil([] { return !IsOpen(); }))
            break;
    }
    EXPECT_EQ(rounds, 300);
    ended = true;
    storm.join();
    // The bar may go while the window is there.
    fWindow->PostMessage(&preset);
    EXPECT_TRUE(WaitUntil(IsOpen));
}

} // namespace
