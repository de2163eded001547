#include "kits/storage/Entry.h"

#include <sys/stat.h>

#include <set>

#include "kits/storage/Directory.h"
#include "kits/storage/Path.h"
#include "tests/kits/storage/StorageFixture.h"

namespace test {

class EntryTest : public StorageTest {
protected:
    static std::string PathOf(const BEntry& entry) {
        BPath path;
        return entry.GetPath(&path) == B_OK ? path.Path() : "";
    }
};

TEST_F(EntryTest, StandsForAPlaceWhetherOrNotSomethingIsThere) {
    BEntry entry(In("missing/deeper").c_str());
    EXPECT_EQ(entry.InitCheck(), B_OK);
    EXPECT_FALSE(entry.Exists());
    EXPECT_EQ(PathOf(entry), In("missing/deeper"));
    node_ref node;
    entry_ref ref;
    EXPECT_EQ(entry.GetNodeRef(&node), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(entry.GetRef(&ref), B_ENTRY_NOT_FOUND);

    MakeFolder("missing");
    MakeFile("missing/deeper");
    EXPECT_TRUE(entry.Exists());
    EXPECT_TRUE(entry.IsFile());
    EXPECT_EQ(entry.GetNodeRef(&node), B_OK);
}

TEST_F(EntryTest, RefusesWhatCannotBeAPlace) {
    MakeFile("file");
    EXPECT_EQ(BEntry().InitCheck(), B_NO_INIT);
    EXPECT_EQ(BEntry("").InitCheck(), B_BAD_VALUE);
    EXPECT_EQ(BEntry(In("file/x").c_str()).InitCheck(), B_NOT_A_DIRECTORY);
    EXPECT_EQ(BEntry(In(std::string(300, 'x')).c_str()).InitCheck(), B_NAME_TOO_LONG);
}

TEST_F(EntryTest, LinksAreFollowedOnDemand) {
    MakeFolder("folder");
    MakeFile("folder/file");
    MakeLink("chain", "link");
    MakeLink("link", "folder/file");
    MakeLink("dangling", "nowhere");
    MakeLink("loop", "loop");
    BEntry link(In("chain").c_str());
    EXPECT_TRUE(link.IsSymLink());
    EXPECT_FALSE(link.IsFile());
    BEntry target(In("chain").c_str(), true);
    EXPECT_TRUE(target.IsFile());
    EXPECT_EQ(PathOf(target), In("folder/file"));
    EXPECT_TRUE(BEntry(In("dangling").c_str()).Exists());
    EXPECT_EQ(BEntry(In("dangling").c_str(), true).InitCheck(), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(BEntry(In("loop").c_str(), true).InitCheck(), B_LINK_LIMIT);
}

TEST_F(EntryTest, RefLeadsBackToTheEntry) {
    MakeFolder("folder");
    MakeFile("folder/file");
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(In("folder/file").c_str(), &ref), B_OK);
    EXPECT_EQ(ref.name, "file");
    node_ref folder;
    ASSERT_EQ(BEntry(In("folder").c_str()).GetNodeRef(&folder), B_OK);
    EXPECT_EQ(ref.directory, folder.node);
    EXPECT_EQ(ref.device, folder.device);
    EXPECT_EQ(PathOf(BEntry(&ref)), In("folder/file"));

    ref.name = "other";
    EXPECT_EQ(PathOf(BEntry(&ref)), In("folder/other"));
    ref.name = "../file";
    EXPECT_EQ(BEntry(&ref).InitCheck(), B_BAD_VALUE);
    ref.name = "file";
    ref.directory = 1;
    EXPECT_EQ(BEntry(&ref).InitCheck(), B_ENTRY_NOT_FOUND);
}

TEST_F(EntryTest, RefOfAReplacedDirectoryLeadsNowhere) {
    MakeFolder("folder");
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(In("folder/file").c_str(), &ref), B_OK);
    std::filesystem::rename(OnDisk("folder"), OnDisk("elsewhere"));
    MakeFolder("folder");
    EXPECT_EQ(BEntry(&ref).InitCheck(), B_ENTRY_NOT_FOUND);
}

// Common disks give the inode of a removed file to the next one.
TEST_F(EntryTest, NumberOfANodeIsNeverUsedAgain) {
    std::set<int64> numbers;
    node_ref node;
    for (int i = 0; i < 20; i++) {
        MakeFile("file");
        ASSERT_EQ(BEntry(In("file").c_str()).GetNodeRef(&node), B_OK);
        EXPECT_TRUE(numbers.insert(node.node).second) << "file " << i;
        std::filesystem::remove(OnDisk("file"));
    }
    // Without birth times, the inode is the number.
    struct stat status;
    ASSERT_EQ(stat("/proc/version", &status), 0);
    ASSERT_EQ(BEntry("/proc/version").GetNodeRef(&node), B_OK);
    EXPECT_EQ(node.node, int64(status.st_ino));
}

TEST_F(EntryTest, RenameReplacesOnlyWhenAllowed) {
    MakeFile("old", "old");
    MakeFile("new", "new");
    BEntry entry(In("new").c_str());
    EXPECT_EQ(entry.Rename("old"), B_FILE_EXISTS);
    EXPECT_EQ(PathOf(entry), In("new"));
    ASSERT_EQ(entry.Rename("old", true), B_OK);
    EXPECT_EQ(PathOf(entry), In("old"));
    EXPECT_EQ(std::filesystem::file_size(OnDisk("old")), 3u);
    EXPECT_FALSE(BEntry(In("new").c_str()).Exists());
    EXPECT_EQ(BEntry(In("none").c_str()).Rename("x"), B_ENTRY_NOT_FOUND);
}

TEST_F(EntryTest, VolumeTellsWhetherAttributesCanBeKept) {
    BVolume home;
    ASSERT_EQ(BEntry("/boot/home").GetVolume(&home), B_OK);
    EXPECT_TRUE(home.KnowsAttr());
    BVolume proc;
    ASSERT_EQ(BEntry("/proc/self").GetVolume(&proc), B_OK);
    EXPECT_FALSE(proc.KnowsAttr());
}

} // namespace test
