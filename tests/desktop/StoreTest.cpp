// The menus follow the disk while the program runs.

#include <sys/xattr.h>
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
    Picture Label(int folder, int slot) {
        const FolderMenu menu = OpenFolder(folder);
        CloseMenus();
        return menu.Label(slot);
    }
};

TEST_F(StoreTest, MenusFollowTheDisk) {
    const Picture before = Label(2, 1);
    fs::rename(BookmarkPath(2, "1 - One"), BookmarkPath(2, "1 - Uno"));
    EXPECT_TRUE(WaitUntil([&] { return Label(2, 1) != before; }));
    AddBookmark(2, "7 - New", "http://new.example/");
    EXPECT_TRUE(SlotBecomes(2, 7, true));
    const fs::path outside = fHome.Path() / "4 - Other";
    fs::rename(BookmarkPath(2, "3 - Three"), outside);
    EXPECT_TRUE(SlotBecomes(2, 3, false));
    fs::rename(outside, BookmarkPath(5, "4 - Other"));
    EXPECT_TRUE(SlotBecomes(5, 4, true));
    ChooseSlot(5, 4);
    EXPECT_EQ(LastUrl(1), "http://three.example/");
    removexattr(BookmarkPath(2, "1 - Uno").c_str(), "user.META:url");
    EXPECT_TRUE(SlotBecomes(2, 1, false));
    fs::rename(fProgram.Root() / "2 - Folder", fProgram.Root() / "2 - Renamed folder");
    MakeBookmark(fProgram.Root() / "2 - Renamed folder/8 - Late", "http://late.example/");
    EXPECT_TRUE(SlotBecomes(2, 8, true));
    fs::remove_all(fProgram.Root() / "6 - Folder");
    EXPECT_TRUE(WaitUntil([&] { return fs::is_directory(fProgram.Root() / "6 -"); }));

    std::error_code busy; // the bar may make folders in it meanwhile
    EXPECT_TRUE(WaitUntil([&] { return fs::remove_all(fProgram.Root(), busy) > 0 && !busy; }));
    EXPECT_TRUE(WaitUntil([&] { return fs::is_directory(fProgram.Root() / "9 -"); }));
    EXPECT_TRUE(SlotBecomes(2, 8, false));
    MakeBookmark(fProgram.Root() / "2 -/1 - Anew", "http://anew.example/");
    EXPECT_TRUE(SlotBecomes(2, 1, true));
}

TEST_F(StoreTest, ChangesWhileAMenuIsOpenAreThereWhenItOpensNext) {
    const Box place = OpenFolder(2).Slot(3);
    fs::rename(BookmarkPath(2, "1 - One"), fHome.Path() / "gone");
    AddBookmark(2, "6 - Six", "http://six.example/");
    // Until the bar has been notified, for which a move waits for its other half; the open menu
    // does not show it.
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    Click(place);
    EXPECT_EQ(LastUrl(1), "http://three.example/");
    EXPECT_TRUE(SlotBecomes(2, 6, true));
    EXPECT_TRUE(SlotBecomes(2, 1, false));
}

} // namespace
