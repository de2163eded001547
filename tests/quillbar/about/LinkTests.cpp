// The link view under a real pointer, and what only other links than the about box's do.

#include <cmath>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "kits/app/AppDefs.h"
#include "kits/app/Message.h"
#include "kits/interface/menus/MenuItem.h"
#include "kits/interface/menus/PopUpMenu.h"
#include "kits/storage/Entry.h"
#include "quillbar/about/URLView.h"
#include "tests/kits/interface/InterfaceTest.h"
#include "tests/support/Bookmarks.h"
#include "tests/support/RecordedApps.h"

namespace {

constexpr uint32_t kBlue = 0x0000ff, kDarkBlue = 0x000078, kRed = 0xff0000;
constexpr const char* kPage = "http://page.example/a b?c";

class TestLink : public URLView {
public:
    explicit TestLink(const char* url)
        : URLView(BRect(20, 20, 219, 39), "link", "a place to go", url, B_FOLLOW_NONE,
                  B_WILL_DRAW) {}

    // The first entry of its menu; empty if there is only the one that copies.
    std::string Opener() const {
        const auto menu = CreatePopupMenu();
        return menu->CountItems() == 2 ? menu->ItemAt(0)->Label() : "";
    }
};

class LinkTest : public InterfaceTest {
protected:
    LinkTest() {
        window->AddChild(link);
        Show(window);
        Activate(window);
        font_height height;
        link->GetFontHeight(&height);
        line = link->Bounds().bottom - height.descent;
    }
    void SetURL(const char* url) {
        WithLock(window, [&] { link->SetURL(url); });
    }
    // A pixel of the underline; of the line's room if there is none.
    bool LineBecomes(uint32_t color) {
        return WaitForPixel(link, BPoint(1, std::floor(line + 0.5f)), color);
    }
    BPoint OnText(float aside = 0) const { return {30 + aside, line - 4}; }

    test::TemporaryHome home;
    test::RecordedApps apps{home};
    TestLink* const link = new TestLink(kPage);
    RecordingWindow* const window =
        new RecordingWindow(BRect(300, 300, 599, 399), B_TITLED_WINDOW_LOOK);
    float line = 0;
};

TEST_F(LinkTest, EachKindOpensInItsProgramOrSaysThatThereIsNone) {
    struct Kind {
        const char *opener, *warning, *app;
    };
    const Kind web = {"Open this link using ", "Web Browser Warning", "browser"};
    const Kind server = {"Connect to this server using ", "FTP Warning", "fetcher"};
    const Kind mail = {"Send e-mail to this address using ", "E-mail Warning", "mailer"};
    const struct {
        const char* url;
        Kind kind;
        const char* opened;
    } cases[] = {{kPage, web, kPage},
                 {"file:///x@y", web, "file:///x@y"},
                 {"ftp://a", server, "ftp://a"},
                 {"a@b", mail, "mailto:a@b"},
                 {"mailto:b", mail, "mailto:b"}};
    for (const auto& one : cases) {
        SetURL(one.url);
        EXPECT_EQ(link->Opener(), "");
        ClickAt(link, OnText());
        ASSERT_TRUE(test::WaitUntil([&] { return desk.Shown("DIALOG").size() == 1; }));
        const test::WindowInfo alert = desk.Shown("DIALOG")[0];
        EXPECT_EQ(alert.title, one.kind.warning);
        ASSERT_TRUE(test::WaitUntil([&] { return desk.HasKeyboard(alert.id); }));
        desk.Key(XK_Return);
        ASSERT_TRUE(test::WaitUntil([&] { return desk.Shown("DIALOG").empty(); }));
        Activate(window);
    }
    apps.InstallBrowser();
    apps.Install("mailer", {"x-scheme-handler/mailto"});
    apps.Install("fetcher", {"x-scheme-handler/ftp"});
    size_t launches = 0;
    for (const auto& one : cases) {
        SetURL(one.url);
        EXPECT_EQ(link->Opener(), one.kind.opener + std::string(one.kind.app));
        ClickAt(link, OnText());
        ASSERT_EQ(apps.WaitForLaunches(++launches).size(), launches) << one.url;
        EXPECT_EQ(apps.Launches().back(), (test::RecordedApps::Launch{one.kind.app, {one.opened}}));
    }
    // None of the kinds: the view becomes plain text.
    SetURL("gopher:old");
    EXPECT_FALSE(link->IsEnabled());
    ClickAt(link, OnText());
    window->Settle();
    EXPECT_FALSE(PixelAt(link, BPoint(1, std::floor(line + 0.5f))) == kBlue);
    EXPECT_EQ(apps.Launches().size(), launches);
}

TEST_F(LinkTest, ItsColourFollowsThePointer) {
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
        MoveOver(link, OnText(3));
        window->Settle();
        EXPECT_TRUE(LineBecomes(kBlue)) << "hovered in a window that is not active";
    }
    Activate(window);
    MoveOver(link, OnText());
    desk.Press();
    ASSERT_TRUE(LineBecomes(kRed));
    MoveOver(link, BPoint(30, -10));
    EXPECT_TRUE(LineBecomes(kBlue));
}

TEST_F(LinkTest, TenPixelsAreAClickAndElevenAreNot) {
    apps.InstallBrowser();
    size_t launches = 0;
    for (const float pixels : {11, 10}) {
        MoveOver(link, OnText());
        desk.Press();
        ASSERT_TRUE(LineBecomes(kRed));
        const int before = window->releases;
        MoveOver(link, OnText(pixels));
        desk.Release();
        ASSERT_TRUE(test::WaitUntil([&] { return window->releases > before; }));
        MoveOver(link, BPoint(30, -10));
        ASSERT_TRUE(LineBecomes(kBlue));
        launches += pixels <= 10;
    }
    // Beside the text it is no click.
    ClickAt(link, BPoint(190, line - 4));
    ClickAt(link, BPoint(30, 1));
    ClickAt(link, OnText());
    EXPECT_EQ(apps.WaitForLaunches(launches + 1).size(), launches + 1);
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
        for (const char* name :
             {"META:title", "META:url", "META:name", "META:email", "META:keyw", "mime_type"})
            attributes.emplace_back(test::GetAttribute(path, name).value_or("none").c_str());
        std::filesystem::remove(path);
        return attributes;
    };
    TestLink page(kPage);
    page.AddAttribute("META:keyw", "own");
    EXPECT_THAT(answered(page), testing::ElementsAre("a place to go", kPage, "none", "none", "own",
                                                     "application/x-vnd.Be-bookmark"));
    TestLink person("one@mail.example");
    EXPECT_THAT(answered(person),
                testing::ElementsAre("none", "none", "a place to go", "one@mail.example", "none",
                                     "application/x-person"));
}

} // namespace
