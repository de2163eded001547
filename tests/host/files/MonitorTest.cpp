#include "tests/host/files/MonitorFixture.h"

#include <algorithm>

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

TEST_F(MonitorTest, MovesAreOneChangeEach) {
    Expect({"mv a/one b/uno", "mv b/three a/drei", "mv a/two a/zwei"},
           {"one moved a b/uno", "three moved b a/drei", "two moved a a/zwei"});
    Expect({"mv away/stranger a/guest"}, {"new moved ? a/guest"});
    // Nothing is notified of a node that went where nobody watches.
    Expect({"mv b/uno away/uno", "edit away/uno", "rm away/uno"}, {"one moved b ?/uno"});
    // Of a node without a watch, the other half is waited for.
    fMonitor.Stop(Know("a/zwei"), fLog);
    Expect({"mv a/zwei away/two"}, {"two moved a ?/zwei"});
}

TEST_F(MonitorTest, WhatIsReplacedIsRemovedFirst) {
    Expect({"mv a/one a/two"}, {"two removed a/two", "one moved a a/two"});
    Expect({"mv away/stranger a/two"}, {"one removed a/two", "new moved ? a/two"});
}

TEST_F(MonitorTest, SavingThroughAnotherFileMakesANewNode) {
    Expect({"touch a/.one.tmp", "mv a/.one.tmp a/one"}, {"one removed a/one", "new created a/one"});
    Expect({"mv a/two a/two~", "touch a/two", "rm a/two~"},
           {"two removed a/two", "new created a/two"});
    // Common disks give the new node the inode of the removed one.
    Expect({"rm b/three", "touch b/three"}, {"three removed b/three", "new created b/three"});
    Watch("b/three", kFile);
    Expect({"edit b/three"}, {"three attributes"});
}

TEST_F(MonitorTest, FolderTakesItsWatchedContentsAlong) {
    AtOnce([&] {
        Do({"mkdir a/inner", "touch a/inner/file"});
        Watch("a/inner", kFolder);
        Watch("a/inner/file", kFile);
        Do({"mv a/inner b/inner", "mkdir b/inner/new"});
    });
    EXPECT_EQ(TakeLog(2), (Texts{"inner moved a b/inner", "new created ?/new"}));
    Expect({"mv b a/b", "edit a/b/inner/file", "mv a/b/inner/file a/b/inner/datei"},
           {"b moved . a/b", "file moved ? ?/datei", "file attributes"});
}

TEST_F(MonitorTest, HardLinksAreEntriesOfTheirOwn) {
    Expect({"link a/one a/link"}, {"one attributes", "one created a/link"});
    // Two links of one node: the second step does nothing, both stay.
    Expect({"mv a/link a/renamed", "mv a/renamed a/one"}, {"one moved a a/renamed"});
    Expect({"rm a/one"}, {"one removed a/one", "one attributes"});
}

TEST_F(MonitorTest, NewFileIsAnnouncedWhenItIsQuietAndAgainWhenItsTypeComes) {
    auto start = std::chrono::steady_clock::now();
    Expect({"touch a/file"}, {"new created a/file"});
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50))
        << "too early for a program that sets attributes last";
    Expect({"type a/file", "edit a/file"}, {"new created a/file"});
    // A type that changes later is nothing new.
    Expect({"type a/file", "touch a/last"}, {"new created a/last"});
}

TEST_F(MonitorTest, NodeIsFollowedWhereNoFolderIsWatched) {
    Watch("away/stranger", kFile);
    Expect({"mv away/stranger away/fremder"}, {"stranger moved away away/fremder"});
    Expect({"mv away/fremder a/guest"}, {"stranger moved away a/guest"});
    Expect({"edit a/guest"}, {"stranger attributes"});
    ASSERT_EQ(truncate(In("a/guest").c_str(), 100), 0);
    EXPECT_EQ(TakeLog(1), Texts{"stranger status"});
}

TEST_F(MonitorTest, RemovalIsNotifiedOnceWhileAProgramHoldsTheFileOpen) {
    Watch("away/stranger", kFile);
    for (const std::string name : {"away/stranger", "a/one"}) {
        host::Descriptor held(open(In(name).c_str(), O_RDONLY | O_CLOEXEC));
        Expect({"rm " + name}, {name.substr(name.find('/') + 1) + " removed " + name});
        held = host::Descriptor();
        Expect({}, {});
    }
}

