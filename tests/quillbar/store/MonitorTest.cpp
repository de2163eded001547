// What the menus show of the directories, and how soon.

#include <fstream>
#include <sys/stat.h>
#include <thread>

#include "tests/quillbar/store/Store.h"

namespace {

class MonitorTest : public StoreTest {};

TEST_F(MonitorTest, FilesFillTheSlotsOfTheirDigits) {
    const fs::path folder = Root() / "3 - News";
    const fs::path elsewhere = fHome.Path() / "elsewhere";
    for (const char* name : {"9 - Last", "4 - a", "4 - b", "4 - c", "no number", "12 - two digits"})
        test::MakeBookmark(folder / name, std::string("http://") + name);
    test::SetAttribute(folder / "9 - Last", "mime_type", "Application/X-VND.Be-Bookmark");
    test::MakeBookmark(folder / "5 - a directory" / "6 - deeper", "http://x");
    test::MakeBookmark(elsewhere / "7 - target", "http://target");
    fs::create_symlink(elsewhere / "7 - target", folder / "2 - link");
    fs::create_symlink(elsewhere, folder / "3 - link to a directory");
    test::MakeBookmark(Root() / "5 - a file", "http://x");
    // Of several with a digit the disk's own order decides.
    std::vector<std::string> expected(10, kEmptyLabel);
    expected[9] = "9 - Last";
    expected[7] = "7 - target";
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (const std::string name = entry.path().filename();
            name.starts_with("4") && expected[4] == kEmptyLabel)
            expected[4] = name;
    }
    Start();
    EXPECT_EQ(Title(3), "3 - News");
    for (int slot = 0; slot < 10; ++slot)
        EXPECT_EQ(Label(3, slot), expected[slot]);
    EXPECT_EQ(Url(3, 9), "http://9 - Last");
    EXPECT_TRUE(fs::is_directory(Root() / "5 -"));
}

TEST_F(MonitorTest, RootMayBeALinkToADirectory) {
    const fs::path synced = fHome.Path() / "synced";
    test::MakeBookmark(synced / "4 - a" / "0 - there", "http://a");
    fs::create_symlink(synced, Root());
    Start();
    EXPECT_EQ(Label(4, 0), "0 - there");
    test::MakeBookmark(synced / "4 - a" / "1 - later", "http://b");
    EXPECT_TRUE(Becomes(4, 1, "1 - later"));
    fs::rename(synced / "4 - a", synced / "4 - b");
    EXPECT_TRUE(TitleBecomes(4, "4 - b"));
}

// As by hand with the system's tools, each step seen by the store before the next one.
TEST_F(MonitorTest, BookmarkMadeStepByStepEndsComplete) {
    const std::pair<std::string, std::string> attributes[] = {
        {"mime_type", test::kBookmarkType}, {"META:url", "http://made"}, {"META:keyw", ""}};
    Start();
    int slot = 0;
    for (const std::vector<int>& order : {std::vector{0, 1, 2}, {1, 2, 0}, {2, 0, 1}}) {
        const std::string name = std::to_string(slot) + " - made";
        const fs::path file = Folder(7) / name;
        std::ofstream(file).flush();
        EXPECT_TRUE(Becomes(7, slot, name));
        for (const int step : order) {
            test::SetAttribute(file, attributes[step].first, attributes[step].second);
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
        }
        EXPECT_TRUE(Becomes(7, slot, name));
        EXPECT_TRUE(UrlBecomes(7, slot, "http://made"));
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
    Start();
    // A second folder with a digit is not adopted before.
    fs::create_directories(Root() / "0 - second");
    test::MakeBookmark(Folder(1) / "8 - stays", "http://x");
    ASSERT_TRUE(Becomes(1, 8, "8 - stays"));
    EXPECT_EQ(Title(0), "0 -");
    const auto start = std::chrono::steady_clock::now();
    fs::remove(Root() / "0 -");
    for (int slot = 0; slot < 5; ++slot)
        fs::remove(Folder(1) / (std::to_string(slot) + " - gone"));
    for (int slot = 0; slot < 5; ++slot)
        EXPECT_TRUE(Becomes(1, slot, kEmptyLabel));
    EXPECT_TRUE(TitleBecomes(0, "0 - second"));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(950));
    EXPECT_EQ(Rebuilds(), 1);
    EXPECT_EQ(Label(1, 8), "8 - stays");
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
    test::MakeBookmark(Root() / "4 - two" / "1 - later", "http://x");
    EXPECT_TRUE(Becomes(4, 1, "1 - later"));
    EXPECT_EQ(Rebuilds(), 0);
}

} // namespace
