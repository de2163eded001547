#include <sys/stat.h>
#include <unistd.h>

#include <chrono>

#include "host/files/monitor/EntryComparison.h"
#include "tests/host/files/MonitorFixture.h"

namespace test {

class EntriesTest : public MonitorTest {};

TEST_F(EntriesTest, MoveIsOneChangeWithBothFolders) {
    int64 node = NodeOf("a/one");
    Rename("a/one", "b/uno");
    Rename("b/three", "a/drei");
    Rename("a/two", "a/zwei");
    Flush();
    EXPECT_EQ(Changes().front().node.node, node);
    EXPECT_EQ(TakeLog(3),
              (Texts{"moved uno from a to b", "moved drei from b to a", "moved zwei from a to a"}));
    Rename("away/stranger", "a/guest");
    Flush();
    EXPECT_EQ(Changes().front().directory, 0);
    EXPECT_EQ(TakeLog(1), Texts{"moved guest from ? to a"});
}

TEST_F(EntriesTest, MoveOutEndsTheWatchOfTheNode) {
    Rename("a/one", "away/one");
    Flush();
    EXPECT_EQ(Changes().front().toDirectory, 0);
    EXPECT_EQ(TakeLog(1), Texts{"moved one from a to ?"});
    SetAttribute("away/one", "user.META:url");
    Remove("away/one");
    EXPECT_EQ(TakeLog(0), Texts());
    // Of a node without a watch, the other half is waited for.
    Stop(Know("a/two"));
    Rename("a/two", "away/two");
    EXPECT_EQ(TakeLog(1), Texts{"moved two from a to ?"});
}

// A busy machine may take longer than the grace time.
TEST_F(EntriesTest, HalvesOfAMoveMayComeApart) {
    Stop(Know("a/one"));
    for (int attempt = 0; attempt < 100; attempt++) {
        Rename("a/one", "away/one");
        Flush();
        Rename("away/one", "b/one");
        Texts log = TakeLog(1);
        if (log == Texts{"moved one from a to b"})
            return;
        ASSERT_EQ(log, (Texts{"moved one from a to ?", "moved one from ? to b"}));
        Rename("b/one", "a/one");
        TakeLog(1);
    }
    FAIL() << "always two changes";
}

TEST_F(EntriesTest, ReplacedTargetIsRemovedBeforeTheMove) {
    for (const auto& [from, source] : {std::pair{"a/one", "a"}, {"away/stranger", "?"}}) {
        int64 replaced = NodeOf("a/two");
        Rename(from, "a/two");
        Flush();
        EXPECT_EQ(Changes().front().node.node, replaced);
        EXPECT_EQ(TakeLog(2),
                  (Texts{"removed a/two", std::string("moved two from ") + source + " to a"}));
    }
}

TEST_F(EntriesTest, ExchangeIsTwoMovesAndBothNamesStayKnown) {
    int64 one = NodeOf("a/one");
    int64 two = NodeOf("a/two");
    Exchange("a/one", "a/two");
    Flush();
    EXPECT_EQ(Changes().front().node.node, one);
    EXPECT_EQ(TakeLog(2), (Texts{"moved two from a to a", "moved one from a to a"}));
    Remove("a/one");
    Flush();
    EXPECT_EQ(Changes().front().node.node, two);
    EXPECT_EQ(TakeLog(1), Texts{"removed a/one"});
    Exchange("a/two", "away/stranger");
    EXPECT_EQ(TakeLog(2), (Texts{"moved two from a to ?", "moved two from ? to a"}));
}

TEST_F(EntriesTest, ChainsAreNotifiedByTheirResult) {
    AtOnce([&] {
        Rename("a/one", "b/hop");
        Rename("b/hop", "a/hop");
        Rename("a/hop", "b/uno");
        Rename("a/two", "a/tmp");
        Rename("a/tmp", "a/two");
        Rename("b/three", "a/drei");
        Remove("a/drei");
    });
    EXPECT_EQ(TakeLog(2), (Texts{"removed b/three", "moved uno from a to b"}));
}

TEST_F(EntriesTest, FolderTakesItsWatchedContentsAlong) {
    AtOnce([&] {
        MakeFolder("a/inner");
        MakeFile("a/inner/file");
        Watch("a/inner", kFolder);
        Watch("a/inner/file", kFile);
        Rename("a/inner", "b/inner");
        MakeFolder("b/inner/new");
    });
    EXPECT_EQ(TakeLog(2), (Texts{"moved inner from a to b", "created ?/new"}));
    AtOnce([&] {
        Rename("b", "a/b");
        SetAttribute("a/b/inner/file", "user.META:url");
        Rename("a/b/inner/file", "a/b/inner/datei");
    });
    EXPECT_EQ(TakeLog(3), (Texts{"moved b from . to a", "moved datei from ? to ?", "attributes"}));
}

TEST_F(EntriesTest, HardLinksAreEntriesOfTheirOwn) {
    ASSERT_EQ(link(In("a/one").c_str(), In("a/link").c_str()), 0);
    ASSERT_TRUE(WaitForLast("created a/link"));
    fLog->Clear();
    Rename("a/link", "a/renamed");
    Rename("a/renamed", "a/one"); // Two links of one node: nothing happens, both stay.
    EXPECT_EQ(TakeLog(1), Texts{"moved renamed from a to a"});
    Remove("a/one");
    EXPECT_EQ(TakeLog(2), (Texts{"removed a/one", "attributes"})) << "the other link remains";
}

TEST_F(EntriesTest, NewFileIsAnnouncedWhenItIsQuietAndAgainWhenItsTypeComes) {
    auto start = std::chrono::steady_clock::now();
    MakeFile("a/file");
    EXPECT_EQ(TakeLog(1), Texts{"created a/file"});
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50))
        << "too early for a program that sets attributes last";
    SetAttribute("a/file", "user.mime_type");
    SetAttribute("a/file", "user.META:url");
    EXPECT_EQ(TakeLog(1), Texts{"created a/file"});
    // A type that changes later is nothing new.
    SetAttribute("a/file", "user.mime_type");
    MakeFile("a/last");
    EXPECT_EQ(TakeLog(1), Texts{"created a/last"});
}

