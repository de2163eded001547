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
        fProgram.Start();
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
    bool LocationChanges(const std::function<void()>& work) {
        return LocationChangesIn(fPlace, work);
    }
    void ChooseByKeys() { ChooseLocation(fPlace, 2, 4); }
    std::string Attribute(const std::string& name, const std::string& attribute) const {
        return GetAttribute(BookmarkPath(2, name), attribute).value_or("none");
    }

    Box fPlace;
};

TEST_F(AddBookmarkTest, KeysMakeABookmark) {
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

    // What is refused is said; a quit takes the words away.
    OpenWindow();
    ChooseByKeys();
    fDesk.Type("../x");
    fDesk.Key(XK_Return);
    DismissAlert();
    WaitForWindow();
    Alt(XK_d);
    ASSERT_TRUE(AlertOpens());
    EXPECT_EQ(fProgram.Stop(), 0);
}

TEST_F(AddBookmarkTest, ABrowsedBookmarkIsRewritten) {
    ChooseSlot(2, 5); // "Add Bookmark Here"
    WaitForWindow();
    ClickBrowse(2);
    const Box item = FolderMenu(fDesk, fProgram).Slot(1);
    fDesk.Click(item.CenterX(), item.CenterY());
    ASSERT_TRUE(MenusBecome(0));
    fDesk.Settled(fPlace);
    fDesk.Key(XK_End);
    fDesk.Type("s");
    Alt(XK_d);
    ASSERT_TRUE(WindowCloses());
    EXPECT_EQ(Attribute("1 - Sites", "META:url"), std::string("http://site.example/\0", 21));
    EXPECT_EQ(Attribute("1 - Sites", "META:title"), std::string("Sites\0", 6));
    EXPECT_FALSE(std::filesystem::exists(BookmarkPath(2, "1 - Site")));
}

TEST_F(AddBookmarkTest, AFolderMenuGivesTheBarItsTargetBack) {
    OpenWindow();
    ClickBrowse(2);
    ASSERT_TRUE(MenusBecome(1));
    CloseMenus();
    ChooseSlot(2, 1);
    EXPECT_EQ(LastUrl(1), "http://site.example/");
    ChooseSlot(2, 7); // one window at a time
    EXPECT_EQ(fProgram.AddWindows().size(), 1u);
    fDesk.Activate(fProgram.AddWindows()[0].id);
    WaitForWindow();
    ClickBrowse(3);
    ASSERT_TRUE(MenusBecome(1));
    EXPECT_EQ(fProgram.Stop(), 0);
}

TEST_F(AddBookmarkTest, TheRootIsShownInTheFileManager) {
    OpenWindow();
    EXPECT_TRUE(LocationChanges([&] {
        Alt(XK_t); // there is none
        Alt(XK_2);
    }));
    fApps.Install("files", {"inode/directory"});
    ClickAt(60, 20 + 335);
    EXPECT_EQ(fApps.WaitForLaunches(1),
              (std::vector<RecordedApps::Launch>{{"files", {fProgram.Root()}}}));
    Alt(XK_t);
    EXPECT_EQ(fApps.WaitForLaunches(2).size(), 2u);
    Alt(XK_c);
    EXPECT_TRUE(WindowCloses());
}

class InputMethodBookmarkTest : public AddBookmarkTest {
protected:
    void SetUp() override {
        setenv("XMODIFIERS", "@im=testim", 1);
        AddBookmarkTest::SetUp();
        unsetenv("XMODIFIERS");
    }
    bool FieldGetsContext(int count) {
        return WaitUntil([&] { return fServer->focuses == count; });
    }

    std::unique_ptr<InputServer> fServer = std::make_unique<InputServer>(fDesk);
};

TEST_F(InputMethodBookmarkTest, ItsTextIsTypedOnOneLine) {
    fServer->given = "日\u2028本é\u2028";
    OpenWindow();
    ASSERT_TRUE(FieldGetsContext(1));
    ChooseByKeys();
    fDesk.Type("bab");
    fDesk.Key(XK_Tab);
    ASSERT_TRUE(FieldGetsContext(2));
    fDesk.Type("http://b/a");
    fDesk.Key(XK_Tab);
    ASSERT_TRUE(FieldGetsContext(3));
    fServer.reset();
    fDesk.Type("ka");
    fDesk.Key(XK_Return);
    ASSERT_TRUE(WindowCloses());
    EXPECT_EQ(Attribute("4 - b日 本éb", "META:url"), std::string("http://b/日 本é") + '\0');
    EXPECT_EQ(Attribute("4 - b日 本éb", "META:keyw"), std::string("ka\0", 3));
}

} // namespace
