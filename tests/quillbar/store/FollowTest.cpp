// Changes that once were lost, or led the store astray.

#include <chrono>
#include <fstream>
#include <sched.h>
#include <thread>
#include <unistd.h>

#include "kits/app/MessageQueue.h"
#include "tests/quillbar/store/Store.h"

namespace {

class FollowTest : public StoreTest {
protected:
    // Does `work` while the store's thread is busy, until `count` messages wait behind the one that
    // the looper holds.
    template <typename Work>
    void WhileBusy(int count, Work work) {
        fStore->Lock();
        work();
        AwaitMessages(count);
        fStore->Unlock();
    }
    void AwaitMessages(int count) {
        EXPECT_TRUE(
            test::WaitUntil([&] { return fStore->MessageQueue()->CountMessages() >= count; }));
    }
};

TEST_F(FollowTest, BookmarkThatGotAnotherSlotIsFollowedThere) {
    test::MakeBookmark(Root() / "1 - x" / "1 - a", "http://a");
    Start();
    fs::rename(Folder(1) / "1 - a", Folder(1) / "5 - a");
    EXPECT_TRUE(Becomes(1, 1, kEmptyLabel));
    test::MakeBookmark(Folder(1) / "9 - marker", "http://x");
    ASSERT_TRUE(Becomes(1, 5, "5 - a"));
    test::SetUrl(Folder(1) / "5 - a", "http://changed");
    EXPECT_TRUE(UrlBecomes(1, 5, "http://changed"));
    fs::rename(Folder(1) / "5 - a", fHome.Path() / "away");
    EXPECT_TRUE(Becomes(1, 5, kEmptyLabel));
    EXPECT_EQ(Url(1, 5), "");
}

TEST_F(FollowTest, FolderRenamedBehindAQueuedMessageIsFound) {
    for (const char* name : {"1 - new", "2 - newer"})
        test::MakeBookmark(fHome.Path() / name, "http://new");
    test::MakeBookmark(Root() / "3 - News" / "0 - old", "http://old");
    Start();
    WhileBusy(2, [&] {
        for (const char* name : {"1 - new", "2 - newer"})
            fs::rename(fHome.Path() / name, Root() / "3 - News" / name);
        AwaitMessages(1);
        fs::rename(Root() / "3 - News", Root() / "3 - Fresh");
    });
    EXPECT_TRUE(Becomes(3, 2, "2 - newer"));
    EXPECT_TRUE(TitleBecomes(3, "3 - Fresh"));
    EXPECT_EQ(Label(3, 0), "0 - old");
    EXPECT_FALSE(fs::exists(Root() / "3 -"));
}

TEST_F(FollowTest, NoChangeFallsBetweenTwoLooks) {
    const fs::path file = Root() / "1 - x" / "2 - a";
    test::MakeBookmark(file, "http://a");
    Start();
    for (int round = 0; round < 300; ++round) {
        const std::string url = "http://" + std::to_string(round);
        test::SetUrl(file, "http://first");
        const auto end = std::chrono::steady_clock::now() + std::chrono::microseconds(60 + round);
        while (std::chrono::steady_clock::now() < end) {
        }
        test::SetUrl(file, url);
        ASSERT_TRUE(UrlBecomes(1, 2, url)) << round;
    }
}

// Of the two folders of a move the first one follows at once.
TEST_F(FollowTest, StaleSlotKeepsItsHandsOffAWatch) {
    test::MakeBookmark(Root() / "2 - a" / "0 - x", "http://x");
    test::MakeBookmark(Root() / "5 - b" / "1 - y", "http://y");
    Start();
    fs::rename(Folder(2) / "0 - x", Folder(5) / "0 - x");
    EXPECT_TRUE(Becomes(2, 0, kEmptyLabel));
    fs::rename(Folder(5) / "1 - y", Folder(2) / "1 - y");
    ASSERT_TRUE(Becomes(2, 1, "1 - y"));
    test::MakeBookmark(Folder(5) / "9 - other", "http://x");
    EXPECT_TRUE(Becomes(5, 0, "0 - x"));
    ASSERT_TRUE(Becomes(5, 1, kEmptyLabel));
    test::SetUrl(Folder(2) / "1 - y", "http://changed");
    EXPECT_TRUE(UrlBecomes(2, 1, "http://changed"));
}

TEST_F(FollowTest, ArrivalsThatWaitAreOneScan) {
    constexpr int kCount = 2000;
    const fs::path outside = fHome.Path() / "outside";
    fs::create_directory(outside);
    for (int i = 0; i < kCount; ++i)
        std::ofstream(outside / std::to_string(i)).flush();
    test::MakeBookmark(outside / "last", "http://last");
    Start();
    const int before = Messages();
    // The looper holds one of them already.
    WhileBusy(kCount - 1, [&] {
        for (int i = 0; i < kCount; ++i)
            fs::rename(outside / std::to_string(i), Folder(1) / std::to_string(i));
    });
    fs::rename(outside / "last", Folder(1) / "1 - last");
    EXPECT_TRUE(Becomes(1, 1, "1 - last"));
    EXPECT_TRUE(test::WaitUntil([&] { return fStore->MessageQueue()->CountMessages() == 0; }));
    EXPECT_LT(Messages() - before, 100);
}

// An arrival in one folder may be a departure from an earlier one, or of a whole folder.
TEST_F(FollowTest, DeparturesBehindAnArrivalAreSeen) {
    test::MakeBookmark(fHome.Path() / "new", "http://new");
    test::MakeBookmark(Root() / "1 - a" / "2 - x", "http://x");
    test::MakeBookmark(Root() / "5 - c" / "6 - y", "http://y");
    test::MakeBookmark(Root() / "3 - b" / "0 - old", "http://old");
    Start();
    WhileBusy(2, [&] {
        fs::rename(fHome.Path() / "new", Folder(3) / "9 - new");
        fs::rename(Folder(1) / "2 - x", Folder(3) / "2 - x");
        fs::rename(Folder(5), Folder(3) / "5 - c");
    });
    EXPECT_TRUE(Becomes(3, 9, "9 - new"));
    EXPECT_TRUE(Becomes(1, 2, kEmptyLabel));
    EXPECT_TRUE(Becomes(5, 6, kEmptyLabel));
    EXPECT_TRUE(TitleBecomes(5, "5 -"));
    EXPECT_EQ(Rebuilds(), 0);
}

TEST_F(FollowTest, RootThatIsNoDirectoryIsWaitedFor) {
    test::MakeBookmark(Root() / "4 - x" / "3 - a", "http://a");
    Start();
    const fs::path away = fHome.Config() / "away";
    WhileBusy(0, [&] {
        fs::rename(Root(), away);
        std::ofstream(Root()) << "a file";
    });
    EXPECT_TRUE(Becomes(4, 3, kEmptyLabel));
    EXPECT_TRUE(fs::is_regular_file(Root()));
    for (const char* target : {"absent", "Quillbar"}) { // a dangling link, and one to itself
        fs::remove(Root());
        fs::create_symlink(target, Root());
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_FALSE(fs::exists(fHome.Config() / "absent"));
    }
    fs::remove(Root());
    fs::rename(away, Root());
    EXPECT_TRUE(Becomes(4, 3, "3 - a"));
    test::SetUrl(Root() / "4 - x" / "3 - a", "http://changed");
    EXPECT_TRUE(UrlBecomes(4, 3, "http://changed"));
}

TEST_F(FollowTest, FolderThatIsRenamedAllTheTimeIsFound) {
    test::MakeBookmark(Root() / "4 - a" / "3 - a", "http://a");
    Start();
    for (int round = 0; round < 5'000; ++round) {
        fs::rename(Root() / "4 - a", Root() / "4 - b");
        fs::rename(Root() / "4 - b", Root() / "4 - a");
    }
    fs::rename(Root() / "4 - a", Root() / "4 - end");
    EXPECT_TRUE(TitleBecomes(4, "4 - end"));
    EXPECT_TRUE(Becomes(4, 3, "3 - a"));
}

// Where watches are scarce directories come first, and the rest is read on Refresh().
TEST_F(FollowTest, WithFewWatchesAllIsSeenWhenAsked) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (const char* folder : {"0 - f", "1 - f", "2 - f", "3 - f", "4 - f", "9 - f"}) {
        for (int slot = 0; slot < 9; ++slot)
            test::MakeBookmark(Root() / folder / (std::to_string(slot) + " - a"), "http://a");
    }
    const auto follow = [this](int count) {
        const std::string user = "0 " + std::to_string(getuid()) + " 1";
        bool isSeen = unshare(CLONE_NEWUSER) == 0;
        std::ofstream("/proc/self/uid_map") << user;
        std::ofstream("/proc/sys/user/max_inotify_watches") << count;
        Start();
        test::MakeBookmark(Folder(9) / "9 - new", "http://new");
        isSeen = isSeen && (count < 11 || Becomes(9, 9, "9 - new"));
        test::SetUrl(Folder(9) / "8 - a", "http://changed");
        fStore->PostMessage(B_NODE_MONITOR);
        isSeen = isSeen && UrlBecomes(9, 8, "http://changed") && Becomes(9, 9, "9 - new");
        fs::remove_all(fHome.Path());
        _exit(isSeen ? EXIT_SUCCESS : EXIT_FAILURE);
    };
    for (const int count : {50, 11, 3, 0}) {
        EXPECT_EXIT(follow(count), testing::ExitedWithCode(EXIT_SUCCESS),
                    "The limit is in /proc/sys/fs/inotify/max_user_watches.")
            << count;
    }
}

} // namespace
