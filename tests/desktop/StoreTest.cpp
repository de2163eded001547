// The menus follow the disk while the program runs.

#include <fstream>
#include <thread>

#include "tests/desktop/DesktopTest.h"

using namespace test;
namespace fs = std::filesystem;

namespace {

class StoreTest : public DesktopTest {
protected:
    void SetUp() override {
        DesktopTest::SetUp();
        for (int folder = 0; folder < 10; ++folder)
            fs::create_directories(BookmarkPath(folder, "x").parent_path());
        AddBookmark(2, "1 - One", "http://one.example/");
        AddBookmark(2, "3 - Three", "http://three.example/");
        fProgram.Start();
    }
    fs::path Folder(int digit) const { return BookmarkPath(digit, "x").parent_path(); }
    Picture Title(int folder) {
        const FolderMenu menu = OpenFolder(folder);
        CloseMenus();
        return menu.TitlePicture();
    }
    Picture Label(int folder, int slot) {
        const FolderMenu menu = OpenFolder(folder);
        CloseMenus();
        return menu.SlotPicture(slot);
    }
};

TEST_F(StoreTest, ACreatedBookmarkFillsItsSlot) {
    AddBookmark(2, "7 - New", "http://new.example/");
    ASSERT_TRUE(SlotBecomes(2, 7, true));
    ChooseSlot(2, 7);
    EXPECT_EQ(LastUrl(1), "http://new.example/");
}

TEST_F(StoreTest, ASlowCopyEndsAsABookmark) {
    const fs::path path = BookmarkPath(2, "7 - Slow");
    std::ofstream{path};
    const auto pause = [] { std::this_thread::sleep_for(std::chrono::milliseconds(150)); };
    pause();
    SetUrl(path, "http://slow.example/");
    pause();
    SetAttribute(path, "META:keyw", std::string(1, '\0'));
    pause();
    SetAttribute(path, "mime_type", kBookmarkType);
    ASSERT_TRUE(WaitUntil([&] {
        ChooseSlot(2, 7);
        const auto launches = fApps.Launches();
        return !launches.empty() &&
               launches.back().arguments == std::vector<std::string>{"http://slow.example/"};
    }));
}

TEST_F(StoreTest, ARenameChangesTheLabel) {
    const Picture before = Label(2, 1);
    fs::rename(BookmarkPath(2, "1 - One"), BookmarkPath(2, "1 - Uno"));
    EXPECT_TRUE(WaitUntil([&] { return Label(2, 1) != before; }));
    ChooseSlot(2, 1);
    EXPECT_EQ(LastUrl(1), "http://one.example/");
}

TEST_F(StoreTest, AChangedAddressIsTheOneThatOpens) {
    const Picture before = Label(2, 1);
    SetUrl(BookmarkPath(2, "1 - One"), "http://changed.example/");
    EXPECT_TRUE(WaitUntil([&] { return Label(2, 1) != before; }));
    ChooseSlot(2, 1);
    EXPECT_EQ(LastUrl(1), "http://changed.example/");
    RemoveAttribute(BookmarkPath(2, "1 - One"), "META:url");
    EXPECT_TRUE(SlotBecomes(2, 1, false));
}

TEST_F(StoreTest, ARemovedBookmarkEmptiesItsSlot) {
    fs::remove(BookmarkPath(2, "3 - Three"));
    EXPECT_TRUE(SlotBecomes(2, 3, false));
    EXPECT_TRUE(SlotBecomes(2, 1, true));
}

TEST_F(StoreTest, BookmarksMoveInAndOut) {
    const fs::path outside = fHome.Path() / "4 - Other";
    fs::rename(BookmarkPath(2, "3 - Three"), outside);
    EXPECT_TRUE(SlotBecomes(2, 3, false));
    fs::rename(outside, BookmarkPath(5, "4 - Other"));
    EXPECT_TRUE(SlotBecomes(5, 4, true));
    ChooseSlot(5, 4);
    EXPECT_EQ(LastUrl(1), "http://three.example/");
}

TEST_F(StoreTest, ARenamedFolderKeepsItsBookmarksUnderANewTitle) {
    const Picture before = Title(2);
    fs::rename(Folder(2), fProgram.Root() / "2 - Renamed folder");
    EXPECT_TRUE(WaitUntil([&] { return Title(2) != before; }));
    ChooseSlot(2, 1);
    EXPECT_EQ(LastUrl(1), "http://one.example/");
    // It is still watched under its new name.
    MakeBookmark(fProgram.Root() / "2 - Renamed folder/8 - Late", "http://late.example/");
    EXPECT_TRUE(SlotBecomes(2, 8, true));
}

TEST_F(StoreTest, AFolderThatGoesIsMadeAnew) {
    fs::rename(Folder(2), fHome.Path() / "elsewhere");
    EXPECT_TRUE(WaitUntil([&] { return fs::is_directory(fProgram.Root() / "2 -"); }));
    EXPECT_TRUE(SlotBecomes(2, 1, false));
    fs::remove_all(Folder(6));
    EXPECT_TRUE(WaitUntil([&] { return fs::is_directory(fProgram.Root() / "6 -"); }));
    MakeBookmark(fProgram.Root() / "6 -/2 - Again", "http://again.example/");
    EXPECT_TRUE(SlotBecomes(6, 2, true));
}

TEST_F(StoreTest, ARootThatGoesIsMadeAnew) {
    for (const bool removed : {false, true}) {
        if (removed)
            fs::remove_all(fProgram.Root());
        else
            fs::rename(fProgram.Root(), fHome.Path() / "old root");
        EXPECT_TRUE(WaitUntil([&] { return fs::is_directory(fProgram.Root() / "9 -"); }));
        EXPECT_TRUE(SlotBecomes(2, 1, false));
        MakeBookmark(fProgram.Root() / "2 -/1 - Anew", "http://anew.example/");
        EXPECT_TRUE(SlotBecomes(2, 1, true));
    }
    EXPECT_TRUE(fs::exists(fHome.Path() / "old root/2 - Folder/1 - One"));
}

TEST_F(StoreTest, RenamingTheRootInItsFolderStartsAFreshOne) {
    fs::rename(fProgram.Root(), fHome.Config() / "Quillbar.old");
    EXPECT_TRUE(WaitUntil([&] { return fs::is_directory(fProgram.Root() / "9 -"); }));
    EXPECT_TRUE(SlotBecomes(2, 1, false));
    EXPECT_TRUE(fs::exists(fHome.Config() / "Quillbar.old/2 - Folder/1 - One"));
}

TEST_F(StoreTest, ABurstEndsEqualToTheDisk) {
    // Long enough that the store is rebuilt in the middle of it.
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(2500);
    while (std::chrono::steady_clock::now() < end) {
        for (int slot = 0; slot < 9; ++slot)
            AddBookmark(4, std::to_string(slot) + " - Burst", "http://burst.example/");
        for (int slot = 0; slot < 9; ++slot)
            fs::remove(BookmarkPath(4, std::to_string(slot) + " - Burst"));
    }
    for (int slot = 1; slot < 9; slot += 2)
        AddBookmark(4, std::to_string(slot) + " - Burst", "http://burst.example/");
    for (int slot = 0; slot < 9; ++slot)
        EXPECT_TRUE(SlotBecomes(4, slot, slot % 2 == 1)) << slot;
}

TEST_F(StoreTest, ChangesWhileAMenuIsOpenAreThereWhenItOpensNext) {
    const FolderMenu open = OpenFolder(2);
    fs::rename(BookmarkPath(2, "1 - One"), fHome.Path() / "gone");
    AddBookmark(2, "6 - Six", "http://six.example/");
    const Box place = open.Slot(3);
    fRobot.Click(place.CenterX(), place.CenterY());
    EXPECT_EQ(LastUrl(1), "http://three.example/");
    EXPECT_TRUE(SlotBecomes(2, 6, true));
    EXPECT_TRUE(SlotBecomes(2, 1, false));
}

} // namespace
