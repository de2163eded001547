// What the menus show of the directories, and how soon.

#include <thread>

#include "tests/quillbar/store/Store.h"

namespace {

class MonitorTest : public StoreTest {};

// Whoever waits for a folder to be made anew puts his bookmark there in the same moment.
TEST_F(MonitorTest, BookmarkPutIntoADirectoryAsItAppearsIsSeen) {
    Start();
    for (int round = 0; round < 5; ++round) {
        fs::rename(Root(), fHome.Config() / ("old " + std::to_string(round)));
        for (int folder = 0; folder < 10; ++folder) {
            const fs::path directory = Root() / (std::to_string(folder) + " -");
            const auto end = std::chrono::steady_clock::now() + test::kDeadline;
            while (!fs::exists(directory) && std::chrono::steady_clock::now() < end)
                std::this_thread::yield();
            test::MakeBookmark(directory / "2 - New", "http://new");
        }
        for (int folder = 0; folder < 10; ++folder)
            EXPECT_TRUE(Becomes(folder, 2, "2 - New")) << round;
    }
}

TEST_F(MonitorTest, DeletedBookmarksLeaveAfterASecondWithOneRebuild) {
    for (int slot = 0; slot < 5; ++slot)
        test::MakeBookmark(Root() / "1 - x" / (std::to_string(slot) + " - gone"), "http://x");
    Start();
    const auto start = std::chrono::steady_clock::now();
    for (int slot = 0; slot < 5; ++slot)
        fs::remove(Folder(1) / (std::to_string(slot) + " - gone"));
    for (int slot = 0; slot < 5; ++slot)
        EXPECT_TRUE(Becomes(1, slot, kEmptyLabel));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(950));
    EXPECT_EQ(Rebuilds(), 1);
    // The store watches again.
    test::MakeBookmark(Folder(1) / "0 - again", "http://x");
    EXPECT_TRUE(Becomes(1, 0, "0 - again"));
}

TEST_F(MonitorTest, RenamesInAFolderEmptyFillAndReplaceSlots) {
    for (const char* name : {"5 - one", "5 - two", "unknown", "4 - taken", "other"})
        test::MakeBookmark(Root() / "1 - x" / name, "http://old");
    test::MakeBookmark(fHome.Path() / "new", "http://new");
    Start();
    const std::string shown = Label(1, 5);
    fs::rename(Folder(1) / shown, Folder(1) / "7 - moved");
    EXPECT_TRUE(Becomes(1, 5, shown == "5 - one" ? "5 - two" : "5 - one"));
    fs::rename(Folder(1) / "unknown", Folder(1) / "2 - known");
    EXPECT_TRUE(Becomes(1, 2, "2 - known"));
    fs::rename(Folder(1) / "other", Folder(1) / "4 - second");
    fs::rename(Folder(1) / "2 - known", Folder(1) / "2 - marker");
    ASSERT_TRUE(Becomes(1, 2, "2 - marker"));
    EXPECT_EQ(Label(1, 4), "4 - taken");
    fs::rename(fHome.Path() / "new", Folder(1) / "4 - taken");
    EXPECT_TRUE(UrlBecomes(1, 4, "http://new"));
}

TEST_F(MonitorTest, LongUrlIsCutToFiftyBytes) {
    const std::string fifty(50, 'u');
    gSettings->SetShowURL(true);
    test::MakeBookmark(Root() / "1 - x" / "1 - a", fifty);
    test::MakeBookmark(Root() / "1 - x" / "2 - b", fifty + "v");
    Start();
    EXPECT_EQ(Label(1, 1), "1 - a [" + fifty + "]");
    EXPECT_EQ(Label(1, 2), "2 - b [" + fifty.substr(4) + "....]");
}

// Without a rebuild.
TEST_F(MonitorTest, FolderThatGoesIsReplacedAndIsShownWhenItComesBack) {
    const fs::path one = Root() / "4 - one";
    test::MakeBookmark(one / "3 - a", "http://a");
    Start();
    for (const fs::path& away : {fHome.Path() / "4 - one", Root() / "one"}) {
        fs::rename(one, away);
        EXPECT_TRUE(TitleBecomes(4, "4 -"));
        EXPECT_TRUE(Becomes(4, 3, kEmptyLabel));
        fs::rename(away, one);
        EXPECT_TRUE(TitleBecomes(4, "4 - one"));
        EXPECT_TRUE(Becomes(4, 3, "3 - a"));
    }
    Stop();
    Start();
    EXPECT_EQ(Title(4), "4 - one") << "hidden behind a folder that was made meanwhile";

    test::MakeBookmark(Root() / "4 - two" / "3 - two", "http://x");
    fs::rename(one, Root() / "7 - one");
    EXPECT_TRUE(TitleBecomes(7, "7 - one"));
    EXPECT_TRUE(TitleBecomes(4, "4 - two"));
    EXPECT_TRUE(Becomes(4, 3, "3 - two"));
    EXPECT_EQ(Rebuilds(), 0);
}

} // namespace
