// Links of other kinds than the about box's.

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

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

using LinkTest = InterfaceTest;

TEST_F(LinkTest, EachKindOpensInItsProgram) {
    const test::TemporaryHome home;
    test::RecordedApps apps(home);
    auto* link = new TestLink("http://a");
    auto* window = new RecordingWindow(BRect(300, 300, 599, 399), B_TITLED_WINDOW_LOOK);
    window->AddChild(link);
    Show(window);
    Activate(window);
    const struct {
        const char *url, *opened, *app, *opener;
    } cases[] = {{"file:///x@y", "file:///x@y", "browser", "Open this link using browser"},
                 {"ftp://a", "ftp://a", "fetcher", "Connect to this server using fetcher"},
                 {"a@b", "mailto:a@b", "mailer", "Send e-mail to this address using mailer"},
                 {"mailto:b", "mailto:b", "mailer", "Send e-mail to this address using mailer"}};
    WithLock(window, [&] { link->SetURL("a@b"); });
    EXPECT_EQ(link->Opener(), "");
    apps.InstallBrowser();
    apps.Install("mailer", {"x-scheme-handler/mailto"});
    apps.Install("fetcher", {"x-scheme-handler/ftp"});
    size_t launches = 0;
    for (const auto& one : cases) {
        WithLock(window, [&] { link->SetURL(one.url); });
        EXPECT_EQ(link->Opener(), one.opener);
        ClickAt(link, BPoint(30, 12));
        ASSERT_EQ(apps.WaitForLaunches(++launches).size(), launches) << one.url;
        EXPECT_EQ(apps.Launches().back(), (test::RecordedApps::Launch{one.app, {one.opened}}));
    }
    // None of the kinds: the view becomes plain text.
    WithLock(window, [&] { link->SetURL("gopher:old"); });
    EXPECT_FALSE(link->IsEnabled());
}

TEST(Link, AFileManagersAnswerMakesAPersonsFile) {
    const test::TemporaryHome home;
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
    using namespace std::string_literals;
    EXPECT_EQ(test::GetAttribute(path, "META:name"), "a place to go\0"s);
    EXPECT_EQ(test::GetAttribute(path, "META:email"), "one@mail.example\0"s);
    EXPECT_EQ(test::GetAttribute(path, "META:keyw"), "own\0"s);
    EXPECT_FALSE(test::GetAttribute(path, "META:url"));
    EXPECT_TRUE(test::GetAttribute(path, "mime_type")->starts_with("application/x-person"));
}

} // namespace
