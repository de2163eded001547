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

constexpr uint32_t kBlue = 0x0000ff, kDarkBlue = 0x000078, kRed = 0xff0000, kGround = 0xffffff;
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
    constexpr const char* kServer = "Connect to this server using ";
    constexpr const char* kPerson = "Send e-mail to this address using ";
    const struct {
        const char *url, *opened, *app, *opener, *warning;
    } cases[] = {
        {"file:///x@y", "file:///x@y", "browser", "Open this link using ", "Web Browser Warning"},
        {"ftp://a", "ftp://a", "fetcher", kServer, "FTP Warning"},
        {"a@b", "mailto:a@b", "mailer", kPerson, "E-mail Warning"},
        {"mailto:b", "mailto:b", "mailer", kPerson, "E-mail Warning"}};
    for (const auto& one : cases) {
        SetURL(one.url);
        EXPECT_EQ(link->Opener(), "");
        ClickAt(link, OnText());
        ASSERT_TRUE(test::WaitUntil([&] { return desk.Shown("DIALOG").size() == 1; }));
        const test::WindowInfo alert = desk.Shown("DIALOG")[0];
        EXPECT_EQ(alert.title, one.warning);
        desk.Close(alert.id);
        ASSERT_TRUE(test::WaitUntil([&] { return desk.Shown("DIALOG").empty(); }));
        Activate(window);
    }
    apps.InstallBrowser();
    apps.Install("mailer", {"x-scheme-handler/mailto"});
    apps.Install("fetcher", {"x-scheme-handler/ftp"});
    size_t launches = 0;
    for (const auto& one : cases) {
        SetURL(one.url);
        EXPECT_EQ(link->Opener(), one.opener + std::string(one.app));
        ClickAt(link, OnText());
        ASSERT_EQ(apps.WaitForLaunches(++launches).size(), launches) << one.url;
        EXPECT_EQ(apps.Launches().back(), (test::RecordedApps::Launch{one.app, {one.opened}}));
    }
    // None of the kinds: the view becomes plain text.
    SetURL("gopher:old");
    EXPECT_FALSE(link->IsEnabled());
    EXPECT_TRUE(LineBecomes(kGround));
}

TEST_F(LinkTest, ItsColourFollowsThePointer) {
    for (const BPoint aside : {BPoint(190, 5), BPoint(30, -10)}) {
        EXPECT_TRUE(LineBecomes(kBlue));
        MoveOver(link, OnText());
        EXPECT_TRUE(LineBecomes(kDarkBlue));
        MoveOver(link, aside);
    }
    EXPECT_TRUE(LineBecomes(kBlue));
    MoveOver(link, OnText());
    EXPECT_TRUE(LineBecomes(kDarkBlue));
    test::PlainWindow other(desk, {900, 600, 100, 100});
    other.Activate();
    EXPECT_TRUE(LineBecomes(kBlue));
    MoveOver(link, OnText(3));
    window->Settle();
    EXPECT_TRUE(LineBecomes(kBlue)) << "hovered in a window that is not active";
}

TEST_F(LinkTest, TenPixelsAreAClickAndElevenAreNot) {
    apps.InstallBrowser();
    // Beside the text it is no click.
    ClickAt(link, BPoint(190, line - 4));
    ClickAt(link, BPoint(30, 1));
    for (const int pixels : {11, 10}) {
        SetURL(("http://" + std::to_string(pixels)).c_str());
        MoveOver(link, OnText());
        desk.Press();
        ASSERT_TRUE(LineBecomes(kRed));
        const int before = window->releases;
        MoveOver(link, OnText(static_cast<float>(pixels)));
        desk.Release();
        ASSERT_TRUE(test::WaitUntil([&] { return window->releases > before; }));
        MoveOver(link, BPoint(30, -10));
        ASSERT_TRUE(LineBecomes(kBlue));
    }
    EXPECT_EQ(apps.WaitForLaunches(1),
              (std::vector<test::RecordedApps::Launch>{{"browser", {"http://10"}}}));
}

TEST_F(LinkTest, AFileManagersAnswerMakesAPersonsFile) {
    const std::string path = home.Path() / "made";
    std::ofstream(path).flush();
    entry_ref directory;
    BEntry(home.Path().c_str()).GetRef(&directory);
    BMessage answer(B_COPY_TARGET);
    answer.AddRef("directory", &directory);
    answer.AddString("name", "made");
    TestLink person("one@mail.example");
    person.AddAttribute("META:keyw", "own");
    person.MessageReceived(&answer);
    const auto read = [&](const char* name) {
        return std::string(test::GetAttribute(path, name).value_or("none").c_str());
    };
    EXPECT_EQ(read("META:name"), "a place to go");
    EXPECT_EQ(read("META:email"), "one@mail.example");
    EXPECT_EQ(read("META:keyw"), "own");
    EXPECT_EQ(read("META:url"), "none");
    EXPECT_EQ(read("mime_type"), "application/x-person");
}

} // namespace
