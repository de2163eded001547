// The Add Bookmark window, by keys and pointer.

#include "tests/desktop/DesktopTest.h"
#include "tests/support/InputServer.h"

using namespace test;

namespace {

class AddBookmarkTest : public DesktopTest {
protected:
    void SetUp() override {
        DesktopTest::SetUp();
        AddBookmark(2, "1 - Site", "http://site.example/");
    }
    void WaitForWindow() { fPlace = WaitForAddWindow(); }
    void OpenWindow() { fPlace = OpenAddWindow(); }
    bool WindowCloses() {
        return WaitUntil([&] { return fProgram.AddWindows().empty(); });
    }
    // In the window, in units.
    void ClickAt(int x, int y) { fDesk.Click(fPlace.x + x, fPlace.y + y); }
    void ClickBrowse(int digit) { ClickAt(10 + 44 + 20 * digit, 20 + 130 + 42); }
    void Alt(uint32_t key) { fDesk.KeyWith(XK_Alt_L, key); }
    void ChooseByKeys() { ChooseLocation(fPlace, 2, 4); }
    std::string Attribute(const std::string& name, const std::string& attribute) const {
        return GetAttribute(BookmarkPath(2, name), attribute).value_or("none");
    }

    Box fPlace;
};

TEST_F(AddBookmarkTest, KeysMakeABookmark) {
    fProgram.Start();
    OpenWindow();
    fDesk.Key(XK_Return);
    DismissAlert(); // no slot is chosen
    WaitForWindow();
    ChooseByKeys();
    fDesk.Type("News & more");
    fDesk.Key(XK_Tab);
    fDesk.Type("http://a.b/");
    fDesk.Key(XK_Tab);
    fDesk.Type("k");
    fDesk.Key(XK_Return);
    ASSERT_TRUE(WindowCloses());
    EXPECT_EQ(Attribute("4 - News & more", "mime_type"), kBookmarkType);
    EXPECT_EQ(Attribute("4 - News & more", "META:url"), std::string("http://a.b/\0", 12));
    EXPECT_EQ(Attribute("4 - News & more", "META:keyw"), std::string("k\0", 2));
    EXPECT_EQ(Attribute("4 - News & more", "META:title"), std::string("News & more\0", 12));
    EXPECT_TRUE(SlotBecomes(2, 4, true));

    // What is refused is said and stays, whatever changes; a quit takes the words away.
    OpenWindow();
    ChooseByKeys();
    fDesk.Type("../x");
    fDesk.Key(XK_Return);
    DismissAlert();
    AddBookmark(2, "8 - New", "http://new.example/");
    EXPECT_TRUE(SlotBecomes(2, 8, true));
    Activate(fProgram.AddWindows().at(0).id);
    Alt(XK_d);
    ASSERT_TRUE(AlertOpens());
}

TEST_F(AddBookmarkTest, ABrowsedBookmarkIsRewrittenAndTheBarKeepsItsMenus) {
    fProgram.Start();
    ChooseSlot(2, 5); // "Add Bookmark Here"
    WaitForWindow();
    ClickBrowse(2);
    ASSERT_TRUE(MenusBecome(1));
    CloseMenus();
    ChooseSlot(2, 1);
    EXPECT_EQ(LastUrl(1), "http://site.example/");
    ChooseSlot(2, 7); // one window at a time
    EXPECT_EQ(fProgram.AddWindows().size(), 1u);
    Activate(fProgram.AddWindows()[0].id);
    ClickBrowse(2);
    Click(FolderMenu(fDesk, fProgram).Slot(1));
    ASSERT_TRUE(MenusBecome(0));
    fDesk.Settled(fPlace);
    fDesk.Key(XK_End);
    fDesk.Type("s");
    Alt(XK_d);
    ASSERT_TRUE(WindowCloses());
    EXPECT_EQ(Attribute("1 - Sites", "META:url"), std::string("http://site.example/\0", 21));
    EXPECT_EQ(Attribute("1 - Sites", "META:title"), std::string("Sites\0", 6));
    EXPECT_FALSE(std::filesystem::exists(BookmarkPath(2, "1 - Site")));

    // It follows changes of the store.
    OpenWindow();
    ChooseLocation(fPlace, 2, 1);
    EXPECT_TRUE(LocationChangesIn(fPlace, [&] {
        std::filesystem::rename(BookmarkPath(2, "1 - Sites"), BookmarkPath(2, "1 - Place"));
    }));
    fDesk.Key(XK_End);
    fDesk.Type("s");
    Alt(XK_d);
    ASSERT_TRUE(WindowCloses());
    EXPECT_EQ(Attribute("1 - Places", "META:url"), std::string("http://site.example/\0", 21));

    // It may end while such a menu is open.
    OpenWindow();
    ClickBrowse(3);
    ASSERT_TRUE(MenusBecome(1));
}

TEST_F(AddBookmarkTest, TheRootIsShownInTheFileManager) {
    fProgram.Start();
    OpenWindow();
    fApps.Install("files", {"inode/directory"});
    ClickAt(60, 20 + 335);
    EXPECT_EQ(fApps.WaitForLaunches(1),
              (std::vector<RecordedApps::Launch>{{"files", {fProgram.Root()}}}));
    Alt(XK_t);
    EXPECT_EQ(fApps.WaitForLaunches(2).size(), 2u);
    Alt(XK_c);
    EXPECT_TRUE(WindowCloses());
}

TEST_F(AddBookmarkTest, TheTextOfAnInputMethodIsTypedOnOneLine) {
    std::optional<InputServer> server(std::in_place, fDesk);
    const auto fieldGetsContext = [&](int count) {
        return WaitUntil([&] { return server->focuses == count; });
    };
    server->given = "日\u2028本é\u2028";
    fProgram.Start({{"XMODIFIERS", "@im=testim"}});
    OpenWindow();
    ASSERT_TRUE(fieldGetsContext(1));
    ChooseByKeys();
    fDesk.Type("bab");
    fDesk.Key(XK_Tab);
    ASSERT_TRUE(fieldGetsContext(2));
    fDesk.Type("http://b/a");
    fDesk.Key(XK_Tab);
    ASSERT_TRUE(fieldGetsContext(3));
    server.reset();
    fDesk.Type("ka");
    fDesk.Key(XK_Return);
    ASSERT_TRUE(WindowCloses());
    EXPECT_EQ(Attribute("4 - b日 本éb", "META:url"), std::string("http://b/日 本é") + '\0');
    EXPECT_EQ(Attribute("4 - b日 本éb", "META:keyw"), std::string("ka\0", 3));
}

} // namespace
