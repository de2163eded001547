#include <unistd.h>

#include "host/files/monitor/EntryComparison.h"
#include "host/files/monitor/NodeMonitor.h"
#include "host/loop/ServiceLoop.h"
#include "tests/host/files/MonitorFixture.h"

using testing::Test;
using Texts = std::vector<std::string>;

namespace test {

// With "a" and "b" watched, and the folder's files too, by one listener: as the program does.
class MoveTest : public MonitorTest {
protected:
    MoveTest() {
        Watch("b", kFolder);
        MakeFile("away/stranger");
        for (const char* name : {"a/one", "a/two", "b/three"})
            MakeFile(name);
        Settle();
        for (const char* name : {"a/one", "a/two", "b/three"})
            Watch(name, kFile);
    }

    // New files are told late.
    void Settle() {
        EXPECT_TRUE(WaitForTold(3));
        fRecorder->Clear();
    }
};

TEST_F(MoveTest, MoveBetweenWatchedFoldersIsToldOnceWithBoth) {
    int64 node = NodeOf("a/one");
    Rename("a/one", "b/uno");
    Rename("b/three", "a/drei");
    Rename("a/two", "a/zwei");
    Flush();
    ASSERT_EQ(Told(),
              (Texts{"moved uno from a to b", "moved drei from b to a", "moved zwei from a to a"}));
    EXPECT_EQ(Changes().front().node.node, node);
}

TEST_F(MoveTest, MoveInHasNoSource) {
    int64 node = NodeOf("away/stranger");
    Rename("away/stranger", "a/guest");
    Flush();
    ASSERT_EQ(Told(), Texts{"moved guest from ? to a"});
    EXPECT_EQ(Changes().front().directory, 0);
    EXPECT_EQ(Changes().front().node.node, node);
}

TEST_F(MoveTest, MoveOutOfAWatchedFileIsToldAtOnce) {
    Rename("a/one", "away/one");
    Flush();
    ASSERT_EQ(Told(), Texts{"moved one from a to ?"});
    EXPECT_EQ(Changes().front().toDirectory, 0);
    // It is watched no more.
    fRecorder->Clear();
    SetAttribute("away/one", "META:url", "x");
    Remove("away/one");
    Flush();
    EXPECT_EQ(Told(), Texts());
}

TEST_F(MoveTest, MoveOutOfAnUnwatchedFileIsToldAfterTheGraceTime) {
    int64 node = NodeOf("a/two");
    Stop(Know("a/two"));
    Rename("a/two", "away/two");
    ASSERT_TRUE(WaitForTold(1));
    EXPECT_EQ(Told(), Texts{"moved two from a to ?"});
    EXPECT_EQ(Changes().front().node.node, node);
}

TEST_F(MoveTest, ReplacedTargetIsRemovedBeforeTheMove) {
    for (const auto& [from, source] : {std::pair{"a/one", "a"}, {"away/stranger", "?"}}) {
        int64 replaced = NodeOf("a/two");
        fRecorder->Clear();
        Rename(from, "a/two");
        Flush();
        ASSERT_EQ(Told(),
                  (Texts{"removed a/two", std::string("moved two from ") + source + " to a"}));
        EXPECT_EQ(Changes().front().node.node, replaced);
    }
}

TEST_F(MoveTest, ExchangeIsTwoMovesAndBothNamesStayKnown) {
    int64 one = NodeOf("a/one");
    int64 two = NodeOf("a/two");
    Exchange("a/one", "a/two");
    Flush();
    ASSERT_EQ(Told(), (Texts{"moved two from a to a", "moved one from a to a"}));
    EXPECT_EQ(Changes()[0].node.node, one);
    EXPECT_EQ(Changes()[1].node.node, two);

    fRecorder->Clear();
    Remove("a/one");
    Remove("a/two");
    Flush();
    ASSERT_EQ(Told(), (Texts{"removed a/one", "removed a/two"}));
    EXPECT_EQ(Changes()[0].node.node, two);
    EXPECT_EQ(Changes()[1].node.node, one);
}

TEST_F(MoveTest, ExchangeWithAnUnwatchedFolderIsAMoveOutAndAMoveIn) {
    Exchange("a/one", "away/stranger");
    ASSERT_TRUE(WaitForTold(2));
    EXPECT_EQ(Told(), (Texts{"moved one from a to ?", "moved one from ? to a"}));
}

// While the service thread is held up everything happens before anything is read.
TEST_F(MoveTest, ManyMovesAtOnceAreToldByTheirResult) {
    host::ServiceLoop::Shared().InvokeAndWait([&] {
        Rename("a/one", "b/hop");
        Rename("b/hop", "a/hop");
        Rename("a/hop", "b/uno");
        Rename("a/two", "a/tmp");
        Rename("a/tmp", "a/two");
    });
    Flush();
    EXPECT_EQ(Told(), Texts{"moved uno from a to b"});
}

TEST_F(MoveTest, MovedAndRemovedAtOnceIsARemoval) {
    host::ServiceLoop::Shared().InvokeAndWait([&] {
        Rename("a/one", "b/uno");
        Remove("b/uno");
    });
    Flush();
    EXPECT_EQ(Told(), Texts{"removed a/one"});
}

TEST_F(MoveTest, FolderTakesItsWatchedContentsAlong) {
    MakeFolder("a/inner");
    MakeFile("a/inner/file");
    Watch("a/inner", kFolder);
    Watch("a/inner/file", kFile);
    Rename("a/inner", "b/inner");
    Flush();
    fRecorder->Clear();
    SetAttribute("b/inner/file", "META:url", "x");
    Flush();
    Rename("b/inner/file", "b/inner/datei");
    Flush();
    EXPECT_EQ(Told(), (Texts{"attributes", "moved datei from ? to ?"}));
}

TEST_F(MoveTest, WatchedFolderThatIsMovedBeforeItWasToldIsFollowed) {
    host::ServiceLoop::Shared().InvokeAndWait([&] {
        MakeFolder("a/inner");
        Watch("a/inner", kFolder);
        Rename("a/inner", "b/inner");
        MakeFolder("b/inner/new");
    });
    Flush();
    EXPECT_EQ(Told(), (Texts{"moved inner from a to b", "created ?/new"}));
}

TEST_F(MoveTest, HardLinksAreEntriesOfTheirOwn) {
    ASSERT_EQ(link(In("a/one").c_str(), In("a/link").c_str()), 0);
    ASSERT_TRUE(WaitForLast("created a/link"));
    fRecorder->Clear();
    Rename("a/link", "a/renamed");
    Rename("a/renamed", "a/one"); // Two links of one node: nothing happens, both stay.
    Flush();
    EXPECT_EQ(Told(), Texts{"moved renamed from a to a"});
    fRecorder->Clear();
    Remove("a/one");
    Flush();
    EXPECT_EQ(Told(), (Texts{"removed a/one", "attributes"})) << "the other link is still there";
}

} // namespace test