TEST_F(MonitorTest, RootIsFollowedWhenRenamedAndNotifiedWhenItGoes) {
    Expect({"mv a c"}, {"a moved . ./c"});
    Expect({"mkdir c/new"}, {"new created ?/new"});
    Expect({"rm c/new", "rm c/one", "rm c/two", "rm c"},
           {"new removed ?/new", "one removed ?/one", "two removed ?/two", "a removed ./c"});
    Expect({"mv b away/b"}, {"b moved . ?/b"});
}

// The system reports nothing of it: it shows at the next event.
TEST_F(MonitorTest, RootWhoseAncestorWasRenamedIsLost) {
    Do({"mkdir away/root"});
    Watch("away/root", kFolder);
    size_t before = CountWatches();
    Expect({"mv away c", "touch c/root/file"}, {"root removed ?/root"});
    EXPECT_EQ(CountWatches(), before - 1);
}

TEST_F(MonitorTest, WatchesEndExactly) {
    size_t before = CountWatches();
    Do({"mkdir a/inner"});
    Watch("a/inner", kFolder);
    Watch("a/inner", host::kWatchName); // Adds nothing.
    auto other = std::make_shared<EventLog>();
    ASSERT_EQ(fMonitor.Listen(Know("a"), kFolder, other), B_OK);
    EXPECT_EQ(CountWatches(), before + 1);
    // The last listener ends the watch, wherever its directory is now.
    node_ref inner = Know("a/inner");
    AtOnce([&] {
        Do({"mv a away/a"});
        fMonitor.Stop(inner, fLog);
        EXPECT_EQ(CountWatches(), before);
    });
    Flush();
    EXPECT_EQ(other->All().back().kind, host::ChangeKind::Moved);
    EXPECT_EQ(CountWatches(), before - 1);
    EXPECT_EQ(fMonitor.Stop(inner, fLog), B_BAD_VALUE);
    // Nothing is watched that is not there.
    const node_ref gone = Know("b/three");
    EXPECT_EQ(fMonitor.Listen(gone, kFolder, fLog), B_NOT_A_DIRECTORY);
    Do({"rm b/three"});
    EXPECT_EQ(fMonitor.Listen(gone, kFile, fLog), B_ENTRY_NOT_FOUND);
}

// A busy machine may take longer than the grace time.
TEST_F(MonitorTest, HalvesOfAMoveMayComeApart) {
    fMonitor.Stop(Know("a/one"), fLog);
    for (int attempt = 0; attempt < 100; attempt++) {
        Do({"mv a/one away/one"});
        Flush();
        Do({"mv away/one b/one"});
        Texts log = TakeLog(1);
        if (log == Texts{"one moved a b/one"})
            return;
        ASSERT_EQ(log, (Texts{"one moved a ?/one", "one moved ? b/one"}));
        Do({"mv b/one a/one"});
        TakeLog(1);
    }
    FAIL() << "always two changes";
}

TEST_F(MonitorTest, ChangeOfAttributesIsNotLost) {
    host::Descriptor file(open(In("a/one").c_str(), O_RDONLY | O_CLOEXEC));
    std::jthread renaming = KeepRenaming("a/one");
    for (int round = 0; round < 500 && !HasFailure(); round++) {
        fLog->Take();
        ASSERT_EQ(fsetxattr(file.Get(), "user.META:url", "x", 1, 0), 0);
        EXPECT_TRUE(WaitUntil([&] {
            Texts log = Log();
            return std::find(log.begin(), log.end(), "one attributes") != log.end();
        })) << "round "
            << round;
    }
}

TEST_F(MonitorTest, NothingIsSentAfterAStop) {
    Watch("away/stranger", kFile);
    node_ref node = Know("away/stranger");
    std::jthread renaming = KeepRenaming("away/stranger");
    ASSERT_TRUE(WaitUntil([&] { return Log().size() >= 20; }));
    fMonitor.Stop(node, fLog);
    size_t sent = Log().size();
    renaming = std::jthread();
    Do({"mv away/stranger away/x"});
    Flush();
    EXPECT_EQ(Log().size(), sent);
}

} // namespace test