TEST_F(EntriesTest, OddNodesAndNamesAreAnnouncedAtOnceAndNeverOpened) {
    Texts expected = {"created a/fifo", "created a/dangling"};
    ASSERT_EQ(mkfifo(In("a/fifo").c_str(), 0666), 0);
    ASSERT_EQ(symlink("nowhere", In("a/dangling").c_str()), 0);
    for (const std::string& name :
         {std::string("new\nline"), std::string("\xff\xfe"), std::string(255, 'x')}) {
        MakeFolder("a/" + name);
        expected.push_back("created a/" + name);
    }
    Flush();
    EXPECT_EQ(Log(), expected);
    Watch("a/fifo", kFile);
}

TEST_F(EntriesTest, SavingThroughAnotherFileReplacesTheNode) {
    AtOnce([&] {
        MakeFile("a/.one.tmp");
        Rename("a/.one.tmp", "a/one");
    });
    EXPECT_EQ(TakeLog(2), (Texts{"removed a/one", "created a/one"}));
    AtOnce([&] {
        Rename("a/two", "a/two~");
        MakeFile("a/two");
        Remove("a/two~");
    });
    EXPECT_EQ(TakeLog(2), (Texts{"removed a/two", "created a/two"}));
    // Common disks give the new node the inode of the removed one.
    AtOnce([&] {
        Remove("b/three");
        MakeFile("b/three");
    });
    EXPECT_EQ(TakeLog(2), (Texts{"removed b/three", "created b/three"}));
    Watch("b/three", kFile);
    SetAttribute("b/three", "user.META:url");
    EXPECT_EQ(TakeLog(1), Texts{"attributes"});
}

} // namespace test
