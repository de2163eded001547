#include <fstream>
#include <thread>

#include "kits/app/Message.h"

#include "tests/quillbar/store/Store.h"

namespace {

class MonitorTest : public StoreTest {
protected:
    // Whether the folder's title becomes this, which a new binding shows.
    testing::AssertionResult TitleBecomes(int folder, const std::string& title) {
        if (test::WaitUntil([&] { return Title(folder) == title; }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << '"' << Title(folder) << '"';
    }
};

TEST_F(MonitorTest, ExistingFoldersAreTakenAndOthersIgnored) {
    test::MakeBookmark(Root() / "4 - a" / "0 - from a", "http://a");
    fs::create_directories(Root() / "no number");
    test::MakeBookmark(Root() / "5 - a file", "http://x");
    Start();
    EXPECT_EQ(Label(4, 0), "0 - from a");
    EXPECT_EQ(Title(5), "5 -");
    EXPECT_TRUE(fs::is_directory(Root() / "5 -"));
}

TEST_F(MonitorTest, RootMayBeALinkToADirectory) {
    test::MakeBookmark(fHome.Path() / "synced" / "4 - a" / "0 - there", "http://a");
    fs::create_symlink(fHome.Path() / "synced", Root());
    Start();
    EXPECT_EQ(Label(4, 0), "0 - there");
    test::MakeBookmark(fHome.Path() / "synced" / "4 - a" / "1 - later", "http://b");
    EXPECT_TRUE(Becomes(4, 1, "1 - later"));
    fs::rename(fHome.Path() / "synced" / "4 - a", fHome.Path() / "synced" / "4 - b");
    EXPECT_TRUE(TitleBecomes(4, "4 - b"));
}

// As by hand with the system's tools, each step seen by the store before the next one.
TEST_F(MonitorTest, BookmarkMadeStepByStepEndsComplete) {
    const std::pair<std::string, std::string> attributes[] = {
        {"mime_type", test::kBookmarkType}, {"META:url", "http://made"}, {"META:keyw", ""}};
    Start();
    int slot = 0;
    for (std::vector<int> order : {std::vector{0, 1, 2}, {1, 2, 0}, {2, 0, 1}}) {
        const std::string name = std::to_string(slot) + " - made";
        const fs::path file = Folder(7) / name;
        std::ofstream(file).flush();
        EXPECT_TRUE(Becomes(7, slot, name));
        for (const int step : order) {
            test::SetAttribute(file, attributes[step].first, attributes[step].second);
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
        }
        EXPECT_TRUE(Becomes(7, slot, name));
        EXPECT_TRUE(test::WaitUntil([&] { return Url(7, slot) == "http://made"; }));
        ++slot;
    }
}

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
    test::MakeBookmark(Root() / "1 - x" / "8 - stays", "http://x");
    Start();
    ASSERT_EQ(Label(1, 4), "4 - gone");
    const auto start = std::chrono::steady_clock::now();
    for (int slot = 0; slot < 5; ++slot)
        fs::remove(Folder(1) / (std::to_string(slot) + " - gone"));
    for (int slot = 0; slot < 5; ++slot)
        EXPECT_TRUE(Becomes(1, slot, kEmptyLabel));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(950));
    EXPECT_EQ(Label(1, 8), "8 - stays");
    EXPECT_EQ(Rebuilds(), 1);
    // The store watches again.
    test::MakeBookmark(Folder(1) / "0 - again", "http://x");
    EXPECT_TRUE(Becomes(1, 0, "0 - again"));
}

TEST_F(MonitorTest, DigitTakenAwayEmptiesTheSlotOrFillsItWithAnother) {
    test::MakeBookmark(Root() / "1 - x" / "3 - one", "http://one");
    Start();
    fs::rename(Folder(1) / "3 - one", Folder(1) / "5 - one");
    EXPECT_TRUE(Becomes(1, 3, kEmptyLabel));
    // Any next creation reads the whole folder.
    test::MakeBookmark(Folder(1) / "0 - other", "http://x");
    EXPECT_TRUE(Becomes(1, 5, "5 - one"));

    test::MakeBookmark(Folder(1) / "5 - two", "http://two");
    const std::string shown = Label(1, 5);
    const std::string hidden = shown == "5 - one" ? "5 - two" : "5 - one";
    fs::rename(Folder(1) / shown, Folder(1) / "7 - moved");
    EXPECT_TRUE(Becomes(1, 5, hidden));
}

TEST_F(MonitorTest, UnknownFileRenamedToADigitFillsItsEmptySlot) {
    test::MakeBookmark(Root() / "1 - x" / "unknown", "http://x");
    test::MakeBookmark(Root() / "1 - x" / "4 - taken", "http://taken");
    test::MakeBookmark(Root() / "1 - x" / "other", "http://other");
    Start();
    fs::rename(Folder(1) / "unknown", Folder(1) / "2 - known");
    EXPECT_TRUE(Becomes(1, 2, "2 - known"));
    fs::rename(Folder(1) / "other", Folder(1) / "4 - second");
    fs::rename(Folder(1) / "2 - known", Folder(1) / "2 - marker");
    ASSERT_TRUE(Becomes(1, 2, "2 - marker"));
    EXPECT_EQ(Label(1, 4), "4 - taken");
}

TEST_F(MonitorTest, MoveBetweenFoldersUpdatesTheFirstOfTheTwo) {
    test::MakeBookmark(Root() / "2 - a" / "0 - x", "http://x");
    test::MakeBookmark(Root() / "5 - b" / "1 - y", "http://y");
    Start();
    fs::rename(Folder(2) / "0 - x", Folder(5) / "0 - x");
    EXPECT_TRUE(Becomes(2, 0, kEmptyLabel));
    fs::rename(Folder(5) / "1 - y", Folder(2) / "1 - y");
    EXPECT_TRUE(Becomes(2, 1, "1 - y"));
    // The other follows with its next full scan.
    test::MakeBookmark(Folder(5) / "9 - z", "http://z");
    EXPECT_TRUE(Becomes(5, 0, "0 - x"));
    EXPECT_TRUE(Becomes(5, 1, kEmptyLabel));
}

TEST_F(MonitorTest, ReplacedBookmarkIsReadAnew) {
    test::MakeBookmark(Root() / "1 - x" / "3 - x", "http://old");
    test::MakeBookmark(fHome.Path() / "new", "http://new");
    Start();
    fs::rename(fHome.Path() / "new", Folder(1) / "3 - x");
    EXPECT_TRUE(test::WaitUntil([&] { return Url(1, 3) == "http://new"; }));
    EXPECT_EQ(Label(1, 3), "3 - x");
}

TEST_F(MonitorTest, FolderThatLosesItsDigitIsReplaced) {
    test::MakeBookmark(Root() / "4 - old" / "3 - x", "http://x");
    Start();
    fs::rename(Folder(4), Root() / "old");
    EXPECT_TRUE(TitleBecomes(4, "4 -"));
    EXPECT_TRUE(Becomes(4, 3, kEmptyLabel));
    EXPECT_TRUE(fs::exists(Root() / "old" / "3 - x"));
    test::MakeBookmark(Root() / "4 -" / "1 - later", "http://x");
    EXPECT_TRUE(Becomes(4, 1, "1 - later"));
}

TEST_F(MonitorTest, FolderMovedOutIsReplacedByAnotherOrMade) {
    test::MakeBookmark(Root() / "4 - one" / "3 - one", "http://x");
    Start();
    fs::create_directories(Root() / "4 - two");
    test::MakeBookmark(Root() / "4 - two" / "3 - two", "http://x");
    EXPECT_EQ(Label(4, 3), "3 - one");
    fs::rename(Root() / "4 - one", fHome.Path() / "away");
    EXPECT_TRUE(Becomes(4, 3, "3 - two"));
    EXPECT_EQ(Title(4), "4 - two");
    test::MakeBookmark(Root() / "4 - two" / "1 - later", "http://x");
    EXPECT_TRUE(Becomes(4, 1, "1 - later"));
    fs::rename(Root() / "4 - two", fHome.Path() / "away2");
    EXPECT_TRUE(TitleBecomes(4, "4 -"));
    EXPECT_EQ(Rebuilds(), 0);
}

TEST_F(MonitorTest, NewFolderIsNotAdoptedBeforeARebuild) {
    Start();
    fs::create_directories(Root() / "0 - second");
    test::MakeBookmark(Folder(1) / "0 - marker", "http://x");
    ASSERT_TRUE(Becomes(1, 0, "0 - marker"));
    EXPECT_EQ(Title(0), "0 -");
    fs::remove_all(Root() / "0 -");
    EXPECT_TRUE(TitleBecomes(0, "0 - second"));
}

TEST_F(MonitorTest, MessagesWithoutTheirFieldsChangeNothing) {
    test::MakeBookmark(Root() / "4 - x" / "3 - x", "http://x");
    Start();
    fStore->Lock();
    for (int32 opcode : {-1, 0, 1, 3, 4, 5, 77}) {
        BMessage message('NDMN');
        if (opcode >= 0)
            message.AddInt32("opcode", opcode);
        EXPECT_TRUE(fStore->fMonitor->HandleNodeMessage(&message));
    }
    fStore->Unlock();
    EXPECT_EQ(Label(4, 3), "3 - x");
    EXPECT_EQ(Title(4), "4 - x");
}

} // namespace
