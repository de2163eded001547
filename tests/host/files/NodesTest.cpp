#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <fstream>
#include <thread>

#include "host/files/monitor/NodeMonitor.h"
#include "host/loop/Descriptor.h"
#include "tests/host/files/MonitorFixture.h"
#include "tests/support/Wait.h"

namespace fs = std::filesystem;

namespace test {

namespace {

// The inotify watches of this process, counted by the system.
size_t CountWatches() {
    size_t count = 0;
    for (const auto& descriptor : fs::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        if (fs::read_symlink(descriptor, ignored).string() != "anon_inode:inotify")
            continue;
        std::ifstream info("/proc/self/fdinfo/" + descriptor.path().filename().string());
        for (std::string line; std::getline(info, line);)
            count += line.starts_with("inotify wd:");
    }
    return count;
}

} // namespace

// In "away", which is not watched, the file "stranger" is.
class NodesTest : public MonitorTest {
protected:
    NodesTest() { Watch("away/stranger", kFile); }

    // Renames the file to and fro until the end.
    std::jthread KeepRenaming(const std::string& name) const {
        return std::jthread([this, name](std::stop_token stop) {
            std::string other = name + "2";
            for (int i = 0; i % 2 || !stop.stop_requested(); i++)
                Rename(i % 2 ? other : name, i % 2 ? name : other);
        });
    }
};

TEST_F(NodesTest, EachChangeOfAttributesAndStatusIsNotified) {
    SetAttribute("away/stranger", "user.META:url");
    Flush();
    ASSERT_EQ(removexattr(In("away/stranger").c_str(), "user.META:url"), 0);
    Flush();
    ASSERT_EQ(truncate(In("away/stranger").c_str(), 100), 0);
    Flush();
    ASSERT_EQ(chmod(In("away/stranger").c_str(), 0600), 0);
    EXPECT_EQ(TakeLog(5), (Texts{"attributes", "attributes", "status", "status", "attributes"}));
}

TEST_F(NodesTest, ChangeOfAttributesAmongRenamesIsNotLost) {
    host::Descriptor file(open(In("a/one").c_str(), O_RDONLY | O_CLOEXEC));
    std::jthread renaming = KeepRenaming("a/one");
    for (int round = 0; round < 500 && !HasFailure(); round++) {
        fLog->Clear();
        ASSERT_EQ(fsetxattr(file.Get(), "user.META:url", "x", 1, 0), 0);
        EXPECT_TRUE(WaitUntil([&] {
            auto changes = fLog->Changes();
            return std::any_of(changes.begin(), changes.end(), [](const auto& change) {
                return change.kind == host::ChangeKind::AttributesChanged;
            });
        })) << "round "
            << round;
    }
}

TEST_F(NodesTest, MovesAreFollowedFromAndIntoUnwatchedFolders) {
    Rename("away/stranger", "away/fremder");
    EXPECT_EQ(TakeLog(1), Texts{"moved fremder from away to away"});
    Rename("away/fremder", "a/guest");
    EXPECT_EQ(TakeLog(1), Texts{"moved guest from away to a"});
    SetAttribute("a/guest", "user.META:url");
    EXPECT_EQ(TakeLog(1), Texts{"attributes"});
}

TEST_F(NodesTest, RemovalIsNotifiedOnceWhileAProgramHoldsTheFileOpen) {
    for (const char* name : {"away/stranger", "a/one"}) {
        host::Descriptor held(open(In(name).c_str(), O_RDONLY | O_CLOEXEC));
        Remove(name);
        EXPECT_EQ(TakeLog(1), Texts{std::string("removed ") + name});
        held = host::Descriptor();
        EXPECT_EQ(TakeLog(0), Texts());
    }
}

TEST_F(NodesTest, RootIsFollowedWhenRenamedAndNotifiedWhenItGoes) {
    Rename("a", "c");
    EXPECT_EQ(TakeLog(1), Texts{"moved c from . to ."});
    MakeFolder("c/new");
    EXPECT_EQ(TakeLog(1), Texts{"created ?/new"});
    for (const char* name : {"c/new", "c/one", "c/two", "c"})
        Remove(name);
    EXPECT_EQ(TakeLog(4),
              (Texts{"removed ?/new", "removed ?/one", "removed ?/two", "removed ./c"}));
    Rename("b", "away/b");
    EXPECT_EQ(TakeLog(1), Texts{"moved b from . to ?"});
}

// The system reports nothing of it: it shows at the next event.
TEST_F(NodesTest, RootWhoseAncestorWasRenamedIsLost) {
    MakeFolder("away/root");
    Watch("away/root", kFolder);
    size_t before = CountWatches();
    Rename("away", "c");
    MakeFile("c/root/file");
    EXPECT_EQ(TakeLog(1), Texts{"removed ?/root"});
    EXPECT_EQ(CountWatches(), before - 1);
}

TEST_F(NodesTest, WatchesEndExactly) {
    size_t before = CountWatches();
    MakeFolder("a/inner");
    Watch("a/inner", kFolder);
    Watch("a/inner", host::kWatchName); // Adds nothing.
    EXPECT_EQ(CountWatches(), before + 1);
    auto other = std::make_shared<EventLog>();
    host::NodeMonitor& monitor = host::NodeMonitor::Shared();
    ASSERT_EQ(monitor.Listen(Know("a"), kFolder, other), B_OK);
    EXPECT_EQ(CountWatches(), before + 1);
    // The last listener ends the watch, wherever its directory is now.
    node_ref inner = Know("a/inner");
    AtOnce([&] {
        Rename("a", "away/a");
        Stop(inner);
        EXPECT_EQ(CountWatches(), before);
    });
    Flush();
    EXPECT_EQ(other->Changes().back().kind, host::ChangeKind::Moved);
    EXPECT_EQ(CountWatches(), before - 1);
    EXPECT_EQ(monitor.StopAll(fLog), B_OK);
    EXPECT_EQ(CountWatches(), 0u);
    EXPECT_EQ(monitor.StopAll(other), B_BAD_VALUE);
}

TEST_F(NodesTest, NothingIsSentAfterAStop) {
    node_ref node = Know("away/stranger");
    std::jthread renaming = KeepRenaming("away/stranger");
    ASSERT_TRUE(WaitUntil([&] { return Log().size() >= 20; }));
    Stop(node);
    size_t sent = Log().size();
    renaming = std::jthread();
    Rename("away/stranger", "away/x");
    Flush();
    EXPECT_EQ(Log().size(), sent);
}

TEST_F(NodesTest, WatchIsRefusedForAMissingNode) {
    host::NodeMonitor& monitor = host::NodeMonitor::Shared();
    node_ref gone = Know("a/one");
    EXPECT_EQ(monitor.Listen(gone, kFolder, fLog), B_NOT_A_DIRECTORY);
    Remove("a/one");
    Flush();
    EXPECT_EQ(monitor.Listen(gone, kFile, fLog), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(monitor.Stop(gone, fLog), B_BAD_VALUE);
}

} // namespace test
