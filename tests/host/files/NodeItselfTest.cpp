#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <thread>

#include "host/files/monitor/NodeMonitor.h"
#include "host/loop/Descriptor.h"
#include "host/loop/ServiceLoop.h"
#include "tests/host/files/MonitorFixture.h"
#include "tests/support/Wait.h"

using Texts = std::vector<std::string>;

namespace test {

// A file and a folder whose own folders are not watched.
class NodeItselfTest : public MonitorTest {
protected:
    NodeItselfTest() {
        MakeFile("b/file");
        SetAttribute("b/file", "META:url", "old");
        Watch("b/file", kFile);
    }
};

TEST_F(NodeItselfTest, AttributesAreToldAtEachChange) {
    SetAttribute("b/file", "META:url", "new");
    Flush();
    ASSERT_EQ(removexattr(In("b/file").c_str(), "user.META:url"), 0);
    Flush();
    EXPECT_EQ(Told(), (Texts{"attributes", "attributes"}));
}

TEST_F(NodeItselfTest, StatusIsToldWhenItIsDifferent) {
    ASSERT_EQ(chmod(In("b/file").c_str(), 0600), 0);
    Flush();
    ASSERT_EQ(chmod(In("b/file").c_str(), 0600), 0);
    Flush();
    ASSERT_EQ(truncate(In("b/file").c_str(), 100), 0);
    Flush();
    EXPECT_EQ(Told(), (Texts{"status", "attributes", "attributes", "status"}));
}

TEST_F(NodeItselfTest, RenameIsFoundInTheUnwatchedFolder) {
    Rename("b/file", "b/datei");
    Flush();
    EXPECT_EQ(Told(), Texts{"moved datei from b to b"});
    fRecorder->Clear();
    SetAttribute("b/datei", "META:url", "new");
    Flush();
    EXPECT_EQ(Told(), Texts{"attributes"});
}

TEST_F(NodeItselfTest, MoveIntoAWatchedFolderIsToldOnceAndFollowed) {
    Rename("b/file", "a/file");
    Flush();
    EXPECT_EQ(Told(), Texts{"moved file from b to a"});
    fRecorder->Clear();
    SetAttribute("a/file", "META:url", "new");
    Flush();
    EXPECT_EQ(Told(), Texts{"attributes"});
}

TEST_F(NodeItselfTest, RemovalIsToldOnceWhileSomebodyHoldsTheFileOpen) {
    for (bool isFolderWatchedToo : {false, true}) {
        if (isFolderWatchedToo) {
            MakeFile("b/file");
            Watch("b/file", kFile);
            Watch("b", kFolder);
        }
        fRecorder->Clear();
        host::Descriptor held(open(In("b/file").c_str(), O_RDONLY | O_CLOEXEC));
        Remove("b/file");
        Flush();
        EXPECT_EQ(Told(), Texts{"removed b/file"});
        held = host::Descriptor();
        Flush();
        EXPECT_EQ(Told(), Texts{"removed b/file"});
    }
}

TEST_F(NodeItselfTest, RootThatIsRenamedKeepsBeingWatched) {
    int64 node = NodeOf("a");
    MakeFolder("a/inner");
    Watch("a/inner", kFolder);
    Flush();
    fRecorder->Clear();
    Rename("a", "b/renamed");
    Flush();
    EXPECT_EQ(Told(), Texts{"moved a from . to ?"}) << "to a folder that nobody watches";

    fRecorder->Clear();
    Watch("b", kFolder);
    Rename("b", "c");
    Flush();
    ASSERT_EQ(Told(), Texts{"moved c from . to ."});
    EXPECT_NE(Changes().front().node.node, node);
    fRecorder->Clear();
    MakeFolder("c/new");
    Flush();
    EXPECT_EQ(Told(), Texts{"created ?/new"});
}

TEST_F(NodeItselfTest, RemovedRootIsToldOnceAfterItsContents) {
    MakeFolder("a/inner");
    Flush();
    Watch("a/inner", kFolder);
    fRecorder->Clear();
    Remove("a/inner");
    Remove("a");
    Flush();
    ASSERT_EQ(Told().size(), 2u);
    EXPECT_EQ(Told().back(), "removed ./a");
}

// The system tells nothing of it: it shows at the next event.
TEST_F(NodeItselfTest, RootWhoseAncestorWasRenamedIsLost) {
    MakeFolder("b/root");
    Watch("b/root", kFolder);
    Rename("b", "c");
    MakeFile("c/root/file");
    ASSERT_TRUE(WaitForTold(1));
    Flush();
    EXPECT_EQ(Told(), Texts{"removed ?/root"});
}

TEST_F(NodeItselfTest, WatchesEndExactly) {
    size_t before = CountWatches();
    MakeFile("a/file");
    Watch("a/file", kFile);
    Watch("a/file", host::kWatchName); // Adds nothing.
    EXPECT_EQ(CountWatches(), before + 1);
    Stop(Know("a/file"));
    EXPECT_EQ(CountWatches(), before);

    auto other = std::make_shared<Recorder>();
    host::NodeMonitor& monitor = host::NodeMonitor::Shared();
    ASSERT_EQ(monitor.Listen(Know("a"), kFolder, other), B_OK);
    EXPECT_EQ(CountWatches(), before);
    Stop(Know("a"));
    Watch("a", host::kWatchName);
    MakeFolder("a/folder");
    Rename("a", "c");
    Flush();
    EXPECT_EQ(Told(), Texts{"moved c from . to ."});
    EXPECT_EQ(other->Changes().size(), 2u);
    ASSERT_EQ(monitor.StopAll(other), B_OK);
    EXPECT_EQ(CountWatches(), before);
    ASSERT_EQ(monitor.StopAll(fRecorder), B_OK);
    EXPECT_EQ(CountWatches(), 0u);
}

TEST_F(NodeItselfTest, NothingIsToldAfterAStop) {
    node_ref node = Know("b/file");
    std::jthread renaming([this](std::stop_token stop) {
        for (int i = 0; i % 2 || !stop.stop_requested(); i++)
            Rename(i % 2 ? "b/datei" : "b/file", i % 2 ? "b/file" : "b/datei");
    });
    ASSERT_TRUE(WaitForTold(20));
    Stop(node);
    size_t told = Told().size();
    renaming = std::jthread();
    Rename("b/file", "b/datei");
    Flush();
    EXPECT_EQ(Told().size(), told);
}

TEST_F(NodeItselfTest, WatchIsRefusedForWhatIsNotThere) {
    host::NodeMonitor& monitor = host::NodeMonitor::Shared();
    node_ref gone = Know("b/file");
    EXPECT_EQ(monitor.Listen(gone, kFolder, fRecorder), B_NOT_A_DIRECTORY);
    host::NodeMonitor::Shared().Stop(gone, fRecorder);
    Remove("b/file");
    EXPECT_EQ(monitor.Listen(gone, kFile, fRecorder), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(monitor.Stop(gone, fRecorder), B_BAD_VALUE);
}

} // namespace test
