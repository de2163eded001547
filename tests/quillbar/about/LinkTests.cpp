// The link view under a real pointer.

#include <cmath>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/interface/menus/MenuItem.h"
#include "kits/interface/menus/PopUpMenu.h"
#include "kits/interface/text/Clipboard.h"
#include "kits/storage/Entry.h"
#include "quillbar/about/URLView.h"
#include "tests/kits/interface/InterfaceTest.h"
#include "tests/support/Bookmarks.h"
#include "tests/support/RecordedApps.h"

#include <X11/keysym.h>

namespace {

constexpr uint32_t kBlue = 0x0000ff, kDarkBlue = 0x000078, kRed = 0xff0000, kGrey = 0x646464;
constexpr const char* kPage = "http://page.example/a b?c";

class TestLink : public URLView {
public:
    explicit TestLink(const char* url)
        : URLView(BRect(20, 20, 219, 39), "link", "a place to go", url, B_FOLLOW_NONE,
                  B_WILL_DRAW) {}

    void MouseUp(BPoint where) override {
        URLView::MouseUp(where);
        releases++;
    }
    std::vector<std::string> MenuLabels() const {
        std::vector<std::string> labels;
        const auto menu = CreatePopupMenu();
        for (int32 i = 0; i < menu->CountItems(); i++)
            labels.emplace_back(menu->ItemAt(i)->Label());
        return labels;
    }

    std::atomic<int> releases = 0;
};

class LinkTest : public InterfaceTest {
protected:
    void ShowLink(const char* url) {
        link = new TestLink(url);
        window = new RecordingWindow(BRect(300, 300, 599, 399), B_TITLED_WINDOW_LOOK);
        window->AddChild(link);
        Show(window);
        Activate();
        font_height height;
        link->GetFontHeight(&height);
        line = link->Bounds().bottom - height.descent;
    }
    void InstallPrograms() {
        apps.InstallBrowser();
        apps.Install("mailer", {"x-scheme-handler/mailto"});
        apps.Install("fetcher", {"x-scheme-handler/ftp"});
    }
    void Activate() {
        const auto shown = ShownWindows();
        ASSERT_EQ(shown.size(), 1u);
        desk.Activate(shown.front().id);
        ASSERT_TRUE(WaitFor(window, [this] { return window->IsActive(); }));
    }
    // A pixel of the underline; of the line's room if there is none.
    bool LineBecomes(uint32_t color) {
        return WaitForPixel(link, BPoint(1, std::floor(line + 0.5f)), color);
    }
    BPoint OnText() const { return {30, line - 4}; }
    void Press(int button = 1) {
        MoveOver(link, OnText());
        desk.Press(button);
        ASSERT_TRUE(LineBecomes(kRed));
    }
    void OpenMenu() {
        Press(3);
        desk.Release(3);
        ASSERT_TRUE(test::WaitUntil([this] { return !Menus().empty(); }));
    }
    std::vector<test::WindowInfo> Menus() { return desk.Shown("POPUP_MENU"); }
    std::string Copied() {
        EXPECT_TRUE(be_clipboard->Lock());
        const void* bytes = nullptr;
        ssize_t size = 0;
        be_clipboard->Data()->FindData("text/plain", B_MIME_TYPE, &bytes, &size);
        std::string text(static_cast<const char*>(bytes), static_cast<size_t>(size));
        be_clipboard->Unlock();
        return text;
    }

