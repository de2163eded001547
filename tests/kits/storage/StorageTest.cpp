// What the program does not show: how bytes are kept, and nodes, links and paths that are odd.

#include <sys/stat.h>

#include <fstream>

#include <gtest/gtest.h>

#include "kits/storage/Directory.h"
#include "kits/storage/Entry.h"
#include "kits/storage/File.h"
#include "kits/storage/Path.h"
#include "tests/support/Bookmarks.h"
#include "tests/support/TemporaryHome.h"

namespace fs = std::filesystem;

namespace test {

// Paths in the tests are the platform's.
class StorageTest : public testing::Test {
protected:
    StorageTest() {
        fs::create_directories(OnDisk("folder/inner"));
        MakeFile("folder/file");
        for (const auto& [link, target] :
             {std::pair{"link", "folder/inner"}, {"dangling", "nowhere"}, {"loop", "loop"}})
            fs::create_symlink(target, OnDisk(link));
    }

    static std::string In(const std::string& name) { return "/boot/home/" + name; }
    fs::path OnDisk(const std::string& name) const { return fHome.Path() / name; }
    void MakeFile(const std::string& name) const { std::ofstream(OnDisk(name)).flush(); }

    TemporaryHome fHome;
};

TEST_F(StorageTest, PathsArePlainAndAbsolute) {
    EXPECT_EQ(BPath("//a/./b/c//d").Path(), std::string("/a/b/c/d"));
    EXPECT_EQ(BPath(In("link/../x").c_str()).Path(), In("folder/x")) << "of the link's target";
    EXPECT_EQ(BPath(In("missing/../x").c_str()).InitCheck(), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(BPath("").InitCheck(), B_BAD_VALUE);
    EXPECT_EQ(BPath("/a", "/b").InitCheck(), B_BAD_VALUE);
    BPath path;
    EXPECT_EQ(BPath("/").GetParent(&path), B_ENTRY_NOT_FOUND);
}

TEST_F(StorageTest, RefLeadsToTheEntryAndNowhereElse) {
    entry_ref ref;
    ASSERT_EQ(BEntry(In("folder/file").c_str()).GetRef(&ref), B_OK);
    BPath path;
    ASSERT_EQ(BEntry(&ref).GetPath(&path), B_OK);
    EXPECT_EQ(path.Path(), In("folder/file"));
    entry_ref other = ref;
    other.name = "../folder";
    EXPECT_EQ(BEntry(&other).InitCheck(), B_BAD_VALUE);
    other.name = "file";
    other.directory = 1;
    EXPECT_EQ(BEntry(&other).InitCheck(), B_ENTRY_NOT_FOUND);
    // Another directory takes its place.
    fs::rename(OnDisk("folder"), OnDisk("elsewhere"));
    fs::create_directory(OnDisk("folder"));
    EXPECT_EQ(BEntry(&ref).InitCheck(), B_ENTRY_NOT_FOUND);
}

TEST_F(StorageTest, AttributesAreReadInPartsAndOfTheNodeThatWasOpened) {
    BNode node(In("folder/file").c_str());
    fs::rename(OnDisk("folder"), OnDisk("renamed"));
    SetAttribute(OnDisk("renamed/file"), "META:keyw", "by hand");
    char value[8] = "*******";
    EXPECT_EQ(node.ReadAttr("META:keyw", B_STRING_TYPE, 0, value, 3), 3);
    EXPECT_STREQ(value, "by ****");
    EXPECT_EQ(node.ReadAttr("META:keyw", B_RAW_TYPE, 3, value, sizeof(value)), 4);
    EXPECT_EQ(node.ReadAttr("META:keyw", B_STRING_TYPE, 100, value, sizeof(value)), 0);
    EXPECT_EQ(node.ReadAttr("none", B_STRING_TYPE, 0, value, 8), B_ENTRY_NOT_FOUND);
    const std::string name(256, 'n');
    EXPECT_EQ(node.WriteAttr(name.c_str(), B_STRING_TYPE, 0, "", 0), B_NAME_TOO_LONG);
}

TEST_F(StorageTest, TypeIsReadWithOrWithoutItsEnd) {
    BNode node(In("folder/file").c_str());
    const BNodeInfo info(&node);
    char type[B_MIME_TYPE_LENGTH];
    EXPECT_EQ(info.GetType(type), B_ENTRY_NOT_FOUND);
    for (const std::string& value : {std::string("text/plain"), std::string("text/plain\0", 11)}) {
        SetAttribute(OnDisk("folder/file"), "mime_type", value);
        ASSERT_EQ(info.GetType(type), B_OK);
        EXPECT_STREQ(type, "text/plain");
    }
    for (const std::string& value : {std::string(), std::string(B_MIME_TYPE_LENGTH, 'x')}) {
        SetAttribute(OnDisk("folder/file"), "mime_type", value);
        EXPECT_EQ(info.GetType(type), B_BAD_DATA);
    }
}

TEST_F(StorageTest, OddNodesHaveNoAttributesAndNeverBlock) {
    ASSERT_EQ(mkfifo(OnDisk("fifo").c_str(), 0666), 0);
    char value[8];
    for (const char* name : {"fifo", "dangling", "loop"}) {
        BNode node(In(name).c_str());
        ASSERT_EQ(node.InitCheck(), B_OK) << name;
        EXPECT_LT(node.ReadAttr("META:url", B_STRING_TYPE, 0, value, sizeof(value)), 0) << name;
        EXPECT_EQ(node.WriteAttr("META:url", B_STRING_TYPE, 0, "x", 1), B_NOT_ALLOWED) << name;
        EXPECT_EQ(node.Sync(), B_OK) << name;
        EXPECT_LT(BFile(In(name).c_str(), B_READ_WRITE).InitCheck(), B_OK) << name;
    }
    EXPECT_EQ(BFile(In("fifo").c_str(), B_WRITE_ONLY).InitCheck(), B_NOT_ALLOWED);
    EXPECT_EQ(BFile(In("folder").c_str(), B_READ_ONLY).InitCheck(), B_IS_A_DIRECTORY);
}

TEST_F(StorageTest, DiskTellsWhetherItKeepsAttributes) {
    for (const auto& [path, keeps] : {std::pair{"/boot/home", true}, {"/proc/self", false}}) {
        BVolume volume;
        ASSERT_EQ(BEntry(path).GetVolume(&volume), B_OK);
        EXPECT_EQ(volume.KnowsAttr(), keeps) << path;
    }
    EXPECT_EQ(BNode("/proc/version").WriteAttr("x", B_STRING_TYPE, 0, "x", 1), B_UNSUPPORTED);
}

} // namespace test