    test::TemporaryHome home;
    test::RecordedApps apps{home};
    TestLink* link = nullptr;
    RecordingWindow* window = nullptr;
    float line = 0;
};

TEST_F(LinkTest, EachKindOpensInItsProgramWithTheWholeLink) {
    InstallPrograms();
    const std::vector<std::pair<const char*, test::RecordedApps::Launch>> cases = {
        {kPage, {"browser", {kPage}}},
        {"file:///tmp/x@y", {"browser", {"file:///tmp/x@y"}}},
        {"ftp://server.example", {"fetcher", {"ftp://server.example"}}},
        {"one@mail.example", {"mailer", {"mailto:one@mail.example"}}},
        {"mailto:two", {"mailer", {"mailto:two"}}},
    };
    ShowLink(kPage);
    for (size_t i = 0; i < cases.size(); i++) {
        WithLock(window, [&] { link->SetURL(cases[i].first); });
        EXPECT_TRUE(link->IsEnabled()) << cases[i].first;
        ClickAt(link, OnText());
        const auto launches = apps.WaitForLaunches(i + 1);
        ASSERT_EQ(launches.size(), i + 1) << cases[i].first;
        EXPECT_EQ(launches.back(), cases[i].second);
    }
    // Beside the text, or pressed elsewhere, it is no click.
    ClickAt(link, BPoint(190, line - 4));
    ClickAt(link, BPoint(30, 1));
    // None of the kinds: the view becomes plain text.
    WithLock(window, [&] { link->SetURL("gopher:old"); });
    EXPECT_FALSE(link->IsEnabled());
    ClickAt(link, OnText());
    window->Settle();
    EXPECT_EQ(apps.Launches().size(), cases.size());
    EXPECT_NE(PixelAt(link, BPoint(1, std::floor(line + 0.5f))), kBlue);
    WithLock(window, [&] { link->SetEnabled(true); });
    EXPECT_TRUE(LineBecomes(kBlue));
}

TEST_F(LinkTest, ItsColourTellsWhatThePointerDoes) {
    ShowLink(kPage);
    EXPECT_TRUE(LineBecomes(kBlue));
    MoveOver(link, OnText());
    EXPECT_TRUE(LineBecomes(kDarkBlue));
    MoveOver(link, BPoint(190, 5));
    EXPECT_TRUE(LineBecomes(kBlue));
    MoveOver(link, OnText());
    EXPECT_TRUE(LineBecomes(kDarkBlue));
    {
        test::PlainWindow other(desk, {900, 600, 100, 100});
        other.Activate();
        EXPECT_TRUE(LineBecomes(kBlue));
        MoveOver(link, OnText() + BPoint(3, 0));
        window->Settle();
        EXPECT_TRUE(LineBecomes(kBlue)) << "hovered in a window that is not active";
    }
    Activate();
    Press();
    MoveOver(link, BPoint(30, -10));
    EXPECT_TRUE(LineBecomes(kBlue));
    desk.Release();
    window->Settle();
    EXPECT_TRUE(apps.Launches().empty());
}

TEST_F(LinkTest, TenPixelsAreAClickAndElevenAreNot) {
    apps.InstallBrowser();
    ShowLink(kPage);
    const auto pressAndMove = [this](float pixels) {
        Press();
        const int before = link->releases;
        MoveOver(link, OnText() + BPoint(pixels, 0));
        desk.Release();
        ASSERT_TRUE(test::WaitUntil([&] { return link->releases > before; }));
        MoveOver(link, BPoint(30, -10));
        ASSERT_TRUE(LineBecomes(kBlue));
    };
    pressAndMove(10);
    EXPECT_EQ(apps.WaitForLaunches(1).size(), 1u);
    pressAndMove(11);
    ClickAt(link, OnText());
    EXPECT_EQ(apps.WaitForLaunches(2).size(), 2u);
    window->Settle();
    EXPECT_EQ(apps.Launches().size(), 2u);
}

TEST_F(LinkTest, TheMenuNamesTheProgramAndCopies) {
    ShowLink("one@mail.example");
    const std::string copy = "Copy this link to the clipboard";
    EXPECT_EQ(link->MenuLabels(), std::vector<std::string>{copy});
    InstallPrograms();
    const auto openerOf = [this](const char* url) {
        WithLock(window, [&] { link->SetURL(url); });
        const auto labels = link->MenuLabels();
        return labels.size() == 2 ? labels[0] : "";
    };
    EXPECT_EQ("Open this link using browser", openerOf(kPage));
    EXPECT_TRUE(openerOf("ftp://a").starts_with("Connect to this server using "));
    EXPECT_TRUE(openerOf("one@mail.example").starts_with("Send e-mail to this address using "));

    const BPoint pointer = OnScreen(link, OnText());
    OpenMenu();
    EXPECT_EQ(Menus()[0].frame.y, static_cast<int>(pointer.y) - 6);
    desk.Key(XK_Escape);
    EXPECT_TRUE(LineBecomes(kDarkBlue));
    OpenMenu();
    desk.Key(XK_End);
    desk.Key(XK_Return);
    EXPECT_TRUE(test::WaitUntil([this] { return Copied() == "one@mail.example"; }));
    EXPECT_TRUE(apps.Launches().empty());
    OpenMenu();
    desk.Key(XK_Home);
    desk.Key(XK_Return);
    EXPECT_EQ(apps.WaitForLaunches(1).size(), 1u);
}

TEST_F(LinkTest, AnAlertSaysThatNoProgramIsThere) {
    ShowLink(kPage);
    const std::vector<std::pair<const char*, const char*>> cases = {
        {kPage, "Web Browser Warning"}, {"ftp://a", "FTP Warning"}, {"a@b", "E-mail Warning"}};
    for (const auto& [url, title] : cases) {
        WithLock(window, [&, link_ = url] { link->SetURL(link_); });
        ClickAt(link, OnText());
        std::vector<test::WindowInfo> alerts;
        ASSERT_TRUE(test::WaitUntil([&] {
            alerts = desk.Shown("DIALOG");
            return alerts.size() == 1 && desk.ActiveWindow() == alerts[0].id;
        }));
        EXPECT_EQ(alerts[0].title, title);
        desk.Key(XK_Return);
        ASSERT_TRUE(test::WaitUntil([&] { return !desk.IsViewable(alerts[0].id); }));
        Activate();
    }
}

TEST_F(LinkTest, AFileManagersAnswerMakesTheFile) {
    const auto answered = [this](URLView& view) {
        const std::string path = home.Path() / "made";
        std::ofstream(path).flush();
        entry_ref directory;
        BEntry(home.Path().c_str()).GetRef(&directory);
        BMessage message(B_COPY_TARGET);
        message.AddRef("directory", &directory);
        message.AddString("name", "made");
        view.MessageReceived(&message);
        std::vector<std::string> attributes;
        for (const char* name : {"META:title", "META:url", "META:name", "META:email", "META:keyw"})
            attributes.push_back(test::GetAttribute(path, name).value_or("none"));
        attributes.push_back(test::GetAttribute(path, "mime_type").value_or("none").c_str());
        std::filesystem::remove(path);
        return attributes;
    };
    const auto text = [](const char* bytes) { return std::string(bytes) + '\0'; };

    TestLink page(kPage);
    page.AddAttribute("META:keyw", "own");
    EXPECT_THAT(answered(page),
                testing::ElementsAre(text("a place to go"), text(kPage), "none", "none",
                                     text("own"), "application/x-vnd.Be-bookmark"));
    TestLink person("one@mail.example");
    EXPECT_THAT(answered(person),
                testing::ElementsAre("none", "none", text("a place to go"),
                                     text("one@mail.example"), "none", "application/x-person"));
}

} // namespace
